// The ways out of the main window: export of the view in each format, the site report, files
// dropped from the file manager, and the current imbalance in the status bar.
#include "app/form1.h"
#include "chart/stripchart.h"
#include "chart/stripchartmodel.h"
#include "opendlg/dlgopen.h"
#include "storage/qtcolor.h"
#include "support/scratchfolder.h"
#include "support/scripteddialogs.h"
#include "support/scriptedenvironment.h"

#include <QCoreApplication>
#include <QDir>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileInfo>
#include <QImage>
#include <QLabel>
#include <QMimeData>
#include <QProcess>
#include <QTreeWidgetItem>
#include <QUrl>
#include <gtest/gtest.h>

namespace trendax {
namespace {

constexpr double mar15 = 40983.0; // 03/15/2012
constexpr double second = 1.0 / 86400.0;

QString pdfText(const QString& pdf) {
    QProcess text;
    text.start(QStringLiteral("pdftotext"), {QStringLiteral("-layout"), pdf, QStringLiteral("-")});
    EXPECT_TRUE(text.waitForFinished(30000));
    return QString::fromUtf8(text.readAllStandardOutput());
}

class Exports : public ::testing::Test {
protected:
    // Site AB12 on 03/15/12 with the given data log rows, a history file and a comment.
    void loadDay(const QByteArray& rows) {
        scratch.write("logfiles/AB12031512.CSV", rows);
        scratch.write("logfiles/AB12031512.TXT",
                      "OLD     03/15 00:00:01\r\nPWRF    03/15 10:00:00\r\n");
        scratch.write("logfiles/AB12USEREVENTS.TXT", "03/15/2012 00:00:02 breaker reset\r\n");
        QDir().mkpath(scratch.file("cnffiles"));
        QTreeWidgetItem node;
        node.setText(0, QStringLiteral("AB12"));
        node.setData(0, dlgOpen::TagRole, scratch.file("logfiles"));
        (new QTreeWidgetItem(&node))->setText(0, QStringLiteral("031512"));
        w->CopySelectedNode(&node, mar15, mar15);
        w->LoadWell();
    }

    // Five channels (three phase currents, two voltages) for four seconds.
    void loadDefault() {
        loadDay("AB12,03/15/12,00:00:00.00,40,40,40,480,470\r\n"
                         "AB12,03/15/12,00:00:01.00,50,35,35,481,471\r\n"
                         "AB12,03/15/12,00:00:02.00,41,40,39,482,472\r\n"
                         "AB12,03/15/12,00:00:03.00,40,40,40,483,473\r\n");
        w->Strip1->ShowXRange(mar15, mar15 + 3 * second);
    }

    test::ScratchFolder scratch;
    test::ScriptedEnvironment env{scratch.path()};
    test::ScriptedDialogs dialogs;
    std::unique_ptr<Form1> w = std::make_unique<Form1>(env, dialogs);
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
    const QString pdf = pdfText(scratch.file("view.pdf"));
    ASSERT_EQ(w->exportViewTo(scratch.file("view.svg")), QString());
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
    const QString missing = scratch.file("no such folder/view.csv");
    for (const QString& path : {folder, missing}) {
        const QString message = w->exportViewTo(path);
        EXPECT_TRUE(message.startsWith("Cannot write " + path + ": ")) << message.toStdString();
    }
    EXPECT_TRUE(QFileInfo(folder).isDir());
    EXPECT_EQ(
        QDir(scratch.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
        (QStringList{"cnffiles", "logfiles", "taken.pdf"}));

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
    EXPECT_TRUE(text.contains("Page 1 of 2")) << text.toStdString();
    EXPECT_TRUE(text.contains("Page 2 of 2"));
    EXPECT_FALSE(text.contains("Page 3"));
    for (const char* expected : {"Site: AB12", "Phase A", "C A Voltage", "Overload",
                                 "breaker reset", "Made: 10/1/2026 6:00:00 AM"})
        EXPECT_TRUE(text.contains(expected)) << expected;
    // The power failure at 10:00 lies outside the window.
    EXPECT_FALSE(text.contains("Power Failed"));
}

TEST_F(Exports, ImbalanceOfThePhasesAtTheCursor) {
    loadDefault();
    struct Row {
        const char* name;
        double cursor;
        QString expected;
    };
    const Row rows[] = {
        {"equal phases", mar15, "Imbalance: 0.0 %"},
        {"one phase high", mar15 + second, "Imbalance: 25.0 %"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        w->Strip1->setCursorX(row.cursor);
        w->UpdateCursorDisplay();
        EXPECT_TRUE(w->imbalancePanel->isVisibleTo(w.get()));
        EXPECT_EQ(w->imbalancePanel->text(),
                  row.expected + "  Max in view: 25.0 % at 3/15/2012 12:00:01 AM");
    }

    // Without currents there is no imbalance at all.
    loadDay("AB12,03/15/12,00:00:00.00,0,0,0,480,470\r\n");
    EXPECT_FALSE(w->imbalancePanel->isVisibleTo(w.get()));
}

TEST_F(Exports, ImbalanceIsAbsentForOtherLayouts) {
    // One channel: the layout names no phases.
    loadDay("AB12,03/15/12,00:00:00.00,40\r\n");
    EXPECT_FALSE(w->imbalancePanel->isVisibleTo(w.get()));
}

class Drops : public ::testing::Test {
protected:
    // Sends a drag and a drop of data to the widget; whether the drag was accepted.
    static bool drop(QWidget& target, QMimeData& data) {
        QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&target, &enter);
        QDropEvent dropped(QPointF(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&target, &dropped);
        return enter.isAccepted();
    }

    test::ScratchFolder app;
    test::ScratchFolder media;
    test::ScriptedEnvironment env{app.path()};
    test::ScriptedDialogs dialogs;
};

TEST_F(Drops, AFolderIsImportedAndFilesOnlyThemselves) {
    const QByteArray log = "AB12,03/15/12,00:00:00.00,1\r\n";
    media.write("usb/AB120315.CSV", log);
    media.write("usb/AB120316.CSV", "AB12,03/16/12,00:00:00.00,1\r\n");
    media.write("picked/CD340401.CSV", "CD34,04/01/12,00:00:00.00,1\r\n");
    media.write("picked/CD340402.CSV", "CD34,04/02/12,00:00:00.00,1\r\n");
    dlgOpen dialog(env, dialogs);
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(media.file("usb")),
                  QUrl::fromLocalFile(media.file("picked/CD340402.CSV"))});
    dialogs.messageAnswers = {QMessageBox::No, QMessageBox::No}; // keep the originals
    EXPECT_TRUE(drop(dialog, data));
    QStringList home = QDir(app.file("logfiles")).entryList(QDir::Files);
    home.sort();
    EXPECT_EQ(home, (QStringList{"AB12031512.CSV", "AB12031612.CSV", "CD34040212.CSV"}));
    EXPECT_EQ(app.read("logfiles/AB12031512.CSV"), log);
    EXPECT_TRUE(dialog.nodeByKey("mAB12"));
    EXPECT_TRUE(dialog.nodeByKey("mCD34"));
    ASSERT_EQ(dialogs.messages.size(), 2u);
    EXPECT_EQ(dialogs.messages[0].text, "Delete the original log files after they are copied?");
}

TEST_F(Drops, WebAddressesAndTextAreIgnored) {
    dlgOpen dialog(env, dialogs);
    Form1 window(env, dialogs);
    QMimeData web;
    web.setUrls({QUrl("https://example.org/AB120315.CSV")});
    QMimeData text;
    text.setText(media.path());
    for (QWidget* target : std::initializer_list<QWidget*>{&dialog, &window}) {
        EXPECT_FALSE(drop(*target, web));
        EXPECT_FALSE(drop(*target, text));
    }
    EXPECT_TRUE(dialogs.messages.empty());
}

} // namespace
} // namespace trendax
