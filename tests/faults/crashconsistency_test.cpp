// Writes killed with SIGKILL at random moments, many times over: a comment being appended, a
// factor pair being written and a data log being imported. After every kill each file must hold
// what the writes before it left plus at most the write in flight, whole or not at all, and
// nothing that a later run would read may be left beside it.
// TRENDAX_CRASH_KILLS sets the number of kills per kind (tools/faults/crash-campaign.sh raises it).
#include "calibration/factorfiles.h"
#include "history/usercomments.h"
#include "opendlg/importer.h"
#include "opendlg/sitetree.h"
#include "storage/datetime.h"
#include "storage/homefolder.h"
#include "support/scratchfolder.h"

#include <QDir>
#include <QFile>
#include <QSet>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <random>
#include <sys/mman.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

using namespace trendax;

namespace {

// The last write a killed writer began and the last it finished, -1 for none.
struct WriterRun {
    long begun = -1, completed = -1;
    bool insideWrite() const { return begun > completed; }
};

// Forks a writer doing write(first), write(first + 1), ... for ever and kills it with SIGKILL
// up to 20 ms after it is ready.
WriterRun killAfterRandomTime(std::mt19937& random, long first,
                              const std::function<bool(long)>& write) {
    void* memory = ::mmap(nullptr, sizeof(WriterRun) + sizeof(long), PROT_READ | PROT_WRITE,
                          MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) {
        ADD_FAILURE() << "mmap failed";
        return {};
    }
    auto* shared = new (memory) WriterRun;
    std::atomic_ref<long> ready(*reinterpret_cast<long*>(shared + 1)), begun(shared->begun),
        completed(shared->completed);
    const pid_t pid = ::fork();
    if (pid == 0) {
        ready = 1;
        for (long n = first;; ++n) {
            begun = n;
            if (!write(n))
                ::_exit(1); // the parent sees the writer end by itself
            completed = n;
        }
    }
    EXPECT_GT(pid, 0) << "fork failed";
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (pid > 0 && !ready && std::chrono::steady_clock::now() < limit)
        std::this_thread::sleep_for(std::chrono::microseconds(50));
    std::this_thread::sleep_for(
        std::chrono::microseconds(std::uniform_int_distribution<int>(0, 20000)(random)));
    int status = 0;
    if (pid > 0 && ::kill(pid, SIGKILL) == 0 && ::waitpid(pid, &status, 0) == pid) {
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL)
            << "the writer ended by itself with status " << status;
    }
    const WriterRun run = *shared;
    ::munmap(memory, sizeof(WriterRun) + sizeof(long));
    return run;
}

QByteArray readAll(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// Kills a writer again and again, from write `next` on. After each kill `check` takes what the run
// said and moves `next` on; every name in `folder` besides `kept` must then be one of the
// program's own temporaries, which no reader takes and the next start removes.
void killRepeatedly(const char* kind, const QString& folder, const QStringList& kept, long next,
                    const std::function<bool(long)>& write,
                    const std::function<void(const WriterRun&, long& next)>& check) {
    const char* text = std::getenv("TRENDAX_CRASH_KILLS");
    const int kills = text && std::atoi(text) > 0 ? std::atoi(text) : 200;
    std::mt19937 random{unsigned(kills)};
    QSet<QString> strays;
    int inside = 0;
    for (int k = 0; k < kills && !testing::Test::HasFailure(); ++k) {
        SCOPED_TRACE("after kill " + std::to_string(k));
        const WriterRun run = killAfterRandomTime(random, next, write);
        inside += run.insideWrite();
        check(run, next);
        for (const QString& name : QDir(folder).entryList(QDir::Files | QDir::Hidden)) {
            if (kept.contains(name))
                continue;
            EXPECT_TRUE(homefolder::isOwnTemporary(name)) << "stray file: " << name.toStdString();
            strays.insert(name);
        }
    }
    if (!testing::Test::HasFailure())
        std::printf("%s: %d kills, %d inside a write, %d stray temporaries left, 0 torn files\n",
                    kind, kills, inside, int(strays.size()));
}

// Comment n names its number; one in four is several pages long, so that some lines cross
// page boundaries of the file and take the kernel more than one step.
QString comment(long n) {
    std::mt19937 random{unsigned(n)};
    const int length = random() % 4 == 0 ? 4096 + int(random() % 36000) : 1 + int(random() % 300);
    return QStringLiteral("comment %1 %2 end")
        .arg(n)
        .arg(QString(length, QLatin1Char('a' + n % 26)));
}

datetime::DateTime commentTime(long n) {
    return 40969.0 + double(n) / datetime::secondsPerDay;
}

// Factor n of a file: a number whose length changes with n up to several pages, so that an old
// and a new file never have the same size by chance.
QString factor(long n, char which) {
    const int digits = 1 + int((n * 2654435761u) % 9000u);
    return QStringLiteral("%1%2.%3")
        .arg(which == 's' ? 1 : -1)
        .arg(n)
        .arg(QString(digits, QLatin1Char('0' + n % 10)));
}

} // namespace

TEST(CrashConsistency, KilledCommentAppendLeavesWholeLinesOnly) {
    const test::ScratchFolder home;
    const QString path = home.file(QStringLiteral("AB01USEREVENTS.TXT"));
    const auto line = [](long n) {
        return (history::formatCommentTime(commentTime(n)) + ' ' + comment(n)).toLatin1() + "\r\n";
    };
    QByteArray expected; // the lines stored before the run
    killRepeatedly(
        "comment", home.path(), {QStringLiteral("AB01USEREVENTS.TXT")}, 0,
        [&](long n) {
            return history::AppendUserComment(commentTime(n), comment(n), path).stored();
        },
        [&](const WriterRun& run, long& next) {
            while (next <= run.completed)
                expected += line(next++);
            const QByteArray bytes = readAll(path);
            if (run.insideWrite() && bytes == expected + line(run.begun))
                expected += line(next++);
            ASSERT_EQ(bytes.size(), expected.size())
                << "torn line: the file ends in " << bytes.right(60).toStdString();
            ASSERT_EQ(bytes, expected);
        });
    // The comments read back as one row per stored line.
    EXPECT_EQ(history::readCommentRows(path).size(), expected.count("\r\n"));
}

TEST(CrashConsistency, KilledFactorWriteLeavesOldOrNewFactorFiles) {
    const test::ScratchFolder app;
    const QString config = app.mkdir(QStringLiteral("cnffiles"));
    const QString site = QStringLiteral("AB01");
    const QString scale = scaleFilePath(app.path(), site),
                  offset = offsetFilePath(app.path(), site);
    const auto bytesOf = [](long n, char which) { return (factor(n, which) + "\r\n").toLatin1(); };
    ASSERT_TRUE(WriteFactors(scale, factor(0, 's'), offset, factor(0, 'o')));
    long scaleHolds = 0, offsetHolds = 0;
    killRepeatedly(
        "factors", config, {QStringLiteral("AB01scal.txt"), QStringLiteral("AB01offs.txt")}, 1,
        [&](long n) { return WriteFactors(scale, factor(n, 's'), offset, factor(n, 'o')); },
        [&](const WriterRun& run, long& next) {
            if (run.completed >= 0)
                scaleHolds = offsetHolds = run.completed;
            const QByteArray scaleBytes = readAll(scale), offsetBytes = readAll(offset);
            const bool scaleNew = run.insideWrite() && scaleBytes == bytesOf(run.begun, 's');
            const bool offsetNew = run.insideWrite() && offsetBytes == bytesOf(run.begun, 'o');
            ASSERT_TRUE(scaleNew || scaleBytes == bytesOf(scaleHolds, 's'))
                << "scale file holds " << scaleBytes.size() << " bytes";
            ASSERT_TRUE(offsetNew || offsetBytes == bytesOf(offsetHolds, 'o'))
                << "offset file holds " << offsetBytes.size() << " bytes";
            // The scale file is written first: a new offset never stands beside an old scale.
            ASSERT_TRUE(!offsetNew || scaleNew);
            scaleHolds = scaleNew ? run.begun : scaleHolds;
            offsetHolds = offsetNew ? run.begun : offsetHolds;
            next = std::max(scaleHolds, offsetHolds) + 1;
            // The next load reads the pair the files hold, never a temporary beside them.
            QString scalePath, offsetPath;
            ASSERT_EQ(ReadScale(app.path(), site, scalePath),
                      *factorFromBytes(bytesOf(scaleHolds, 's')));
            ASSERT_EQ(ReadOffset(app.path(), site, offsetPath),
                      *factorFromBytes(bytesOf(offsetHolds, 'o')));
        });
}

TEST(CrashConsistency, KilledImportLeavesOldOrNewDataLog) {
    const test::ScratchFolder scratch;
    // Two media with the same data log, its bytes differing in content and length.
    QByteArray versions[2];
    for (int i = 0; i < 6000; ++i) {
        versions[0] += "AB01,03/15/12,10:00:" + QByteArray::number(10 + i % 50) + ",1.5\r\n";
        versions[1] += "AB01,03/15/12,11:00:" + QByteArray::number(10 + i % 50) + ",2.25,3\r\n";
    }
    const QString media[2] = {scratch.write(QStringLiteral("mediaA/AB010315.CSV"), versions[0]),
                              scratch.write(QStringLiteral("mediaB/AB010315.CSV"), versions[1])};
    const QString home = scratch.mkdir(QStringLiteral("logfiles"));
    const QString config = scratch.mkdir(QStringLiteral("cnffiles"));
    const QString imported = QStringLiteral("AB01031512.CSV");
    long holds = -1; // the import whose bytes the home folder holds
    killRepeatedly(
        "import", home, {imported}, 0,
        [&](long n) {
            const import::Outcome outcome =
                import::run({QFileInfo(media[n % 2]).path(), home, config, {}}, false, {});
            return !outcome.stopped && outcome.copied.size() == 1;
        },
        [&](const WriterRun& run, long& next) {
            holds = std::max(holds, run.completed);
            const QString path = home + QLatin1Char('/') + imported;
            const QByteArray bytes = readAll(path);
            if (run.insideWrite() && QFile::exists(path) && bytes == versions[run.begun % 2])
                holds = run.begun;
            else if (holds < 0)
                ASSERT_FALSE(QFile::exists(path));
            else
                ASSERT_EQ(bytes, versions[holds % 2]);
            next = holds < 0 ? next + 1 : holds + 1;
            // The tree sees the imported day alone, never a temporary.
            EXPECT_EQ(sitetree::listFiles(home), holds < 0 ? QStringList{} : QStringList{imported});
        });
}
