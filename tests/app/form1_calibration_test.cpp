// New factors written from the main window are read back by a fresh load of the same site.
#include "app/form1.h"
#include "chart/stripchart.h"
#include "opendlg/dlgopen.h"
#include "support/scratchfolder.h"
#include "support/scripteddialogs.h"
#include "support/scriptedenvironment.h"

#include <QDir>
#include <QFile>
#include <QTreeWidgetItem>
#include <gtest/gtest.h>

namespace trendax {
namespace {

class WritingFactors : public ::testing::Test {
protected:
    test::ScratchFolder app;
    test::ScriptedEnvironment env{app.path()};
    test::ScriptedDialogs dialogs;
    Form1 w{env, dialogs};
};

TEST_F(WritingFactors, ReloadsTheSiteWithTheNewFactors) {
    app.write("logfiles/AB12031512.CSV", "AB12,03/15/12,00:00:00.00,10\r\n"
                                         "AB12,03/15/12,00:00:01.00,20\r\n");
    QDir().mkpath(app.file("cnffiles"));
    QTreeWidgetItem node;
    node.setText(0, "AB12");
    node.setData(0, dlgOpen::TagRole, app.file("logfiles"));
    (new QTreeWidgetItem(&node))->setText(0, "031512");
    w.CopySelectedNode(&node, 40983.0, 40983.0);
    w.LoadWell();
    ASSERT_DOUBLE_EQ(w.Strip1->DataMax(0), 20.0);

    w.WriteCalibrationFactors("2", "-1");
    EXPECT_EQ(app.read("cnffiles/AB12scal.txt"), QByteArray("2\r\n"));
    EXPECT_EQ(app.read("cnffiles/AB12offs.txt"), QByteArray("-1\r\n"));
    EXPECT_DOUBLE_EQ(w.mScale, 2.0);
    EXPECT_DOUBLE_EQ(w.Strip1->DataMax(0), 39.0);

    w.WriteCalibrationFactors("1", "0");
    EXPECT_DOUBLE_EQ(w.Strip1->DataMax(0), 20.0);
}

TEST_F(WritingFactors, BeforeAnyLoadNothingIsWritten) {
    w.WriteCalibrationFactors("2", "-1");
    EXPECT_TRUE(QDir(app.path()).entryList(QDir::Files).isEmpty());
    EXPECT_EQ(w.windowTitle(), QStringLiteral("Trendax 2 - V3.0.7"));
}

} // namespace
} // namespace trendax
