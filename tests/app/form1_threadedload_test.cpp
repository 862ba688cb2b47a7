// A load whose next day's chart memory is faulted in on the helper thread must read exactly as
// one without it: the same diagnostic log line for line, the same points.
#include "app/form1.h"
#include "chart/blockpool.h"
#include "chart/stripchart.h"
#include "chart/stripchartmodel.h"
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

// A 13-channel day of one row every two seconds, with a bad row and a 12-hour time in it.
QByteArray dayLog(const QString& mmddyy, int rows) {
    const QByteArray date =
        (mmddyy.left(2) + '/' + mmddyy.mid(2, 2) + '/' + mmddyy.mid(4, 2)).toLatin1();
    QByteArray out;
    for (int r = 0; r < rows; ++r) {
        const int s = 2 * r;
        out += "AB12," + date + ',';
        if (r == 7)
            out += "1:00:14 PM";
        else
            out += QByteArray::number(s / 3600).rightJustified(2, '0') + ':' +
                   QByteArray::number(s / 60 % 60).rightJustified(2, '0') + ':' +
                   QByteArray::number(s % 60).rightJustified(2, '0') + ".25";
        for (int k = 1; k <= 13; ++k) {
            out += ',';
            if (!(r == 11 && k == 1))
                out += QByteArray::number(k * 10 + r % 97) + ".5";
        }
        out += "\r\n";
    }
    return out;
}

struct Load {
    QStringList log; // the diagnostic lines without their time stamps
    std::vector<std::vector<CurvePoint>> points;
};

class ThreadedLoad : public ::testing::Test {
protected:
    ThreadedLoad() {
        QDir().mkpath(scratch.file("logfiles"));
        for (const char* d : days)
            scratch.write(QStringLiteral("logfiles/AB12%1.CSV").arg(d), dayLog(d, 30000));
    }
    ~ThreadedLoad() override { BlockPool::shared().setHelperEnabled(true); }

    Load load(bool helper) {
        BlockPool::shared().setHelperEnabled(helper);
        // Blocks left free by earlier windows would spare the helper its work.
        BlockPool::shared().trim();
        QTreeWidgetItem node;
        node.setText(0, QStringLiteral("AB12"));
        node.setData(0, dlgOpen::TagRole, scratch.file("logfiles"));
        for (const char* d : days)
            (new QTreeWidgetItem(&node))->setText(0, QString::fromLatin1(d));
        Form1 w(env, dialogs);
        const QString old = QDir::currentPath();
        QDir::setCurrent(scratch.path());
        QFile::remove(QStringLiteral("TXDebug.txt"));
        w.bbDebugOut = true;
        w.CopySelectedNode(&node, 40982.0, 40984.0);
        w.LoadWell();
        w.bbDebugOut = false;
        QDir::setCurrent(old);
        BlockPool::shared().waitPrepared();

        Load result;
        for (const QString& line : QString::fromLatin1(scratch.read("TXDebug.txt")).split("\r\n")) {
            const qsizetype stamp = line.indexOf(QStringLiteral(": \t"));
            result.log << (stamp >= 0 ? line.mid(stamp + 3) : line);
        }
        const StripChartModel& model = w.Strip1->model();
        for (int k = 0; k < StripChartModel::variableCount; ++k) {
            result.points.emplace_back();
            for (std::size_t i = 0; i < model.pointCount(k); ++i)
                result.points.back().push_back(model.point(k, i));
        }
        return result;
    }

    static constexpr const char* days[] = {"031412", "031512", "031612"};
    test::ScratchFolder scratch;
    test::ScriptedEnvironment env{scratch.path()};
    test::ScriptedDialogs dialogs;
};

TEST_F(ThreadedLoad, FaultingInAheadChangesNeitherTheDiagnosticLogNorThePoints) {
    const std::size_t regionsBefore = BlockPool::shared().helperRegions();
    const Load threaded = load(true);
    const std::size_t regionsAfter = BlockPool::shared().helperRegions();
    EXPECT_GT(regionsAfter, regionsBefore) << "the helper thread had nothing to do";
    const Load sequential = load(false);
    EXPECT_EQ(BlockPool::shared().helperRegions(), regionsAfter);

    ASSERT_GT(sequential.log.size(), 30);
    EXPECT_TRUE(sequential.log.contains(QStringLiteral("LoadQXL: Badrowcount = 1")));
    ASSERT_EQ(threaded.log.size(), sequential.log.size());
    for (qsizetype i = 0; i < sequential.log.size(); ++i)
        ASSERT_EQ(threaded.log[i], sequential.log[i]) << "line " << i;

    ASSERT_EQ(sequential.points[0].size(), 3u * 29999u);
    for (int k = 0; k < StripChartModel::variableCount; ++k) {
        SCOPED_TRACE(k);
        ASSERT_EQ(threaded.points[k].size(), sequential.points[k].size());
        for (std::size_t i = 0; i < sequential.points[k].size(); ++i) {
            ASSERT_EQ(threaded.points[k][i].time, sequential.points[k][i].time) << i;
            ASSERT_EQ(threaded.points[k][i].value, sequential.points[k][i].value) << i;
        }
    }
}

} // namespace
} // namespace trendax
