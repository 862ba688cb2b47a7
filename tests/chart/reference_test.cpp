#include "chart/readouts.h"
#include "chart/statslayout.h"
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

// The reference columns follow "Max"; the seven columns and the rows stay where they are.
TEST(StatsLayout, ReferenceColumnsRightOfMaxAndOnlyWhenAsked) {
    for (const double dpi : {96.0, 144.0}) {
        SCOPED_TRACE(dpi);
        statslayout::Metrics m;
        m.dpi = dpi;
        m.lineHeight = m.boldLineHeight = int(dpi / 6);
        m.checkBox = 20;
        m.nameWidth = m.cursorTextWidth = 130;
        m.columnWidth.fill(64);
        m.referenceWidth = {70, 200};
        const statslayout::Geometry plain = statslayout::compute(m);
        EXPECT_TRUE(plain.referenceHeadings[0].isNull());
        EXPECT_TRUE(plain.referenceValues[12][1].isNull());

        m.referenceColumns = true;
        const statslayout::Geometry g = statslayout::compute(m);
        EXPECT_EQ(g.headings, plain.headings);
        EXPECT_EQ(g.values, plain.values);
        EXPECT_EQ(g.names, plain.names);
        const QRect max = g.headings[statslayout::columnCount - 1];
        const QRect ref = g.referenceHeadings[0], delta = g.referenceHeadings[1];
        EXPECT_GT(ref.left(), max.right());
        EXPECT_GT(delta.left(), ref.right());
        EXPECT_EQ(delta.width(), 200);
        EXPECT_GT(g.width, delta.right());
        EXPECT_GT(g.width, plain.width);
        for (int r = 0; r < statslayout::rowCount; ++r) {
            EXPECT_EQ(g.referenceValues[r][0].left(), ref.left()) << r;
            EXPECT_EQ(g.referenceValues[r][1].top(), g.values[r][0].top()) << r;
        }
    }
}

} // namespace
} // namespace trendax
