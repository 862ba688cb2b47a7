#pragma once

#include "loading/datalog.h"

#include <QStringList>
#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>

namespace trendax {

// Reads and parses the data logs of a load on a thread of its own, daysAhead days ahead of the
// window's thread, so that parsing day N + 1 runs on the machine's other core while the window
// hands day N to the chart and reads its history.
//
// Nothing the user or the diagnostic log can see moves off the window's thread: the worker only
// reads bytes and parses them into arrays, keeping its diagnostic lines for the window to write
// when the day is due. A day read ahead is used only if the file is still the one that was read
// (same file, size and times) and the load state it started from is the window's: otherwise the
// window reads the day itself, as it would without a read-ahead, and the read-ahead stops.
class DataLogReadAhead {
public:
    struct Settings {
        // The data logs of the load, in the order the window will ask for them.
        QStringList paths;
        // The load state before the first of them.
        LoadState state;
        // Keep the diagnostic lines, the table dump among them, as the window does only while
        // its diagnostic log is on.
        bool collectLines = false;
    };

    // A day as the window's thread would have read it.
    struct Day {
        DataLogResult result;
        LoadState state; // after the day
        QStringList lines;
    };

    explicit DataLogReadAhead(Settings settings);
    ~DataLogReadAhead();
    DataLogReadAhead(const DataLogReadAhead&) = delete;
    DataLogReadAhead& operator=(const DataLogReadAhead&) = delete;

    // The day of path when the read-ahead has it for the given state; waits for the worker to
    // finish it, calling waiting(row, rowCount) at least every 40 ms meanwhile with the last
    // multiple of 1000 rows that it reached (-1 before it knows the row count). nullopt: read
    // the day on the calling thread; the read-ahead has stopped for good.
    std::optional<Day> take(const QString& path, const LoadState& state,
                            const std::function<void(qsizetype row, qsizetype rowCount)>& waiting);

    // Waits until the worker has finished the day that take() is asked for next, or has stopped.
    void waitAhead();

    // Diagnostic lines a day may keep before the read-ahead leaves that day to the window (a
    // log of millions of bad rows is written as it is read, not held).
    static constexpr qsizetype lineLimit = 100'000;
    // Days parsed and not yet taken, at most. Each costs a day's arrays; two or three days ahead
    // measured no faster than one, a year's load included.
    static constexpr std::size_t daysAhead = 1;

    // The identity of a file as the read-ahead compares it; nullopt when it cannot be read.
    struct FileIdentity {
        std::uint64_t device = 0, inode = 0;
        std::int64_t size = 0, modified = 0, changed = 0;
        bool operator==(const FileIdentity&) const = default;
    };
    static std::optional<FileIdentity> identityOf(const QString& path);

private:
    struct Slot {
        bool usable = false;
        std::optional<FileIdentity> identity;
        LoadState stateBefore;
        Day day;
    };

    void work();
    void workDays();
    void readOne(const QString& path, LoadState& state, QByteArray& buffer, Slot& slot);
    void stop();

    Settings settings_;
    std::mutex mutex_;
    std::condition_variable changed_;
    qsizetype next_ = 0; // index of the path take() expects next
    // Days the worker has finished and take() has not taken yet, at most daysAhead.
    std::deque<Slot> ready_;
    bool finished_ = false; // the worker has returned
    // The window no longer wants days from the worker; checked by the worker as it parses.
    std::atomic<bool> stopping_ = false;
    // The worker's progress in the day it reads.
    std::atomic<qsizetype> row_ = -1;
    std::atomic<qsizetype> rowCount_ = -1;
    std::thread worker_;
};

} // namespace trendax
