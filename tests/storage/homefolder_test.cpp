#include "storage/homefolder.h"
#include "support/scratchfolder.h"
#include "support/scriptedenvironment.h"

#include <QDir>
#include <QFile>
#include <gtest/gtest.h>

namespace trendax {
namespace {

TEST(SchemaIni, HoldsExactlyTheFourLinesForTheLastDataLog) {
    test::ScratchFolder app;
    app.mkdir("logfiles");
    WriteSchemaIni(app.path(), "AB12031512.CSV");
    WriteSchemaIni(app.path(), "AB12031612.CSV");
    EXPECT_EQ(app.read("logfiles/Schema.ini"), QByteArray("[AB12031612.CSV]\r\n"
                                                          "Format=CSVDelimited\r\n"
                                                          "CharacterSet=ANSI\r\n"
                                                          "DecimalSymbol=.\r\n"));
}

TEST(SchemaIni, AMissingHomeFolderFailsSilently) {
    test::ScratchFolder app;
    WriteSchemaIni(app.path(), "AB12031512.CSV");
    EXPECT_FALSE(QFile::exists(app.file("logfiles/Schema.ini")));
}

TEST(HomeFolder, FoldersLieUnderTheApplicationFolder) {
    EXPECT_EQ(homefolder::homeFolder("/opt/t"), QStringLiteral("/opt/t/logfiles"));
    EXPECT_EQ(homefolder::configFolder("/opt/t"), QStringLiteral("/opt/t/cnffiles"));
    EXPECT_TRUE(homefolder::redirectedHomeFolder().endsWith("/Trendax2/logfiles"));
}

TEST(CurrentUserName, KeepsAtMost127Characters) {
    test::ScratchFolder app;
    test::ScriptedEnvironment env(app.path());
    env.setUserName(QString(127, 'u'));
    EXPECT_EQ(CurrentUserName(env), QString(127, 'u'));
    env.setUserName(QString(200, 'v'));
    EXPECT_EQ(CurrentUserName(env), QString(127, 'v'));
    env.setUserName("ops");
    EXPECT_EQ(CurrentUserName(env), QStringLiteral("ops"));
}

TEST(ShowHomeFolder, OpensTheRedirectedCopyFirstWhenItExists) {
    test::ScratchFolder app;
    const QString redirected = app.mkdir("user data/Trendax2/logfiles");
    test::ScriptedEnvironment env(app.file("install"));
    const ShowHomeFolderResult shown = ShowHomeFolder(env, redirected);
    EXPECT_EQ(env.openedFolders, QStringList{redirected});
    EXPECT_EQ(shown.folder, redirected);
    EXPECT_TRUE(shown.opened);
    EXPECT_EQ(shown.message, QStringLiteral("Unable to determine Trendax's working folder."));
}

TEST(ShowHomeFolder, OpensTheHomeFolderOtherwiseAndTheMessageStillFollows) {
    test::ScratchFolder app;
    test::ScriptedEnvironment env(app.path());
    env.setOpenFolderSucceeds(false);
    const ShowHomeFolderResult shown = ShowHomeFolder(env, app.file("no such folder"));
    EXPECT_EQ(env.openedFolders, QStringList{app.path() + "/logfiles"});
    EXPECT_FALSE(shown.opened);
    EXPECT_EQ(shown.message, QStringLiteral("Unable to determine Trendax's working folder."));
}

} // namespace
} // namespace trendax
