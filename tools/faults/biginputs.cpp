// Big hostile inputs, each read in a child process so that its peak memory is its own: a
// one-gigabyte single-line data log, a ten-million-row one-channel log, and history and comments
// files holding a 50 MB line. Prints the time, the peak resident memory and what was read, and
// the longest stretch without a progress or keep-alive call (the window repaints at each).
// Usage: trendax-biginputs <scratch folder> [case...]; cases: oneline, tenmillion, history,
// comments.
#include "history/historyfile.h"
#include "history/usercomments.h"
#include "loading/datalog.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <functional>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace trendax;
using Clock = std::chrono::steady_clock;

namespace {

constexpr qint64 MB = 1024 * 1024;

// Writes `size` bytes made of `piece` repeated, then `tail`.
bool writeRepeated(const QString& path, const QByteArray& head, const QByteArray& piece,
                   qint64 size, const QByteArray& tail) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;
    file.write(head);
    QByteArray block;
    while (block.size() < 4 * MB)
        block += piece;
    qint64 left = size - head.size() - tail.size();
    while (left > 0) {
        const qint64 n = std::min<qint64>(left, block.size());
        if (file.write(block.constData(), n) != n)
            return false;
        left -= n;
    }
    return file.write(tail) == tail.size();
}

bool makeTenMillionRows(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;
    QByteArray block;
    char line[64];
    for (long row = 0; row < 10'000'000; ++row) {
        const long second = row % 86400;
        const int n =
            std::snprintf(line, sizeof line, "AB01,03/15/12,%02ld:%02ld:%02ld,%ld.%ld\r\n",
                          second / 3600, second / 60 % 60, second % 60, row % 1000, row % 7);
        block.append(line, n);
        if (block.size() > 4 * MB) {
            file.write(block);
            block.clear();
        }
    }
    return file.write(block) == block.size();
}

struct Report {
    double seconds = 0;
    double longestStallSeconds = 0;
    long long rows = 0;
    long long points = 0;
};

Report readLog(const QString& path, const QString& app) {
    LoadState state;
    DataLogOptions options;
    auto last = Clock::now();
    Report report;
    // The window lets its events run at both calls.
    options.keepAlive = [&] {
        const auto now = Clock::now();
        report.longestStallSeconds =
            std::max(report.longestStallSeconds, std::chrono::duration<double>(now - last).count());
        last = now;
    };
    options.progress = [&](qsizetype, qsizetype) { options.keepAlive(); };
    const DataLogResult result = readDataLog(path, app, state, options);
    const auto now = Clock::now();
    report.longestStallSeconds =
        std::max(report.longestStallSeconds, std::chrono::duration<double>(now - last).count());
    report.rows = result.rowCount;
    report.points = result.channels[0] ? qint64(result.channels[0]->count()) : 0;
    return report;
}

// Runs one case in a child; prints its line.
void run(const char* name, const QString& file, const std::function<Report()>& work) {
    std::fflush(stdout);
    const pid_t pid = ::fork();
    if (pid == 0) {
        const auto start = Clock::now();
        Report report = work();
        report.seconds = std::chrono::duration<double>(Clock::now() - start).count();
        std::printf("%-11s %8.1f MB file  %7.2f s  rows %lld  points %lld  longest stall %.2f s",
                    name, double(QFileInfo(file).size()) / MB, report.seconds, report.rows,
                    report.points, report.longestStallSeconds);
        std::fflush(stdout);
        ::_exit(0);
    }
    int status = 0;
    rusage usage{};
    ::wait4(pid, &status, 0, &usage);
    if (WIFEXITED(status) && WEXITSTATUS(status) == 0)
        std::printf("  peak %.0f MB\n", double(usage.ru_maxrss) / 1024);
    else
        std::printf("%-11s failed with status %d, peak %.0f MB\n", name, status,
                    double(usage.ru_maxrss) / 1024);
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fputs("usage: trendax-biginputs <scratch folder> [oneline|tenmillion|history|"
                   "comments...]\n",
                   stderr);
        return 2;
    }
    const QString app = QString::fromLocal8Bit(argv[1]);
    QDir().mkpath(app + "/logfiles");
    const auto wanted = [&](const char* name) {
        if (argc == 2)
            return true;
        for (int i = 2; i < argc; ++i) {
            if (std::strcmp(argv[i], name) == 0)
                return true;
        }
        return false;
    };

    if (wanted("oneline")) {
        const QString path = app + "/logfiles/AB01031512.CSV";
        if (writeRepeated(path, "AB01,03/15/12,10:00:00,1.5", ",2.5", 1024 * MB, "\r\n"))
            run("oneline", path, [&] { return readLog(path, app); });
        QFile::remove(path);
    }
    if (wanted("tenmillion")) {
        const QString path = app + "/logfiles/AB01031612.CSV";
        if (makeTenMillionRows(path))
            run("tenmillion", path, [&] { return readLog(path, app); });
        QFile::remove(path);
    }
    if (wanted("history")) {
        const QString path = app + "/logfiles/AB01031512.TXT";
        if (writeRepeated(path, "12 03/15/12 10:00:00 1 ", "x", 50 * MB,
                          "\r\n12 03/15/12 10:00:01 1\r\n"))
            run("history", path, [&] {
                Report report;
                report.rows = history::readHistoryFile(path).size();
                return report;
            });
        QFile::remove(path);
    }
    if (wanted("comments")) {
        const QString path = app + "/logfiles/AB01USEREVENTS.TXT";
        if (writeRepeated(path, "03/15/2012 10:00:00 ", "y", 50 * MB,
                          "\r\n03/15/2012 10:00:01 z\r\n"))
            run("comments", path, [&] {
                Report report;
                report.rows = history::readCommentRows(path).size();
                return report;
            });
        QFile::remove(path);
    }
    return 0;
}
