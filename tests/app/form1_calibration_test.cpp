// New factors written from the main window are read back by a fresh load of the same site; the
// calibration dialog opened from the toolbar takes its points from clicks on the chart.
#include "app/form1.h"
#include "calibration/frmcalibrate2.h"
#include "chart/stripchart.h"
#include "opendlg/dlgopen.h"
#include "storage/filenames.h"
#include "storage/numbers.h"
#include "support/scratchfolder.h"
#include "support/scripteddialogs.h"
#include "support/scriptedenvironment.h"
#include "synthetic.h"

#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QToolButton>
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

// A generated one-channel site loaded through the main window, calibrated from a chart click.
class CalibratingFromTheChart : public WritingFactors {
protected:
    void SetUp() override {
        gen::SiteSpec site;
        site.channels = 1;
        site.rowsPerDay = 1440;
        site.history = false;
        site.scaleText = QStringLiteral("1.2345");
        site.offsetText = QStringLiteral("0");
        ASSERT_TRUE(gen::writeSite(site, app.path()));
        w.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&w));
        EXPECT_FALSE(w.findChild<QToolButton*>("yscale")->isEnabled());

        QTreeWidgetItem node;
        node.setText(0, "AB12");
        node.setData(0, dlgOpen::TagRole, app.file("logfiles"));
        (new QTreeWidgetItem(&node))->setText(0, gen::dateCode(site.start));
        w.CopySelectedNode(&node, 40983.0, 40983.0);
        w.LoadWell();
        ASSERT_DOUBLE_EQ(w.mScale, 1.2345);
        QToolButton* calibrate = w.findChild<QToolButton*>("yscale");
        ASSERT_TRUE(calibrate->isEnabled()) << "a one-channel log is calibrated";

        QTest::mouseClick(calibrate, Qt::LeftButton);
        dlg = w.calibrationDialog();
        ASSERT_NE(dlg, nullptr);
        EXPECT_EQ(dlg->lblScale->text(), "1.2345");
        QTest::mouseClick(calibrate, Qt::LeftButton);
        EXPECT_EQ(w.calibrationDialog(), dlg) << "a second press raises the open dialog";

        // A click a fifth of the plot's width right of the middle, where the load put the cursor.
        const QRectF plot = w.Strip1->plotArea();
        const double middle = w.Strip1->CursorX();
        QTest::mouseClick(w.Strip1, Qt::LeftButton, {},
                          (plot.center() + QPointF(plot.width() / 5, 0)).toPoint());
        clickedX = w.Strip1->CursorX();
        ASSERT_GT(clickedX, middle);
    }

    QString scaleFile() const { return filenames::resolve(app.file("cnffiles/AB12scal.txt")); }
    QString offsetFile() const { return filenames::resolve(app.file("cnffiles/AB12offs.txt")); }
    static QByteArray bytes(const QString& path) {
        QFile f(path);
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    }
    bool dialogGone() {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return dlg.isNull() && w.calibrationDialog() == nullptr;
    }
    // Types a value for the picked point, confirms it with Enter and calculates.
    void enterAndCalculate(const QString& value) {
        dlg->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(dlg));
        dlg->txtNewValue2->setFocus();
        QTest::keyClicks(dlg->txtNewValue2, value);
        QTest::keyClick(dlg->txtNewValue2, Qt::Key_Return);
        dlg->Timer1_Timer();
        ASSERT_TRUE(dlg->cmdCalculate->isEnabled());
        QTest::mouseClick(dlg->cmdCalculate, Qt::LeftButton);
        ASSERT_TRUE(dlg->cmdOK->isEnabled());
    }

    QPointer<frmCalibrate2> dlg;
    double clickedX = 0;
};

TEST_F(CalibratingFromTheChart, OkWritesTheNewFactorsAndTheChartShowsThem) {
    // The dialog gets the value as shown under the chart, not the chart's unrounded one.
    const QString shown = w.stats[0].lblCursorValue->text();
    ASSERT_NE(numbers::parse(shown), w.Strip1->CursorValue(0)) << "the point needs decimals";
    EXPECT_EQ(numbers::parse(dlg->lblCursorValue2->text()), numbers::parse(shown));
    // Refreshing the read-outs without a click leaves the dialog's point alone.
    w.Strip1->setCursorX(clickedX + 0.01);
    w.UpdateCursorDisplay();
    ASSERT_NE(w.stats[0].lblCursorValue->text(), shown);
    EXPECT_EQ(numbers::parse(dlg->lblCursorValue2->text()), numbers::parse(shown));

    const double oldMax = w.Strip1->DataMax(0);
    enterAndCalculate(QString::number(2 * *numbers::parse(shown)));
    const QString scaleText = dlg->lblNewScale->text();
    const double newScale = *numbers::parse(scaleText);
    EXPECT_NEAR(newScale, 2 * 1.2345, 0.01);
    QTest::mouseClick(dlg->cmdOK, Qt::LeftButton);

    EXPECT_TRUE(dialogGone());
    EXPECT_EQ(bytes(scaleFile()), scaleText.toLatin1() + "\r\n");
    EXPECT_EQ(bytes(offsetFile()), QByteArray("0.0\r\n"));
    EXPECT_EQ(QDir(app.file("cnffiles")).entryList(QDir::Files).size(), 2);
    EXPECT_DOUBLE_EQ(w.mScale, newScale);
    EXPECT_NEAR(w.Strip1->DataMax(0), oldMax / 1.2345 * newScale, 1e-9 * oldMax);
    EXPECT_NE(w.Strip1->CursorX(), clickedX) << "the reload puts the cursor in the middle";
}

TEST_F(CalibratingFromTheChart, AReadOnlyConfigurationFolderWritesAndReloadsNothing) {
    // A folder in place of the scale file: no writer can replace it, as root or not.
    const QString scale = scaleFile();
    const QByteArray offsetBefore = bytes(offsetFile());
    ASSERT_TRUE(QFile::remove(scale));
    ASSERT_TRUE(QDir().mkdir(scale));
    const double oldMax = w.Strip1->DataMax(0);

    enterAndCalculate("1000");
    QTest::mouseClick(dlg->cmdOK, Qt::LeftButton);

    EXPECT_TRUE(dialogGone());
    EXPECT_TRUE(QFileInfo(scale).isDir());
    EXPECT_EQ(bytes(offsetFile()), offsetBefore);
    EXPECT_EQ(QDir(app.file("cnffiles"))
                  .entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden)
                  .size(),
              2)
        << "no temporary file is left behind";
    EXPECT_DOUBLE_EQ(w.mScale, 1.2345);
    EXPECT_DOUBLE_EQ(w.Strip1->DataMax(0), oldMax);
    EXPECT_DOUBLE_EQ(w.Strip1->CursorX(), clickedX) << "nothing was reloaded";
    EXPECT_TRUE(w.isVisible());
}

} // namespace
} // namespace trendax
