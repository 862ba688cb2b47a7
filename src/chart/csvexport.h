#pragma once

#include <QString>
#include <vector>

class QIODevice;

namespace trendax {

class StripChartModel;

namespace csvexport {

// One column of the export: a variable of the chart and the name it is shown with.
struct Column {
    int variable = 0;
    QString name;
};

// Writes the points of the visible window as comma-separated values in UTF-8: a header row, then
// one row per time stamp in time order, with the time in ISO 8601 (local time, hundredths of a
// second when there are any) and in the controller's MM/DD/YY HH:MM:SS form, then each column's
// value at that time stamp, or an empty field where the variable has no point there. Values are
// written as the chart holds them, with "." as the decimal point, in the shortest form that
// reads back as the same number. Streams the points in blocks, never a copy of the window.
// Returns false as soon as a write to out fails.
bool writeVisible(const StripChartModel& model, const std::vector<Column>& columns, QIODevice& out);

} // namespace csvexport
} // namespace trendax
