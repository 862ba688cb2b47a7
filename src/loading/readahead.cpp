#include "loading/readahead.h"

#include "storage/filenames.h"

#include <QFile>
#include <bit>
#include <chrono>
#include <sys/stat.h>

namespace trendax {

namespace {

// Thrown through the parser when the window no longer wants the day.
struct Stopped {};

bool sameBits(double a, double b) {
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

bool sameState(const LoadState& a, const LoadState& b) {
    return a.numChannels == b.numChannels && sameBits(a.XMin, b.XMin) && sameBits(a.XMax, b.XMax) &&
           sameBits(a.mScale, b.mScale) && sameBits(a.mOffset, b.mOffset);
}

} // namespace

std::optional<DataLogReadAhead::FileIdentity> DataLogReadAhead::identityOf(const QString& path) {
    struct stat info {};
    if (::stat(QFile::encodeName(filenames::resolve(path)).constData(), &info) != 0 ||
        !S_ISREG(info.st_mode))
        return std::nullopt;
    FileIdentity id;
    id.device = std::uint64_t(info.st_dev);
    id.inode = std::uint64_t(info.st_ino);
    id.size = std::int64_t(info.st_size);
    id.modified = std::int64_t(info.st_mtim.tv_sec) * 1'000'000'000 + info.st_mtim.tv_nsec;
    id.changed = std::int64_t(info.st_ctim.tv_sec) * 1'000'000'000 + info.st_ctim.tv_nsec;
    return id;
}

DataLogReadAhead::DataLogReadAhead(Settings settings) : settings_(std::move(settings)) {
    if (!settings_.paths.isEmpty())
        worker_ = std::thread([this] { work(); });
}

DataLogReadAhead::~DataLogReadAhead() {
    stop();
    if (worker_.joinable())
        worker_.join();
}

void DataLogReadAhead::stop() {
    {
        std::lock_guard lock(mutex_);
        stopping_ = true;
    }
    changed_.notify_all();
}

void DataLogReadAhead::work() {
    try {
        workDays();
    } catch (...) {
        // No memory to queue a day: the window reads the days from here on itself.
    }
    {
        std::lock_guard lock(mutex_);
        finished_ = true;
    }
    changed_.notify_all();
}

void DataLogReadAhead::waitAhead() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [&] { return !ready_.empty() || finished_ || !worker_.joinable(); });
}

void DataLogReadAhead::workDays() {
    LoadState state = settings_.state;
    QByteArray buffer; // reused from day to day, like the window's own
    for (qsizetype i = 0; i < settings_.paths.size(); ++i) {
        {
            std::unique_lock lock(mutex_);
            changed_.wait(lock, [&] { return stopping_ || ready_.size() < daysAhead; });
            if (stopping_)
                return;
        }
        Slot slot;
        slot.stateBefore = state;
        readOne(settings_.paths[i], state, buffer, slot);
        // The last day's bytes go before the window hands the day to the chart.
        if (i + 1 == settings_.paths.size() || !slot.usable)
            buffer = QByteArray();
        const bool usable = slot.usable;
        {
            std::lock_guard lock(mutex_);
            if (stopping_)
                return;
            ready_.push_back(std::move(slot));
            // Nothing of the next day is read until this one is taken.
            row_ = -1;
            rowCount_ = -1;
        }
        changed_.notify_all();
        if (!usable)
            return; // what follows would start from a state the window will not have
    }
}

void DataLogReadAhead::readOne(const QString& path, LoadState& state, QByteArray& buffer,
                               Slot& slot) {
    slot.identity = identityOf(path);
    if (!slot.identity)
        return; // the window's own reading says what is wrong with it
    bool tooManyLines = false;
    DataLogOptions options;
    options.readBuffer = &buffer;
    options.dumpTable = settings_.collectLines;
    if (settings_.collectLines) {
        options.debugOut = [&](const QString& line) {
            if (slot.day.lines.size() < lineLimit)
                slot.day.lines.append(line);
            else
                tooManyLines = true;
        };
    }
    options.progress = [this](qsizetype row, qsizetype rowCount) {
        if (stopping_)
            throw Stopped();
        rowCount_ = rowCount;
        row_ = row;
    };
    options.keepAlive = [this] {
        if (stopping_)
            throw Stopped();
    };
    try {
        slot.day.result = openDataLog(path, state, options);
    } catch (...) {
        // Stopped, a file that cannot be opened, or no memory for the arrays: the window reads
        // the day itself and meets the same failure there, if any.
        return;
    }
    slot.day.state = state;
    slot.usable = !tooManyLines && identityOf(path) == slot.identity;
}

std::optional<DataLogReadAhead::Day>
DataLogReadAhead::take(const QString& path, const LoadState& state,
                       const std::function<void(qsizetype, qsizetype)>& waiting) {
    Slot slot;
    {
        std::unique_lock lock(mutex_);
        if (stopping_ || next_ >= settings_.paths.size() || settings_.paths[next_] != path) {
            lock.unlock();
            stop();
            return std::nullopt;
        }
        while (ready_.empty()) {
            if (finished_) {
                lock.unlock();
                stop();
                return std::nullopt;
            }
            lock.unlock();
            if (waiting)
                waiting(row_, rowCount_);
            lock.lock();
            if (ready_.empty())
                changed_.wait_for(lock, std::chrono::milliseconds(40));
        }
        slot = std::move(ready_.front());
        ready_.pop_front();
        ++next_;
    }
    changed_.notify_all();
    if (!slot.usable || !sameState(slot.stateBefore, state) || identityOf(path) != slot.identity) {
        stop();
        return std::nullopt;
    }
    return std::move(slot.day);
}

} // namespace trendax
