// The ways out of the main window: export of the view in each format, the site report, files
// dropped from the file manager, and the current imbalance in the status bar.
#include "mainwindowtest.h"
#include "storage/qtcolor.h"

#include <QCoreApplication>
#include <QDir>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileInfo>
#include <QImage>
#include <QMimeData>
#include <QUrl>

namespace trendax::test {
namespace {

constexpr double second = 1.0 / 86400.0;

class Exports : public MainWindowTest {
protected:
    // Five channels (three phase currents, two voltages) for four seconds, with a history file
    // and a comment.
    void loadDefault() {
        scratch.write("logfiles/AB12031512.TXT",
                      "OLD     03/15 00:00:01\r\nPWRF    03/15 10:00:00\r\n");
        scratch.write("logfiles/AB12USEREVENTS.TXT", "03/15/2012 00:00:02 breaker reset\r\n");
        loadDay("AB12,03/15/12,00:00:00.00,40,40,40,480,470\r\n"
                "AB12,03/15/12,00:00:01.00,50,35,35,481,471\r\n"
                "AB12,03/15/12,00:00:02.00,41,40,39,482,472\r\n"
                "AB12,03/15/12,00:00:03.00,40,40,40,483,473\r\n");
        w->Strip1->ShowXRange(mar15, mar15 + 3 * second);
    }
};

TEST_F(Exports, EachFormatReadsBack) {
    loadDefault();
    const QStringList names = {"Phase A", "Phase B", "Phase C", "A B Voltage", "C A Voltage"};
    dialogs.inputAnswers.push_back("400x300");
    ASSERT_EQ(w->exportViewTo(scratch.file("view.png")), QString());
    const QImage png(scratch.file("view.png"));
    EXPECT_EQ(png.size(), (QSizeF(400, 300) * w->devicePixelRatioF()).toSize());
    const QColor phaseA = toQColor(w->Strip1->model().variable(0).color);
    bool curveDrawn = false;
    for (int y = 0; y < png.height() && !curveDrawn; ++y)
        for (int x = 0; x < png.width() && !curveDrawn; ++x)
            curveDrawn = png.pixelColor(x, y) == phaseA;
    EXPECT_TRUE(curveDrawn) << "no pixel in Phase A's colour " << phaseA.name().toStdString();

    ASSERT_EQ(w->exportViewTo(scratch.file("view.pdf")), QString());
    ASSERT_EQ(w->exportViewTo(scratch.file("view.svg")), QString());
    const QString pdf = pdfText(scratch.file("view.pdf"));
    const QString svg = QString::fromUtf8(scratch.read("view.svg"));
    for (const QString& text : QStringList{"Site: AB12"} + names) {
        EXPECT_TRUE(pdf.contains(text)) << text.toStdString();
        EXPECT_TRUE(svg.contains(text)) << text.toStdString();
    }

    ASSERT_EQ(w->exportViewTo(scratch.file("view.csv")), QString());
    const QStringList csv =
        QString::fromUtf8(scratch.read("view.csv")).split("\r\n", Qt::SkipEmptyParts);
    EXPECT_EQ(csv.value(0), "Time,Controller Time," + names.join(','));
    EXPECT_EQ(csv.size(), 5);
    EXPECT_EQ(csv.value(2), "2012-03-15T00:00:01,03/15/12 00:00:01,50,35,35,481,471");
    EXPECT_TRUE(dialogs.messages.empty());
}

TEST_F(Exports, CsvOfAOneChannelLogHoldsTheCalibratedValues) {
    scratch.write("cnffiles/AB12scal.txt", "2\r\n");
    scratch.write("cnffiles/AB12offs.txt", "-1\r\n");
    loadDay("AB12,03/15/12,00:00:00.00,10\r\nAB12,03/15/12,00:00:01.00,20\r\n");
    ASSERT_EQ(w->exportViewTo(scratch.file("one.csv")), QString());
    EXPECT_EQ(scratch.read("one.csv"), "Time,Controller Time,Channel 1\r\n"
                                       "2012-03-15T00:00:00,03/15/12 00:00:00,19\r\n"
                                       "2012-03-15T00:00:01,03/15/12 00:00:01,39\r\n");
}

TEST_F(Exports, AFailedWriteNamesTheFileAndLeavesNothing) {
    loadDefault();
    const QString folder = scratch.mkdir("taken.pdf");
    const QString message = w->exportViewTo(folder);
    EXPECT_TRUE(message.startsWith("Cannot write " + folder + ": ")) << message.toStdString();
    EXPECT_EQ(
        QDir(scratch.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
        (QStringList{"logfiles", "taken.pdf"}));
    EXPECT_TRUE(QFileInfo(folder).isDir());

    dialogs.saveAnswers.push_back(scratch.file("view.txt"));
    w->ExportView();
    ASSERT_EQ(dialogs.messages.size(), 1u);
    EXPECT_TRUE(dialogs.messages[0].text.contains("view.txt"));
}

TEST_F(Exports, SiteReportHoldsTheWindowsStatisticsEventsAndComments) {
    loadDefault();
    env.setNow(46296.25);
    const QString pdf = scratch.file("report.pdf");
    dialogs.printerAnswers.push_back(pdf);
    w->mnuSiteReport->trigger();
    ASSERT_TRUE(dialogs.messages.empty()) << dialogs.messages[0].text.toStdString();
    const QString text = pdfText(pdf);
    EXPECT_TRUE(text.contains("Page 2 of 2") && !text.contains("Page 3")) << text.toStdString();
    for (const char* expected : {"Page 1 of 2", "Site: AB12", "Phase A", "C A Voltage", "Overload",
                                 "breaker reset", "Made: 10/1/2026 6:00:00 AM"})
        EXPECT_TRUE(text.contains(expected)) << expected;
    EXPECT_FALSE(text.contains("Power Failed")); // 10:00 lies outside the window
}

TEST_F(Exports, ImbalanceAtTheCursorOnlyForALayoutWithPhases) {
    loadDefault();
    w->Strip1->setCursorX(mar15 + second);
    w->UpdateCursorDisplay();
    EXPECT_TRUE(w->imbalancePanel->isVisibleTo(w.get()));
    EXPECT_EQ(w->imbalancePanel->text(),
              "Imbalance: 25.0 %  Max in view: 25.0 % at 3/15/2012 12:00:01 AM");
    loadDay("AB12,03/15/12,00:00:00.00,40\r\n");
    EXPECT_FALSE(w->imbalancePanel->isVisibleTo(w.get()));
}

// Sends a drag and a drop of data to the widget; whether the drag was accepted.
bool drop(QWidget& target, QMimeData& data) {
    QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&target, &enter);
    QDropEvent dropped(QPointF(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&target, &dropped);
    return enter.isAccepted();
}

TEST_F(MainWindowTest, ADroppedFolderIsImportedAndAFileOnlyItselfButAWebAddressNot) {
    ScratchFolder media;
    media.write("usb/AB120315.CSV", "AB12,03/15/12,00:00:00.00,1\r\n");
    media.write("picked/CD340401.CSV", "CD34,04/01/12,00:00:00.00,1\r\n");
    media.write("picked/CD340402.CSV", "CD34,04/02/12,00:00:00.00,1\r\n");
    dlgOpen dialog(env, dialogs);
    QMimeData web, data;
    web.setUrls({QUrl("https://example.org/AB120315.CSV")});
    EXPECT_FALSE(drop(dialog, web) || drop(*w, web));
    data.setUrls({QUrl::fromLocalFile(media.file("usb")),
                  QUrl::fromLocalFile(media.file("picked/CD340402.CSV"))});
    dialogs.messageAnswers = {QMessageBox::No, QMessageBox::No}; // keep the originals
    EXPECT_TRUE(drop(dialog, data));
    EXPECT_EQ(QDir(scratch.file("logfiles")).entryList(QDir::Files, QDir::Name),
              (QStringList{"AB12031512.CSV", "CD34040212.CSV"}));
    EXPECT_TRUE(dialog.nodeByKey("mAB12") && dialog.nodeByKey("mCD34"));
    ASSERT_EQ(dialogs.messages.size(), 2u);
    EXPECT_EQ(dialogs.messages[0].text, "Delete the original log files after they are copied?");
}

} // namespace
} // namespace trendax::test
