// The whole road a field engineer takes: Open, import the controller's media, pick a day, OK,
// and the chart holds the loaded days.
#include "mainwindowtest.h"
#include "synthetic.h"

#include <QApplication>
#include <QFile>
#include <QProgressBar>
#include <QTimer>

namespace trendax::test {
namespace {

class OpenCommand : public MainWindowTest {
protected:
    OpenCommand() {
        EXPECT_TRUE(gen::writeSite({.site = "WL05",
                                    .channels = 5,
                                    .start = QDate(2012, 3, 14),
                                    .days = 3,
                                    .rowsPerDay = 240,
                                    .naming = gen::Naming::Controller},
                                   media.path()));
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

    ScratchFolder media;
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
    EXPECT_TRUE(QFile::exists(scratch.file("logfiles/WL05031412.CSV")));
    EXPECT_TRUE(QFile::exists(media.file("WL050314.CSV")));
    EXPECT_EQ(w->windowTitle(), QStringLiteral("Trendax 2 - V3.0.7 - Site: WL05"));
    // From the clicked day (15 March) to the end calendar (today): two of the three days.
    EXPECT_EQ(points(0), 2u * 240u);
    EXPECT_DOUBLE_EQ(w->XMin, mar15);
    EXPECT_NEAR(w->XMax, mar16 + 239 / 240.0, 1e-9); // a row every six minutes
    EXPECT_DOUBLE_EQ(w->Strip1->CursorX(), w->XMin + (w->XMax - w->XMin) / 2);
    EXPECT_DOUBLE_EQ(w->Strip1->XViewStart(), w->XMin);
    EXPECT_TRUE(w->isEnabled());
    EXPECT_EQ(w->progressDialog(), nullptr);
    EXPECT_FALSE(w->ProgressBar1->isVisible());
    EXPECT_EQ(w->numChannels, 5);
    EXPECT_EQ(w->lastSiteFolder, scratch.file("logfiles"));
}

TEST_F(OpenCommand, OkWithoutASiteOrCancelLoadsNothingAndSaysNothing) {
    open([&](dlgOpen& d) { d.OKButton_Click(); });
    dialogs.messageAnswers.push_back(QMessageBox::No);
    open([&](dlgOpen& d) {
        ASSERT_TRUE(d.setDir1Path(media.path()));
        d.cmdImport_Click();
        d.tv_NodeClick(d.nodeByKey(QStringLiteral("mWL05")));
        d.CancelButton_Click();
    });
    EXPECT_EQ(w->windowTitle(), QStringLiteral("Trendax 2 - V3.0.7"));
    EXPECT_EQ(points(0), 0u);
    EXPECT_EQ(dialogs.messages.size(), 1u) << "only the import's question";
}

} // namespace
} // namespace trendax::test
