#pragma once

#include "chart/xyarray.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <vector>

// The reader of a controller's daily data log: comma-separated rows of site code, date, time and
// up to thirteen channel values, turned into one 2 x N array per channel for the chart.
namespace trendax {

inline constexpr int channelSlots = 13;

// A failure that ends the whole load: the data log or its folder could not be opened, a date
// code is not a date. The well loader logs its text and restores the window.
class LoadFailure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// The main window's load state that the reader reads and grows from file to file. The well
// loader resets it before the first file; the channel count and XMax only grow, XMin only falls.
struct LoadState {
    std::int16_t numChannels = 0;
    double XMin = 1e11;
    double XMax = 0;
    // The site's calibration pair, applied to channel 1 of one-channel loads only.
    double mScale = 1;
    double mOffset = 0;

    void reset() {
        numChannels = 0;
        XMin = 1e11;
        XMax = 0;
    }
};

// Bytes read or scanned between two keepAlive calls at most.
inline constexpr qsizetype keepAliveBytes = 16 * 1024 * 1024;

struct DataLogOptions {
    // Receives every diagnostic line in order; none are built when it is empty.
    std::function<void(const QString&)> debugOut;
    // Also builds the "Dumping CSV file" line with the whole table (costly; only when logging).
    bool dumpTable = false;
    // Called for every row index that is a multiple of 1000, 0 included, with the row count.
    std::function<void(qsizetype row, qsizetype rowCount)> progress;
    // Called by readDataLog once the file is open, before anything of it is read.
    std::function<void()> opened;
    // Called between pieces of work that bring no row: reading the file, measuring its lines,
    // and rows that are megabytes long, at least every keepAliveBytes. A window lets its events
    // run there, so that a file of one gigabyte-long line does not freeze it.
    std::function<void()> keepAlive;
    // Off: every row takes the general path (the fast path must give the same results).
    bool fastPath = true;
    // Holds the file's bytes while readDataLog parses them. A load keeps one from file to file,
    // so that every day is read into memory that is already there instead of a fresh mapping of
    // ten megabytes, page by page. Null: the call reads into a buffer of its own.
    QByteArray* readBuffer = nullptr;
    // Off: every field is parsed as usual but no array is kept (a pass that measures parsing
    // alone); the values only go into valueSum.
    bool storeValues = true;
};

struct DataLogResult {
    // Fields of the widest line; channels in the file = fieldCount - 3.
    int fieldCount = 0;
    // Every row of the file, bad rows included; blank lines are not rows.
    qsizetype rowCount = 0;
    // Rows dropped because channel 1 was missing or not a number.
    int badRowCount = 0;
    // Channel k at index k - 1: channel 1 always, channel k whenever numChannels > k - 1 after
    // this file; null otherwise. Each holds rowCount - badRowCount points in file order.
    std::array<std::shared_ptr<XYArray>, channelSlots> channels;
    // What the rows left the toolbar buttons "yscale" and "tracks" at; unset without good rows.
    std::optional<bool> yscaleEnabled;
    std::optional<bool> tracksEnabled;
    // The sum of the time stamps and channel values of the good rows; only a pass without
    // stored values computes it.
    double valueSum = 0;
};

// Parses the bytes of one data log (Windows-1252, CR LF or LF, an optional UTF-8 byte order
// mark), growing state. Every failure inside the table is passed over as the row rules say.
DataLogResult parseDataLog(QByteArrayView bytes, LoadState& state,
                           const DataLogOptions& options = {});

// Reads one data log: logs "LoadQXL(" path ")", writes the home folder's Schema.ini for it, then
// parses it. A file that cannot be opened throws LoadFailure; after that nothing does.
DataLogResult readDataLog(const QString& path, const QString& appFolder, LoadState& state,
                          const DataLogOptions& options = {});
// The two halves of readDataLog: the start line and Schema.ini, which belong to the window's
// thread at the moment the day is due, and opening, reading and parsing the file, which a
// read-ahead may do earlier on a thread of its own.
void announceDataLog(const QString& path, const QString& appFolder,
                     const DataLogOptions& options = {});
DataLogResult openDataLog(const QString& path, LoadState& state,
                          const DataLogOptions& options = {});

// ---- Hand-over to the chart ----

struct HandoverStep {
    int channel = 1;             // 1 to 13; goes to chart variable channel - 1
    std::optional<bool> visible; // VarVisible to set after AddXYArray, if any
    int checkMenuItem = 0;       // mnuChannel item (1 to 3) to check, 0 for none
};

struct HandoverPlan {
    std::vector<HandoverStep> steps;
    // What the hand-over leaves "tracks" and mnuQuillChannels at; unset when nothing is handed.
    std::optional<bool> tracksEnabled;
    std::optional<bool> quillChannelsEnabled;
};

// Which slots go to the chart after a file, by the load's channel count. Above five channels all
// thirteen slots are handed over, also those this load did not fill: 6- and 7-channel logs rely
// on that. A count of 88 hands nothing over, deliberately.
HandoverPlan planHandover(int numChannels);

// LoadedRowTotal after a file of rowCount rows: restarted by the first file of a load, grown by
// the others. The chart's MaxBufferSize is raised to it when smaller.
std::int32_t nextLoadedRowTotal(std::int32_t total, qsizetype rowCount, bool firstFileOfLoad);

} // namespace trendax
