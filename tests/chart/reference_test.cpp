#include "chart/readouts.h"
#include "chart/stripchartmodel.h"
#include "chartfixtures.h"

#include <gtest/gtest.h>

#include <limits>

namespace trendax {
namespace {

constexpr double second = 1.0 / 86400.0;

TEST(ReferenceReadouts, TimeDifferenceInHoursMinutesAndSeconds) {
    const struct {
        const char* name;
        double days;
        const char* text;
    } rows[] = {
        {"none", 0, "0:00:00"},
        {"cursor before the reference", -(3723 * second), "-1:02:03"},
        {"days count as hours", 2 + 1.0 / 24, "49:00:00"},
        {"rounded to the second", 59.7 * second, "0:01:00"},
        {"just under a second back", -0.6 * second, "-0:00:01"},
        {"far apart", 1e11, "2400000000000:00:00"},
        {"not a number", std::numeric_limits<double>::quiet_NaN(), "?"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(readouts::formatTimeDifference(row.days).toStdString(), row.text);
    }
}

TEST(ReferenceReadouts, DeltaOfTheUnroundedValues) {
    // 12.346 and 2.344 show as 12.35 and 2.34, but they are 10.002 apart.
    EXPECT_EQ(readouts::formatDelta(12.346, 2.344), "10.00");
    EXPECT_EQ(readouts::formatDelta(-1.5, 2.25), "-3.75");
}

TEST(ReferenceReadouts, ValueAtAnyTimeFollowsTheCursorsNearestPointRule) {
    StripChartModel m;
    const XYArray a = test::makeArray({{10.0, 1.0}, {11.0, 2.0}, {11.0, 3.0}, {12.0, 4.0}});
    m.addXYArray(0, a);
    for (const double t : {0.0, 10.4, 10.5, 11.0, 11.6, 99.0}) {
        SCOPED_TRACE(t);
        m.setCursorX(t);
        EXPECT_EQ(m.valueAt(0, t), m.cursorValue(0));
    }
    EXPECT_EQ(m.valueAt(0, 10.5), 3.0) << "equal distance: the later time, the last added";
    EXPECT_EQ(m.valueAt(1, 10.5), 0.0) << "a variable without points";
}

} // namespace
} // namespace trendax
