#include "loading/readahead.h"
#include "support/scratchfolder.h"

#include <gtest/gtest.h>

namespace trendax {
namespace {

using test::ScratchFolder;

QByteArray rows(int count, int channels, double value) {
    QByteArray text;
    for (int i = 0; i < count; ++i) {
        text += QByteArray("AB12,03/14/12,") + QByteArray::number(10 + i / 2500) + ':' +
                QByteArray::number(10 + i / 50 % 50) + ':' + QByteArray::number(10 + i % 50) +
                ".00";
        for (int c = 0; c < channels; ++c)
            text += ',' + QByteArray::number(value + c);
        text += "\r\n";
    }
    return text;
}

// A day compared with what the window's own reading gives.
void expectSameDay(const DataLogReadAhead::Day& day, const QString& path, LoadState& state) {
    const DataLogResult own = openDataLog(path, state);
    EXPECT_EQ(day.result.rowCount, own.rowCount);
    EXPECT_EQ(day.state.numChannels, state.numChannels);
    EXPECT_EQ(day.state.XMax, state.XMax);
    for (std::size_t k = 0; k < own.channels.size(); ++k) {
        ASSERT_EQ(bool(day.result.channels[k]), bool(own.channels[k])) << "slot " << k;
        if (!own.channels[k])
            continue;
        ASSERT_EQ(day.result.channels[k]->count(), own.channels[k]->count());
        for (std::size_t i = 0; i < own.channels[k]->count(); ++i) {
            EXPECT_EQ(day.result.channels[k]->x(i), own.channels[k]->x(i));
            EXPECT_EQ(day.result.channels[k]->y(i), own.channels[k]->y(i));
        }
    }
}

TEST(ReadAhead, HandsOverOnlyDaysThatAreStillWhatItReadFromTheWindowsState) {
    const struct {
        const char* name;
        // What happens to the second day once the worker has read it; false: the read-ahead
        // must leave that day to the window.
        std::function<void(const QString& path, LoadState& state)> meanwhile;
        bool usable;
    } cases[] = {
        {"untouched", [](const QString&, LoadState&) {}, true},
        {"rewritten with other rows",
         [](const QString& p, LoadState&) {
             QFile f(p);
             ASSERT_TRUE(f.open(QIODevice::WriteOnly));
             f.write(rows(7, 5, 9));
         },
         false},
        {"deleted", [](const QString& p, LoadState&) { QFile::remove(p); }, false},
        {"the window's state went another way",
         [](const QString&, LoadState& state) { state.XMax += 1; }, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ScratchFolder scratch;
        const QStringList paths = {scratch.write("AB01031412.CSV", rows(3000, 13, 1)),
                                   scratch.write("AB01031512.CSV", rows(2500, 5, 2)),
                                   scratch.write("AB01031612.CSV", rows(10, 5, 3))};
        DataLogReadAhead ahead({paths, LoadState(), true});
        LoadState state;
        std::vector<qsizetype> shown;
        auto first =
            ahead.take(paths[0], state, [&](qsizetype row, qsizetype) { shown.push_back(row); });
        ASSERT_TRUE(first);
        EXPECT_TRUE(std::is_sorted(shown.begin(), shown.end()));
        EXPECT_EQ(first->lines.first(), "LoadQXL: file opened");
        EXPECT_EQ(first->lines.last(), "LoadQXL: end load loop");
        expectSameDay(*first, paths[0], state);

        ahead.waitAhead();
        c.meanwhile(paths[1], state);
        auto second = ahead.take(paths[1], state, {});
        EXPECT_EQ(bool(second), c.usable);
        if (second)
            expectSameDay(*second, paths[1], state);
        // Once a day is left to the window, so are the days after it.
        EXPECT_EQ(bool(ahead.take(paths[2], state, {})), c.usable);
    }
}

TEST(ReadAhead, ADayAskedForOutOfTurnStopsIt) {
    ScratchFolder scratch;
    const QStringList paths = {scratch.write("AB01031412.CSV", rows(5, 1, 1)),
                               scratch.write("AB01031512.CSV", rows(5, 1, 2))};
    DataLogReadAhead ahead({paths, LoadState(), false});
    EXPECT_FALSE(ahead.take(paths[1], LoadState(), {}));
    EXPECT_FALSE(ahead.take(paths[0], LoadState(), {}));
}

} // namespace
} // namespace trendax
