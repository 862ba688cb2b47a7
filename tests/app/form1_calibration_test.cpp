// The calibration dialog opened from the toolbar takes its point from a click on the chart, and
// its new factors are written and read back by a reload of the same site.
#include "calibration/frmcalibrate2.h"
#include "mainwindowtest.h"
#include "storage/filenames.h"
#include "storage/numbers.h"
#include "synthetic.h"

#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QPushButton>

namespace trendax::test {
namespace {

TEST_F(MainWindowTest, BeforeAnyLoadNoFactorsAreWritten) {
    w->WriteCalibrationFactors("2", "-1");
    EXPECT_TRUE(QDir(scratch.path()).entryList(QDir::Files).isEmpty());
}

// A generated one-channel site with scale 1.2345, the dialog open and a point clicked on the
// chart a fifth of the plot's width right of the middle, where the load put the cursor.
class CalibratingFromTheChart : public MainWindowTest {
protected:
    void SetUp() override {
        ASSERT_TRUE(gen::writeSite({.channels = 1,
                                    .rowsPerDay = 1440,
                                    .history = false,
                                    .scaleText = "1.2345",
                                    .offsetText = "0"},
                                   scratch.path()));
        showWindow();
        load("AB12", {"031512"}, mar15, mar15);
        QToolButton* calibrate = w->toolButton("yscale");
        QTest::mouseClick(calibrate, Qt::LeftButton);
        dlg = w->calibrationDialog();
        ASSERT_NE(dlg, nullptr);
        EXPECT_EQ(dlg->lblScale->text(), "1.2345");
        QTest::mouseClick(calibrate, Qt::LeftButton);
        EXPECT_EQ(w->calibrationDialog(), dlg) << "a second press raises the open dialog";

        const QRectF plot = w->Strip1->plotArea();
        const double middle = w->Strip1->CursorX();
        QTest::mouseClick(w->Strip1, Qt::LeftButton, {},
                          (plot.center() + QPointF(plot.width() / 5, 0)).toPoint());
        clickedX = w->Strip1->CursorX();
        ASSERT_GT(clickedX, middle);
    }

    // The factor file's name below the scratch folder, in the letter case found on disk.
    QString factorFile(const char* kind) const {
        const QString asked = scratch.file(QStringLiteral("cnffiles/AB12%1.txt").arg(kind));
        return QDir(scratch.path()).relativeFilePath(filenames::resolve(asked));
    }
    bool dialogGone() {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return dlg.isNull() && w->calibrationDialog() == nullptr;
    }
    // Types a value for the picked point, confirms it with Enter, calculates and presses OK.
    void enterCalculateAndOk(const QString& value) {
        dlg->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(dlg));
        dlg->txtNewValue2->setFocus();
        QTest::keyClicks(dlg->txtNewValue2, value);
        QTest::keyClick(dlg->txtNewValue2, Qt::Key_Return);
        dlg->Timer1_Timer();
        QTest::mouseClick(dlg->cmdCalculate, Qt::LeftButton);
        ASSERT_TRUE(dlg->cmdOK->isEnabled());
        newScaleText = dlg->lblNewScale->text();
        QTest::mouseClick(dlg->cmdOK, Qt::LeftButton);
    }

    QPointer<frmCalibrate2> dlg;
    double clickedX = 0;
    QString newScaleText;
};

TEST_F(CalibratingFromTheChart, OkWritesTheNewFactorsAndTheChartShowsThem) {
    // The dialog gets the value as shown under the chart, not the chart's unrounded one.
    const QString shown = w->stats[0].lblCursorValue->text();
    ASSERT_NE(numbers::parse(shown), w->Strip1->CursorValue(0)) << "the point needs decimals";
    EXPECT_EQ(numbers::parse(dlg->lblCursorValue2->text()), numbers::parse(shown));
    // Refreshing the read-outs without a click leaves the dialog's point alone.
    w->Strip1->setCursorX(clickedX + 0.01);
    w->UpdateCursorDisplay();
    ASSERT_NE(w->stats[0].lblCursorValue->text(), shown);
    EXPECT_EQ(numbers::parse(dlg->lblCursorValue2->text()), numbers::parse(shown));

    const double oldMax = w->Strip1->DataMax(0);
    enterCalculateAndOk(QString::number(2 * *numbers::parse(shown)));
    const double newScale = *numbers::parse(newScaleText);
    EXPECT_NEAR(newScale, 2 * 1.2345, 0.01);
    EXPECT_TRUE(dialogGone());
    EXPECT_EQ(scratch.read(factorFile("scal")), newScaleText.toLatin1() + "\r\n");
    EXPECT_EQ(scratch.read(factorFile("offs")), QByteArray("0.0\r\n"));
    EXPECT_EQ(QDir(scratch.file("cnffiles")).entryList(QDir::Files).size(), 2);
    EXPECT_NEAR(w->Strip1->DataMax(0), oldMax / 1.2345 * newScale, 1e-9 * oldMax);
}

TEST_F(CalibratingFromTheChart, TheOpenDialogShowsTheFactorsOfEachLoadAndOfEachPress) {
    scratch.write(factorFile("scal"), "3\r\n");
    scratch.write(factorFile("offs"), "-0.5\r\n");
    load("AB12", {"031512"}, mar15, mar15);
    ASSERT_EQ(w->calibrationDialog(), dlg);
    EXPECT_EQ(std::pair(dlg->lblScale->text(), dlg->lblOffset->text()),
              std::pair(QStringLiteral("3"), QStringLiteral("-0.5")));
    dlg->showCurrentFactors(9, 9);
    QTest::mouseClick(w->toolButton("yscale"), Qt::LeftButton);
    EXPECT_EQ(std::pair(dlg->lblScale->text(), dlg->lblOffset->text()),
              std::pair(QStringLiteral("3"), QStringLiteral("-0.5")));
}

TEST_F(CalibratingFromTheChart, AReadOnlyConfigurationFolderWritesAndReloadsNothing) {
    // A folder in place of the scale file: no writer can replace it, as root or not.
    const QString scale = scratch.file(factorFile("scal"));
    const QByteArray offsetBefore = scratch.read(factorFile("offs"));
    ASSERT_FALSE(offsetBefore.isEmpty());
    ASSERT_TRUE(QFile::remove(scale));
    ASSERT_TRUE(QDir().mkdir(scale));
    const double oldMax = w->Strip1->DataMax(0);

    enterCalculateAndOk("1000");
    EXPECT_TRUE(dialogGone());
    EXPECT_TRUE(QFileInfo(scale).isDir());
    EXPECT_EQ(scratch.read(factorFile("offs")), offsetBefore);
    const auto entries = QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden;
    EXPECT_EQ(QDir(scratch.file("cnffiles")).entryList(entries).size(), 2)
        << "no temporary file is left behind";
    EXPECT_DOUBLE_EQ(w->mScale, 1.2345);
    EXPECT_DOUBLE_EQ(w->Strip1->DataMax(0), oldMax);
    EXPECT_DOUBLE_EQ(w->Strip1->CursorX(), clickedX) << "nothing was reloaded";
}

} // namespace
} // namespace trendax::test
