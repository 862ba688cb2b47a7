#pragma once
// A main window over a scratch application folder, with scripted dialogs, and sites loaded the
// way the open dialog hands them over.
#include "app/form1.h"
#include "chart/stripchart.h"
#include "chart/stripchartmodel.h"
#include "opendlg/dlgopen.h"
#include "support/scratchfolder.h"
#include "support/scripteddialogs.h"
#include "support/scriptedenvironment.h"

#include <QLabel>
#include <QProcess>
#include <QTest>
#include <QToolButton>
#include <QTreeWidgetItem>
#include <gtest/gtest.h>

namespace trendax::test {

constexpr double mar14 = 40982.0, mar15 = 40983.0, mar16 = 40984.0;

inline QString pdfText(const QString& pdf) {
    QProcess text;
    text.start(QStringLiteral("pdftotext"), {QStringLiteral("-layout"), pdf, QStringLiteral("-")});
    EXPECT_TRUE(text.waitForFinished(30000));
    return QString::fromUtf8(text.readAllStandardOutput());
}

class MainWindowTest : public ::testing::Test {
protected:
    // A day's data log in logfiles/: a row a minute from midnight, channel k reading k*100 + row.
    void writeDay(const QString& site, const QString& mmddyy, int channels, int rows = 10) {
        const QString date = mmddyy.left(2) + '/' + mmddyy.mid(2, 2) + '/' + mmddyy.mid(4, 2);
        QString log;
        for (int r = 0; r < rows; ++r) {
            log += QStringLiteral("%1,%2,%3:%4:00.00")
                       .arg(site, date)
                       .arg(r / 60, 2, 10, QChar('0'))
                       .arg(r % 60, 2, 10, QChar('0'));
            for (int k = 1; k <= channels; ++k)
                log += ',' + QString::number(k * 100 + r);
            log += "\r\n";
        }
        scratch.write("logfiles/" + site + mmddyy + ".CSV", log.toLatin1());
    }

    // Loads the given days of a site in logfiles/ that fall into [start, end].
    void load(const QString& site, const QStringList& days, double start, double end) {
        QTreeWidgetItem node;
        node.setText(0, site);
        node.setData(0, dlgOpen::TagRole, scratch.mkdir("logfiles"));
        for (const QString& d : days)
            (new QTreeWidgetItem(&node))->setText(0, d);
        w->CopySelectedNode(&node, start, end);
        w->LoadWell();
    }

    // Site AB12's day 03/15/12 with the given data log rows, loaded alone.
    void loadDay(const QByteArray& rows) {
        scratch.write("logfiles/AB12031512.CSV", rows);
        load("AB12", {"031512"}, mar15, mar15);
    }
    void loadChannels(int channels, int rows = 10) {
        writeDay("AB12", "031512", channels, rows);
        load("AB12", {"031512"}, mar15, mar15);
    }

    void showWindow() {
        w->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(w.get()));
    }

    std::size_t points(int var) const { return w->Strip1->model().pointCount(var); }

    ScratchFolder scratch;
    ScriptedEnvironment env{scratch.path()};
    ScriptedDialogs dialogs;
    std::unique_ptr<Form1> w = std::make_unique<Form1>(env, dialogs);
};

} // namespace trendax::test
