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

// Rows are written into a fixed buffer of plain characters and handed to the device when it is
// nearly full: a month of rows is tens of millions of small appends.
class RowWriter {
public:
    RowWriter(QIODevice& out, std::size_t longestRow)
        : out_(out), buffer_((1u << 20) + longestRow), limit_(1u << 20) {}

    void put(char c) { *p_++ = c; }

    void number(double value) {
        if (std::isfinite(value))
            p_ = std::to_chars(p_, p_ + 32, value).ptr;
    }

    void times(double t) {
        if (!datetime::isCalendarYear(t)) {
            // Not a date any calendar text can show: the day number in both columns.
            number(t);
            put(',');
            number(t);
            return;
        }
        p_ += datetime::writeIso(t, p_);
        put(',');
        p_ += datetime::writeController(t, p_);
    }

    // Ends a row; false when handing a full buffer to the device failed.
    bool endRow() {
        put('\r');
        put('\n');
        return std::size_t(p_ - buffer_.data()) < limit_ || flush();
    }

    bool flush() {
        const qint64 n = p_ - buffer_.data();
        p_ = buffer_.data();
        return out_.write(buffer_.data(), n) == n;
    }

private:
    QIODevice& out_;
    std::vector<char> buffer_;
    std::size_t limit_;
    char* p_ = buffer_.data();
};

} // namespace

bool writeVisible(const StripChartModel& model, const std::vector<Column>& columns,
                  QIODevice& out) {
    QByteArray header = "Time,Controller Time";
    for (const Column& c : columns) {
        header += ',';
        appendField(header, c.name);
    }
    header += "\r\n";
    if (out.write(header) != header.size())
        return false;

    // The readers are large (two blocks each): keep them off the stack.
    std::vector<std::unique_ptr<PointReader>> readers;
    readers.reserve(columns.size());
    for (const Column& c : columns)
        readers.push_back(std::make_unique<PointReader>(model, c.variable));

    // Two times of at most 32 characters, then a separator and a number of at most 32 each.
    RowWriter rows(out, 80 + 33 * columns.size());
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
        rows.times(t);
        for (const auto& r : readers) {
            rows.put(',');
            if (!r->done() && r->time() == t) {
                rows.number(r->value());
                r->advance();
            }
        }
        if (!rows.endRow())
            return false;
    }
    return rows.flush();
}

} // namespace trendax::csvexport
