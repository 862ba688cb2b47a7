// Writes killed with SIGKILL at random moments, many times over: a comment being appended, a
// factor pair being written and a data log being imported. After every kill each file must hold
// what the writes before it left plus at most the write in flight, whole or not at all, and
// nothing that a later run would read may be left beside it.
//
// Each writer is a forked copy of the test process, which starts far faster than a program.
// TRENDAX_CRASH_KILLS sets the number of kills per kind (tools/crash-campaign.sh raises it).
#include "calibration/factorfiles.h"
#include "history/usercomments.h"
#include "opendlg/importer.h"
#include "opendlg/sitetree.h"
#include "storage/homefolder.h"
#include "support/scratchfolder.h"

#include "crashtexts.h"

#include <QDir>
#include <QFile>
#include <QSet>
#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <functional>
#include <optional>
#include <poll.h>
#include <random>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

using namespace trendax;

namespace {

int killsPerKind() {
    const char* text = std::getenv("TRENDAX_CRASH_KILLS");
    const int n = text ? std::atoi(text) : 0;
    return n > 0 ? n : 100;
}

// What one run of the writer said before it died.
struct WriterRun {
    std::optional<long> begun;     // the last write it started
    std::optional<long> completed; // the last write it finished
    bool insideWrite() const { return begun && (!completed || *completed < *begun); }
};

// One kind of write repeated for ever from a first number on, telling the parent before each
// write "b <n>" and after each write that succeeded "e <n>" through `tell`.
using Writer = std::function<void(long first, const std::function<void(char, long)>& tell)>;

// Forks a writer, lets it work for a random time after it is ready, kills it with SIGKILL.
class Killer {
public:
    explicit Killer(unsigned seed) : random_(seed) {}

    WriterRun killAfterRandomTime(const Writer& writer, long first) {
        int pipeFds[2];
        if (::pipe2(pipeFds, O_CLOEXEC) != 0)
            ADD_FAILURE() << "pipe: " << std::strerror(errno);
        const pid_t pid = ::fork();
        if (pid == 0) {
            ::close(pipeFds[0]);
            const int out = pipeFds[1];
            const auto tell = [out](char what, long n) {
                char line[32];
                const int size = std::snprintf(line, sizeof line, "%c %ld\n", what, n);
                if (::write(out, line, size_t(size)) != size)
                    ::_exit(3);
            };
            tell('r', 0);
            writer(first, tell);
            ::_exit(1); // a write failed: the parent sees the writer end by itself
        }
        ::close(pipeFds[1]);
        WriterRun run;
        if (pid < 0) {
            ADD_FAILURE() << "fork: " << std::strerror(errno);
            ::close(pipeFds[0]);
            return run;
        }

        // Up to 20 ms of writing: long enough for many writes, short enough for many kills.
        std::uniform_int_distribution<int> delayUs(0, 20000);
        const auto ready = waitFor(pipeFds[0], 'r', std::chrono::seconds(30), run);
        const auto deadline = ready + std::chrono::microseconds(delayUs(random_));
        while (std::chrono::steady_clock::now() < deadline && !ended_)
            drain(pipeFds[0], deadline, run);
        ::kill(pid, SIGKILL);
        int status = 0;
        ::waitpid(pid, &status, 0);
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL)
            << "the writer ended by itself with status " << status;
        while (!ended_)
            drain(pipeFds[0], std::chrono::steady_clock::now() + std::chrono::seconds(5), run);
        ::close(pipeFds[0]);
        ended_ = false;
        pending_.clear();
        return run;
    }

private:
    using Clock = std::chrono::steady_clock;

    Clock::time_point waitFor(int fd, char what, std::chrono::seconds limit, WriterRun& run) {
        const auto deadline = Clock::now() + limit;
        while (!ended_ && Clock::now() < deadline) {
            if (drain(fd, deadline, run, what))
                return Clock::now();
        }
        ADD_FAILURE() << "the writer never got ready";
        return Clock::now();
    }

    // Reads what is there (waiting up to the deadline) and takes in every whole line; true when
    // a line starting with `stopAt` was seen.
    bool drain(int fd, Clock::time_point deadline, WriterRun& run, char stopAt = 0) {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
        pollfd p{fd, POLLIN, 0};
        if (::poll(&p, 1, int(std::max<long>(0, long(left.count())))) <= 0)
            return false;
        char buffer[4096];
        const ssize_t got = ::read(fd, buffer, sizeof buffer);
        if (got <= 0) {
            ended_ = got == 0 || errno != EINTR;
            return false;
        }
        pending_.append(buffer, size_t(got));
        bool seen = false;
        for (size_t end; (end = pending_.find('\n')) != std::string::npos;) {
            const std::string line = pending_.substr(0, end);
            pending_.erase(0, end + 1);
            if (line.size() < 3)
                continue;
            const long n = std::strtol(line.c_str() + 2, nullptr, 10);
            if (line[0] == 'b')
                run.begun = n;
            else if (line[0] == 'e')
                run.completed = n;
            seen = seen || line[0] == stopAt;
        }
        return seen;
    }

    std::mt19937 random_;
    std::string pending_;
    bool ended_ = false;
};

QByteArray readAll(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// The names in a folder other than `expected` must all be the program's own temporaries, which
// no reader takes and the next start removes once they are old.
void collectStrays(const QString& folder, const QStringList& expected, QSet<QString>& strays) {
    for (const QString& name : QDir(folder).entryList(QDir::Files | QDir::Hidden)) {
        if (expected.contains(name))
            continue;
        EXPECT_TRUE(homefolder::isOwnTemporary(name))
            << "stray file a later run may read: " << name.toStdString();
        strays.insert(name);
    }
}

void report(const char* kind, int kills, int inside, int strays) {
    std::printf("%s: %d kills, %d inside a write, %d stray temporaries left, 0 torn files\n", kind,
                kills, inside, strays);
}

QByteArray commentLine(long n) {
    return (history::formatCommentTime(test::crashCommentTime(n)) + QLatin1Char(' ') +
            test::crashComment(n))
               .toLatin1() +
           "\r\n";
}

} // namespace

TEST(CrashConsistency, KilledCommentAppendLeavesWholeLinesOnly) {
    const test::ScratchFolder home;
    const QString path = home.file(QStringLiteral("AB01USEREVENTS.TXT"));
    Killer killer(1);
    long stored = 0; // lines in the file before the run
    int inside = 0;
    QSet<QString> strays;
    const int kills = killsPerKind();
    for (int k = 0; k < kills && !testing::Test::HasFailure(); ++k) {
        const WriterRun run = killer.killAfterRandomTime(
            [&](long first, const auto& tell) {
                for (long n = first;; ++n) {
                    const QString text = test::crashComment(n);
                    tell('b', n);
                    if (!history::AppendUserComment(test::crashCommentTime(n), text, path).stored())
                        return;
                    tell('e', n);
                }
            },
            stored);
        inside += run.insideWrite();
        const long confirmed = run.completed ? *run.completed + 1 : stored;
        const QByteArray bytes = readAll(path);
        // The lines before, then every comment confirmed, then the one in flight or nothing.
        QByteArray expected;
        for (long n = 0; n < confirmed; ++n)
            expected += commentLine(n);
        if (bytes.size() == expected.size()) {
            ASSERT_EQ(bytes, expected) << "after kill " << k;
            stored = confirmed;
        } else {
            ASSERT_TRUE(run.insideWrite()) << "after kill " << k;
            expected += commentLine(*run.begun);
            ASSERT_EQ(bytes.size(), expected.size())
                << "torn line after kill " << k << ": the file ends in "
                << bytes.right(60).toStdString();
            ASSERT_EQ(bytes, expected) << "after kill " << k;
            stored = confirmed + 1;
        }
        collectStrays(home.path(), {QStringLiteral("AB01USEREVENTS.TXT")}, strays);
    }
    // The comments read back as one row per stored line.
    EXPECT_EQ(history::readCommentRows(path).size(), stored);
    report("comment", kills, inside, int(strays.size()));
}

TEST(CrashConsistency, KilledFactorWriteLeavesOldOrNewFactorFiles) {
    const test::ScratchFolder app;
    const QString config = app.mkdir(QStringLiteral("cnffiles"));
    const QString scale = scaleFilePath(app.path(), QStringLiteral("AB01"));
    const QString offset = offsetFilePath(app.path(), QStringLiteral("AB01"));
    ASSERT_TRUE(WriteFactors(scale, test::crashFactor(0, 's'), offset, test::crashFactor(0, 'o')));
    const auto bytesOf = [](long n, char which) {
        return (test::crashFactor(n, which) + "\r\n").toLatin1();
    };
    long scaleHolds = 0, offsetHolds = 0, next = 1;
    Killer killer(2);
    int inside = 0;
    QSet<QString> strays;
    const int kills = killsPerKind();
    for (int k = 0; k < kills && !testing::Test::HasFailure(); ++k) {
        const WriterRun run = killer.killAfterRandomTime(
            [&](long first, const auto& tell) {
                for (long n = first;; ++n) {
                    tell('b', n);
                    if (!WriteFactors(scale, test::crashFactor(n, 's'), offset,
                                      test::crashFactor(n, 'o')))
                        return;
                    tell('e', n);
                }
            },
            next);
        inside += run.insideWrite();
        if (run.completed)
            scaleHolds = offsetHolds = *run.completed;
        const QByteArray scaleBytes = readAll(scale);
        const QByteArray offsetBytes = readAll(offset);
        const bool scaleNew = run.insideWrite() && scaleBytes == bytesOf(*run.begun, 's');
        const bool offsetNew = run.insideWrite() && offsetBytes == bytesOf(*run.begun, 'o');
        ASSERT_TRUE(scaleNew || scaleBytes == bytesOf(scaleHolds, 's'))
            << "scale file after kill " << k << " holds " << scaleBytes.size() << " bytes";
        ASSERT_TRUE(offsetNew || offsetBytes == bytesOf(offsetHolds, 'o'))
            << "offset file after kill " << k << " holds " << offsetBytes.size() << " bytes";
        // The scale file is written first: a new offset never stands beside an old scale.
        ASSERT_TRUE(!offsetNew || scaleNew) << "after kill " << k;
        if (scaleNew)
            scaleHolds = *run.begun;
        if (offsetNew)
            offsetHolds = *run.begun;
        next = std::max(scaleHolds, offsetHolds) + 1;
        collectStrays(config, {QStringLiteral("AB01scal.txt"), QStringLiteral("AB01offs.txt")},
                      strays);
        // The next load reads the pair the files hold, never a temporary beside them.
        QString scalePath, offsetPath;
        ASSERT_EQ(ReadScale(app.path(), QStringLiteral("AB01"), scalePath),
                  *factorFromBytes(bytesOf(scaleHolds, 's')));
        ASSERT_EQ(ReadOffset(app.path(), QStringLiteral("AB01"), offsetPath),
                  *factorFromBytes(bytesOf(offsetHolds, 'o')));
    }
    report("factors", kills, inside, int(strays.size()));
}

TEST(CrashConsistency, KilledImportLeavesOldOrNewDataLog) {
    const test::ScratchFolder scratch;
    // Two media with the same data log, its bytes differing in content and length.
    QByteArray first, second;
    for (int i = 0; i < 6000; ++i) {
        first += QByteArray("AB01,03/15/12,10:00:") + QByteArray::number(10 + i % 50) + ",1.5\r\n";
        second +=
            QByteArray("AB01,03/15/12,11:00:") + QByteArray::number(10 + i % 50) + ",2.25,3\r\n";
    }
    const QString sourceA = scratch.mkdir(QStringLiteral("mediaA"));
    const QString sourceB = scratch.mkdir(QStringLiteral("mediaB"));
    scratch.write(QStringLiteral("mediaA/AB010315.CSV"), first);
    scratch.write(QStringLiteral("mediaB/AB010315.CSV"), second);
    const QString home = scratch.mkdir(QStringLiteral("logfiles"));
    const QString config = scratch.mkdir(QStringLiteral("cnffiles"));
    const QString imported = QStringLiteral("AB01031512.CSV");
    const QByteArray versions[2] = {first, second};

    std::optional<long> holds; // the import whose bytes the home folder holds
    long next = 0;
    Killer killer(3);
    int inside = 0;
    QSet<QString> strays;
    const int kills = killsPerKind();
    for (int k = 0; k < kills && !testing::Test::HasFailure(); ++k) {
        // Imports from the two media in turn, each replacing the home folder's copy.
        const WriterRun run = killer.killAfterRandomTime(
            [&](long first, const auto& tell) {
                for (long n = first;; ++n) {
                    tell('b', n);
                    const import::Outcome outcome =
                        import::run({n % 2 ? sourceB : sourceA, home, config}, false, {});
                    if (outcome.stopped || outcome.copied.size() != 1)
                        return;
                    tell('e', n);
                }
            },
            next);
        inside += run.insideWrite();
        if (run.completed)
            holds = *run.completed;
        const QString path = home + QLatin1Char('/') + imported;
        const bool exists = QFile::exists(path);
        const QByteArray bytes = readAll(path);
        const bool isNew = run.insideWrite() && exists && bytes == versions[*run.begun % 2];
        if (!isNew && !holds) {
            ASSERT_FALSE(exists) << "after kill " << k;
        } else if (!isNew) {
            ASSERT_EQ(bytes.size(), versions[*holds % 2].size()) << "after kill " << k;
            ASSERT_EQ(bytes, versions[*holds % 2]) << "after kill " << k;
        } else {
            holds = *run.begun;
        }
        next = holds ? *holds + 1 : next + 1;
        collectStrays(home, {imported}, strays);
        // The tree sees the imported day alone, never a temporary.
        EXPECT_EQ(sitetree::listFiles(home), holds ? QStringList{imported} : QStringList{});
    }
    report("import", kills, inside, int(strays.size()));
}
