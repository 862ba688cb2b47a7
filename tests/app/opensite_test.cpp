// The whole road a field engineer takes: Open, import the controller's media, pick a day, OK,
// and the chart holds the loaded days.
#include "app/form1.h"
#include "chart/stripchart.h"
#include "chart/stripchartmodel.h"
#include "opendlg/dlgopen.h"
#include "support/scratchfolder.h"
#include "support/scripteddialogs.h"
#include "support/scriptedenvironment.h"
#include "synthetic.h"

#include <QApplication>
#include <QCalendarWidget>
#include <QDir>
#include <QFile>
#include <QTimer>
#include <QTreeWidget>
#include <gtest/gtest.h>

namespace trendax {
namespace {

class OpenCommand : public ::testing::Test {
protected:
    OpenCommand() {
        gen::SiteSpec siteSpec;
        siteSpec.site = QStringLiteral("WL05");
        siteSpec.channels = 5;
        siteSpec.start = QDate(2012, 3, 14);
        siteSpec.days = 3;
        siteSpec.rowsPerDay = 240;
        siteSpec.naming = gen::Naming::Controller;
        EXPECT_TRUE(gen::writeSite(siteSpec, media.path()));
    }

    // Runs the open command; `drive` acts on the modal dialog once it is up.
    void open(const std::function<void(dlgOpen&)>& drive) {
        bool driven = false;
        QTimer::singleShot(0, [&] {
            auto* dialog = dynamic_cast<dlgOpen*>(QApplication::activeModalWidget());
            ASSERT_NE(dialog, nullptr);
            driven = true;
            drive(*dialog);
        });
        w->Toolbar1_ButtonClick(QStringLiteral("open"));
        EXPECT_TRUE(driven);
    }

    test::ScratchFolder app;
    test::ScratchFolder media;
    test::ScriptedEnvironment env{app.path()};
    test::ScriptedDialogs dialogs;
    std::unique_ptr<Form1> w = std::make_unique<Form1>(env, dialogs);
};

TEST_F(OpenCommand, ImportPickADayAndOkLoadsTheDaysFromThere) {
    dialogs.messageAnswers.push_back(QMessageBox::No); // keep the originals
    open([&](dlgOpen& d) {
        ASSERT_TRUE(d.setDir1Path(media.path()));
        d.cmdImport_Click();
        QTreeWidgetItem* day = d.nodeByKey(QStringLiteral("mdWL05031512"));
        ASSERT_NE(day, nullptr);
        d.tv_NodeClick(day);
        d.OKButton_Click();
    });
    EXPECT_TRUE(QFile::exists(app.file("logfiles/WL05031412.CSV")));
    EXPECT_TRUE(QFile::exists(media.file("WL050314.CSV")));
    EXPECT_EQ(w->windowTitle(), QStringLiteral("Trendax 2 - V3.0.7 - Site: WL05"));
    // From the clicked day (15 March) to the end calendar (today): two of the three days.
    EXPECT_EQ(w->Strip1->model().pointCount(0), 2u * 240u);
    EXPECT_DOUBLE_EQ(w->XMin, 40983.0);
    EXPECT_EQ(w->numChannels, 5);
    EXPECT_EQ(w->lastSiteFolder, app.file("logfiles"));
}

TEST_F(OpenCommand, CancelLoadsNothing) {
    open([&](dlgOpen& d) {
        ASSERT_TRUE(d.setDir1Path(media.path()));
        dialogs.messageAnswers.push_back(QMessageBox::No);
        d.cmdImport_Click();
        d.tv_NodeClick(d.nodeByKey(QStringLiteral("mWL05")));
        d.CancelButton_Click();
    });
    EXPECT_EQ(w->windowTitle(), QStringLiteral("Trendax 2 - V3.0.7"));
    EXPECT_EQ(w->Strip1->model().pointCount(0), 0u);
}

TEST_F(OpenCommand, OkWithoutASiteLoadsNothingAndSaysNothing) {
    open([&](dlgOpen& d) { d.OKButton_Click(); });
    EXPECT_EQ(w->windowTitle(), QStringLiteral("Trendax 2 - V3.0.7"));
    EXPECT_TRUE(dialogs.messages.empty());
}

} // namespace
} // namespace trendax
