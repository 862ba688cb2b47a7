#include "chart/csvexport.h"

#include "chart/stripchartmodel.h"
#include "storage/datetime.h"

#include <QIODevice>
#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <memory>
#include <tuple>

namespace trendax::csvexport {

namespace {

// Reads one variable's points of the visible window in blocks, in the order kept.
class PointReader {
public:
    PointReader(const StripChartModel& model, int variable)
        : model_(model), variable_(variable), start_(model.xViewStart()), end_(model.xViewEnd()) {
        std::tie(next_, last_) = model.visibleRange(variable);
        advance();
    }

    bool done() const { return at_ >= count_ && next_ >= last_; }
    double time() const { return times_[at_]; }
    double value() const { return values_[at_]; }

    void advance() {
        for (;;) {
            if (at_ + 1 < count_) {
                ++at_;
            } else if (next_ < last_) {
                count_ = std::min(block, last_ - next_);
                model_.readPoints(variable_, next_, count_, times_.data(), values_.data());
                next_ += count_;
                at_ = 0;
            } else {
                at_ = count_;
                return;
            }
            // A series whose times go back is read whole; only the window's points count.
            if (times_[at_] >= start_ && times_[at_] <= end_)
                return;
        }
    }

private:
    static constexpr std::size_t block = 4096;
    const StripChartModel& model_;
    int variable_;
    double start_;
    double end_;
    std::size_t next_ = 0;
    std::size_t last_ = 0;
    std::size_t at_ = 0;
    std::size_t count_ = 0;
    std::array<double, block> times_{};
    std::array<double, block> values_{};
};

void appendField(QByteArray& row, const QString& text) {
    const bool quote = text.contains(QLatin1Char(',')) || text.contains(QLatin1Char('"')) ||
                       text.contains(QLatin1Char('\n')) || text.contains(QLatin1Char('\r'));
    if (!quote) {
        row += text.toUtf8();
        return;
    }
    QString quoted = text;
    quoted.replace(QLatin1Char('"'), QLatin1String("\"\""));
    row += '"' + quoted.toUtf8() + '"';
}

void appendNumber(QByteArray& row, double value) {
    if (!std::isfinite(value))
        return;
    char buf[32];
    const auto r = std::to_chars(buf, buf + sizeof buf, value);
    row.append(buf, r.ptr - buf);
}

void appendTimes(QByteArray& row, double t) {
    if (!datetime::isCalendarYear(t)) {
        // Not a date any calendar text can show: the day number in both columns.
        appendNumber(row, t);
        row += ',';
        appendNumber(row, t);
        return;
    }
    char buf[32];
    row.append(buf, datetime::writeIso(t, buf));
    row += ',';
    row.append(buf, datetime::writeController(t, buf));
}

bool flush(QByteArray& bytes, QIODevice& out) {
    const bool ok = out.write(bytes) == bytes.size();
    bytes.clear();
    return ok;
}

} // namespace

bool writeVisible(const StripChartModel& model, const std::vector<Column>& columns,
                  QIODevice& out) {
    QByteArray bytes = "Time,Controller Time";
    for (const Column& c : columns) {
        bytes += ',';
        appendField(bytes, c.name);
    }
    bytes += "\r\n";

    // The readers are large (two blocks each): keep them off the stack.
    std::vector<std::unique_ptr<PointReader>> readers;
    readers.reserve(columns.size());
    for (const Column& c : columns)
        readers.push_back(std::make_unique<PointReader>(model, c.variable));

    constexpr qsizetype flushAt = 1 << 20;
    for (;;) {
        double t = std::numeric_limits<double>::infinity();
        bool any = false;
        for (const auto& r : readers) {
            if (!r->done()) {
                t = any ? std::min(t, r->time()) : r->time();
                any = true;
            }
        }
        if (!any)
            break;
        appendTimes(bytes, t);
        for (const auto& r : readers) {
            bytes += ',';
            if (!r->done() && r->time() == t) {
                appendNumber(bytes, r->value());
                r->advance();
            }
        }
        bytes += "\r\n";
        if (bytes.size() >= flushAt && !flush(bytes, out))
            return false;
    }
    return flush(bytes, out);
}

} // namespace trendax::csvexport
