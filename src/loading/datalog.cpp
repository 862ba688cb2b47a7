#include "loading/datalog.h"

#include "storage/datetime.h"
#include "storage/filenames.h"
#include "storage/homefolder.h"
#include "storage/numbers.h"
#include "storage/textfile.h"

#include <QFile>
#include <QFileInfo>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <string_view>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace trendax {

namespace {

using Field = std::optional<std::string_view>;

constexpr double hundredthsPerDay = 8'640'000.0;
constexpr std::int16_t int16Max = std::numeric_limits<std::int16_t>::max();

bool isBlank(char c) {
    return c == ' ' || c == '\t';
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

// ---- Lines ----

// Walks the lines of the buffer; a line is returned without its LF and one CR before it. The
// end of a long line is searched a piece at a time, and each piece passed over is reported to
// `passed` (when set), so that a line of a gigabyte does not hold everything up at once.
struct LineCursor {
    const char* p;
    const char* end;
    std::function<void(qsizetype)> passed;

    bool next(const char*& b, const char*& e) {
        if (p >= end)
            return false;
        const char* from = p;
        const char* nl = nullptr;
        for (;;) {
            const auto n = size_t(std::min<qsizetype>(end - from, keepAliveBytes));
            nl = static_cast<const char*>(std::memchr(from, '\n', n));
            from += n;
            if (nl || from >= end)
                break;
            if (passed)
                passed(qsizetype(n));
        }
        b = p;
        e = nl ? nl : end;
        p = nl ? nl + 1 : end;
        if (e > b && e[-1] == '\r')
            --e;
        return true;
    }
};

// A blank line is no row: the table reader never sees it.
bool isBlankLine(const char* b, const char* e) {
    for (; b < e; ++b) {
        if (!isBlank(*b) && *b != '\r')
            return false;
    }
    return true;
}

bool lineHasQuote(const char* b, const char* e) {
    return std::memchr(b, '"', size_t(e - b)) != nullptr;
}

qsizetype countByte(const char* b, const char* e, char c) {
    qsizetype n = 0;
#if defined(__SSE2__)
    // Matches subtract 1 from byte counters, summed every 255 blocks before they could wrap.
    const __m128i needle = _mm_set1_epi8(c);
    const __m128i zero = _mm_setzero_si128();
    while (e - b >= 16) {
        __m128i counts = zero;
        for (int blocks = 0; blocks < 255 && e - b >= 16; ++blocks, b += 16) {
            const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(b));
            counts = _mm_sub_epi8(counts, _mm_cmpeq_epi8(block, needle));
        }
        const __m128i sums = _mm_sad_epu8(counts, zero);
        n += _mm_cvtsi128_si32(sums) + _mm_extract_epi16(sums, 4);
    }
#endif
    for (; b < e; ++b)
        n += *b == c;
    return n;
}

// ---- Fields ----

// Walks the fields of one line in order. A field may be enclosed in double quotes (a doubled
// quote inside stands for one; a quote that is never closed runs to the line end); blanks around
// an unquoted field are dropped; an empty field is missing; a comma at the very end starts one
// more, empty, field. Walking allocates nothing, whatever the line holds: a line of a gigabyte
// has as many fields as commas, and only the few a row uses are ever kept.
class FieldCursor {
public:
    explicit FieldCursor(std::string_view line) : line_(line) {}

    // Moves to the next field; false once the line has no more.
    bool next() {
        if (done_)
            return false;
        const char* s = line_.data();
        const size_t n = line_.size();
        size_t j = pos_;
        while (j < n && isBlank(s[j]))
            ++j;
        doubledQuotes_ = false;
        if (j < n && s[j] == '"') {
            begin_ = ++j;
            end_ = n;
            // The closing quote is the first one not doubled.
            while (j < n) {
                const auto* q = static_cast<const char*>(std::memchr(s + j, '"', n - j));
                if (!q) {
                    j = n;
                    break;
                }
                const size_t at = size_t(q - s);
                if (at + 1 < n && s[at + 1] == '"') {
                    doubledQuotes_ = true;
                    j = at + 2;
                    continue;
                }
                end_ = at;
                j = at + 1;
                break;
            }
            j = commaFrom(j);
        } else {
            begin_ = j;
            j = commaFrom(j);
            end_ = j;
            while (end_ > begin_ && isBlank(s[end_ - 1]))
                --end_;
        }
        if (j >= n)
            done_ = true;
        else
            pos_ = j + 1;
        return true;
    }

    // The current field; quoted text with doubled quotes is unescaped into scratch, which the
    // view then points into, otherwise the view points into the line.
    Field field(std::string& scratch) const {
        if (end_ == begin_)
            return std::nullopt;
        const std::string_view raw = line_.substr(begin_, end_ - begin_);
        if (!doubledQuotes_)
            return raw;
        scratch.clear();
        for (size_t i = 0; i < raw.size(); ++i) {
            scratch += raw[i];
            if (raw[i] == '"')
                ++i; // every quote inside is the first of a pair
        }
        return std::string_view(scratch);
    }

private:
    size_t commaFrom(size_t j) const {
        if (j >= line_.size())
            return line_.size();
        const auto* c =
            static_cast<const char*>(std::memchr(line_.data() + j, ',', line_.size() - j));
        return c ? size_t(c - line_.data()) : line_.size();
    }

    std::string_view line_;
    size_t pos_ = 0;
    bool done_ = false;
    size_t begin_ = 0, end_ = 0; // the field's text in the line, quotes left out
    bool doubledQuotes_ = false;
};

// The number of fields in a line.
qsizetype countFields(std::string_view line) {
    FieldCursor cursor(line);
    qsizetype n = 0;
    while (cursor.next())
        ++n;
    return n;
}

// The fields a row uses: site code, date, time and the thirteen channels.
constexpr size_t rowFields = 3 + channelSlots;

// The first rowFields fields of a line (fewer if it has fewer); the rest are passed over. Each
// kept field has its own scratch, so the memory a line's fields take never exceeds the line.
void splitRowFields(std::string_view line, std::array<std::string, rowFields>& scratch,
                    std::vector<Field>& out) {
    out.clear();
    FieldCursor cursor(line);
    while (out.size() < rowFields && cursor.next())
        out.push_back(cursor.field(scratch[out.size()]));
}

// ---- Fast path helpers ----

constexpr double powersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                  1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                  1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

// A plain decimal "[-]digits[.digits]" ending at a comma or the line end, read as its signed
// integer mantissa and the count of fraction digits. With at most 15 significant digits the
// mantissa and the power of ten are both exact doubles, so one division gives the correctly
// rounded value, the same as the general conversion. The division is left to the caller, which
// does a whole row's in one branch-free loop: interleaved with the digit loops, the divisions
// stalled the parser for a third of its time.
inline bool fastNumber(const char*& p, const char* end, double& mantissaOut, int& fractionOut) {
    const char* s = p;
    bool negative = false;
    if (s < end && *s == '-') {
        negative = true;
        ++s;
    }
    std::uint64_t mantissa = 0;
    int significant = 0;
    int digits = 0;
    int fraction = 0;
    // The integer and the fraction digits have a loop each: one loop that also watches for the
    // point made the whole reader a third slower.
    while (s < end && isDigit(*s)) {
        const int d = *s - '0';
        if (mantissa != 0 || d != 0) {
            if (++significant > 15)
                return false;
        }
        mantissa = mantissa * 10 + std::uint64_t(d);
        ++digits;
        ++s;
    }
    if (s < end && *s == '.') {
        ++s;
        while (s < end && isDigit(*s)) {
            const int d = *s - '0';
            if (mantissa != 0 || d != 0) {
                if (++significant > 15)
                    return false;
            }
            mantissa = mantissa * 10 + std::uint64_t(d);
            ++digits;
            if (++fraction > 22)
                return false;
            ++s;
        }
    }
    if (digits == 0 || (s < end && *s != ','))
        return false;
    const double value = double(mantissa);
    mantissaOut = negative ? -value : value;
    fractionOut = fraction;
    p = s;
    return true;
}

inline bool twoDigits(const char* p, int& value) {
    if (!isDigit(p[0]) || !isDigit(p[1]))
        return false;
    value = (p[0] - '0') * 10 + (p[1] - '0');
    return true;
}

// ---- The reader ----

class Parser {
public:
    Parser(QByteArrayView bytes, LoadState& state, const DataLogOptions& options)
        : begin_(bytes.isEmpty() ? "" : bytes.data()), end_(begin_ + bytes.size()), state_(state),
          options_(options) {
        // A UTF-8 byte order mark before the first field is no part of it.
        if (end_ - begin_ >= 3 && std::memcmp(begin_, "\xEF\xBB\xBF", 3) == 0)
            begin_ += 3;
    }

    DataLogResult run();

private:
    void log(const QString& message) const {
        if (options_.debugOut)
            options_.debugOut(message);
    }
    // Counts bytes scanned or filled; calls keepAlive each time they pass keepAliveBytes.
    void worked(qsizetype bytes) {
        work_ += bytes;
        if (work_ >= keepAliveBytes) {
            work_ = 0;
            if (options_.keepAlive)
                options_.keepAlive();
        }
    }
    void measure();
    QString dump();
    void allocate();
    void visitRows();
    bool fastRow(const char* b, const char* e, double values[channelSlots]);
    void generalRow(const char* b, const char* e, double values[channelSlots],
                    bool& channel1Present);
    void store(qsizetype r, double channel1, const double values[channelSlots]);

    const char* begin_;
    const char* end_;
    LoadState& state_;
    const DataLogOptions& options_;
    DataLogResult result_;
    bool hasQuotes_ = false;
    int arrays_ = 0;               // channel arrays sized: 1 + those below numChannels
    double* times_ = nullptr;      // the time stamps, one column shared by every channel array
    double* data_[channelSlots]{}; // the channel values
    double timestamp_ = 0;         // kept from row to row
    // The date field repeats all day: its last fast-path reading is kept.
    char dateKey_[8]{};
    bool dateKeyValid_ = false;
    double dateValue_ = 0;
    std::array<std::string, rowFields> scratch_;
    std::vector<Field> fields_;
    qsizetype work_ = 0; // bytes since the last keepAlive call
};

void Parser::measure() {
    for (const char* p = begin_; p < end_ && !hasQuotes_;) {
        const qsizetype n = std::min<qsizetype>(end_ - p, keepAliveBytes);
        hasQuotes_ = std::memchr(p, '"', size_t(n)) != nullptr;
        p += n;
        worked(n);
    }
    LineCursor lines{begin_, end_, [this](qsizetype n) { worked(n); }};
    const char *b, *e;
    qsizetype rows = 0, widest = 0;
    while (lines.next(b, e)) {
        worked(e - b + 1);
        if (isBlankLine(b, e))
            continue;
        ++rows;
        const qsizetype fields = hasQuotes_ && lineHasQuote(b, e)
                                     ? countFields(std::string_view(b, size_t(e - b)))
                                     : countByte(b, e, ',') + 1;
        widest = std::max(widest, fields);
    }
    result_.rowCount = rows;
    result_.fieldCount = int(std::min<qsizetype>(widest, std::numeric_limits<int>::max()));
}

QString Parser::dump() {
    QByteArray text;
    LineCursor lines{begin_, end_, {}};
    const char *b, *e;
    while (lines.next(b, e)) {
        if (isBlankLine(b, e))
            continue;
        FieldCursor cursor(std::string_view(b, size_t(e - b)));
        for (int f = 0; f < result_.fieldCount; ++f) {
            if (f > 0)
                text += "[,]";
            // A channel field that does not read as a number is as missing as an empty one.
            const Field field = cursor.next() ? cursor.field(scratch_[0]) : std::nullopt;
            if (field && (f < 3 || numbers::parse(*field)))
                text.append(field->data(), qsizetype(field->size()));
            else
                text += "[null]";
        }
        text += "\r\n";
    }
    return textfile::decode(text);
}

void Parser::allocate() {
    arrays_ = 1;
    for (int k = 2; k <= channelSlots; ++k) {
        if (state_.numChannels > k - 1)
            arrays_ = k;
    }
    // All channels of a row share its time stamp: the arrays share one X row.
    auto times = std::make_shared<std::vector<double>>(size_t(result_.rowCount), 0.0);
    times_ = times->data();
    const qsizetype arrayBytes = result_.rowCount * qsizetype(sizeof(double));
    worked(arrayBytes);
    for (int k = 0; k < arrays_; ++k) {
        result_.channels[size_t(k)] = std::make_shared<XYArray>(times, size_t(result_.rowCount));
        data_[k] = result_.channels[size_t(k)]->data();
        worked(arrayBytes);
    }
}

DataLogResult Parser::run() {
    log(QStringLiteral("LoadQXL: file opened"));
    measure();

    const int channels = result_.fieldCount - 3;
    // The count never falls within a load; a count beyond the 16-bit field is passed over.
    if (channels > state_.numChannels && channels <= int16Max)
        state_.numChannels = std::int16_t(channels);
    if (options_.debugOut) {
        log(QStringLiteral("LoadQXL: numChannels = ") + QString::number(state_.numChannels));
        log(QStringLiteral("LoadQXL: Rs1.Fields.Count = ") + QString::number(result_.fieldCount));
        if (options_.dumpTable)
            log(QStringLiteral("Dumping CSV file: ") + QString(56, QLatin1Char('*')) +
                QStringLiteral("\r\n") + dump());
    }

    if (options_.storeValues)
        allocate();
    log(QStringLiteral("LoadQXL: memory allocated"));
    log(QStringLiteral("LoadQXL: begin loop; reccount = ") + QString::number(result_.rowCount));
    visitRows();
    log(QStringLiteral("LoadQXL: end load loop"));

    const auto kept = size_t(result_.rowCount - result_.badRowCount);
    for (int k = 0; k < arrays_ && options_.storeValues; ++k)
        result_.channels[size_t(k)]->resize(kept);
    return std::move(result_);
}

bool Parser::fastRow(const char* b, const char* e, double values[channelSlots]) {
    const auto* c0 = static_cast<const char*>(std::memchr(b, ',', size_t(e - b)));
    if (!c0)
        return false;
    const char* f1 = c0 + 1;
    if (e - f1 < 10 || f1[8] != ',')
        return false;
    double date = 0;
    if (dateKeyValid_ && std::memcmp(f1, dateKey_, 8) == 0) {
        date = dateValue_;
    } else {
        int m, d, y;
        if (!twoDigits(f1, m) || f1[2] != '/' || !twoDigits(f1 + 3, d) || f1[5] != '/' ||
            !twoDigits(f1 + 6, y))
            return false;
        const auto parsed = datetime::fromDate(datetime::fullYear(y), m, d);
        if (!parsed)
            return false;
        std::memcpy(dateKey_, f1, 8);
        dateKeyValid_ = true;
        dateValue_ = date = *parsed;
    }

    const char* f2 = f1 + 9;
    const auto* c2 = static_cast<const char*>(std::memchr(f2, ',', size_t(e - f2)));
    if (!c2)
        return false;
    const auto length = c2 - f2;
    int h, m, s;
    double stamp;
    if ((length == 10 || length == 11) && f2[length - 3] == ' ' &&
        (f2[length - 2] == 'A' || f2[length - 2] == 'P') && f2[length - 1] == 'M') {
        // H:MM:SS AM or HH:MM:SS PM.
        const char* t = f2;
        if (length == 10) {
            if (!isDigit(t[0]))
                return false;
            h = t[0] - '0';
            t += 1;
        } else {
            if (!twoDigits(t, h))
                return false;
            t += 2;
        }
        if (t[0] != ':' || !twoDigits(t + 1, m) || t[3] != ':' || !twoDigits(t + 4, s) || h < 1 ||
            h > 12 || m > 59 || s > 59)
            return false;
        h = h % 12 + (f2[length - 2] == 'P' ? 12 : 0);
        stamp = date + (h * 3600.0 + m * 60.0 + s) / datetime::secondsPerDay;
    } else if (length == 11 && f2[2] == ':' && f2[5] == ':') {
        // HH:MM:SS and two digits of hundredths after one separator.
        int hundredths;
        if (!twoDigits(f2, h) || !twoDigits(f2 + 3, m) || !twoDigits(f2 + 6, s) ||
            !twoDigits(f2 + 9, hundredths) || h > 23 || m > 59 || s > 59)
            return false;
        stamp = date + (h * 3600.0 + m * 60.0 + s) / datetime::secondsPerDay;
        stamp += double(hundredths) / hundredthsPerDay;
    } else {
        return false;
    }

    const char* p = c2 + 1;
    int k = 0;
    double mantissas[channelSlots];
    int fractions[channelSlots];
    while (k < channelSlots) {
        if (!fastNumber(p, e, mantissas[k], fractions[k]))
            return false;
        ++k;
        if (p == e)
            break;
        ++p; // the comma
        if (p == e)
            return false; // an empty last field: the general path decides
    }
    for (int i = 0; i < k; ++i)
        values[i] = mantissas[i] / powersOfTen[fractions[i]];
    timestamp_ = stamp;
    return true;
}

void Parser::generalRow(const char* b, const char* e, double values[channelSlots],
                        bool& channel1Present) {
    splitRowFields(std::string_view(b, size_t(e - b)), scratch_, fields_);
    auto field = [&](size_t i) -> Field { return i < fields_.size() ? fields_[i] : std::nullopt; };

    std::optional<double> channel1;
    if (const Field f = field(3))
        channel1 = numbers::parse(*f);
    channel1Present = channel1.has_value();
    if (!channel1Present)
        return;

    // The time stamp from the date and time fields; a missing field counts as empty text.
    const std::string_view date = field(1).value_or(std::string_view());
    const std::string_view time = field(2).value_or(std::string_view());
    const std::string_view last2 = time.size() >= 2 ? time.substr(time.size() - 2) : time;
    std::string text(date);
    text += ' ';
    if (last2 != "AM" && last2 != "PM") {
        // 24-hour form: the first eight characters are the time, the last two the hundredths.
        // A lower-case "pm" lands here on purpose: such a time reads as a 24-hour time.
        text += time.substr(0, 8);
        if (const auto parsed = datetime::parse(std::string_view(text)))
            timestamp_ = *parsed;
        if (const auto hundredths = numbers::parse(last2))
            timestamp_ += std::nearbyint(*hundredths) / hundredthsPerDay;
    } else {
        text += time;
        if (const auto parsed = datetime::parse(std::string_view(text)))
            timestamp_ = *parsed;
    }

    values[0] = *channel1;
    for (int k = 1; k < channelSlots; ++k) {
        const Field f = field(size_t(k) + 3);
        values[k] = f ? numbers::parse(*f).value_or(0.0) : 0.0;
    }
}

void Parser::store(qsizetype r, double channel1, const double values[channelSlots]) {
    if (!options_.storeValues) {
        state_.XMin = std::min(timestamp_, state_.XMin);
        state_.XMax = std::max(timestamp_, state_.XMax);
        double sum = timestamp_ + channel1;
        for (int k = 1; k < channelSlots; ++k)
            sum += values[k];
        result_.valueSum += sum;
        return;
    }
    const auto at = size_t(r);
    times_[at] = timestamp_;
    data_[0][at] = channel1;
    state_.XMin = std::min(timestamp_, state_.XMin);
    state_.XMax = std::max(timestamp_, state_.XMax);
    for (int k = 1; k < arrays_; ++k)
        data_[k][at] = values[k];
}

void Parser::visitRows() {
    const bool oneChannel = state_.numChannels <= 1;
    const double scale = state_.mScale;
    const double offset = state_.mOffset;
    const bool fast = options_.fastPath;
    std::int16_t bad = 0;
    bool anyGood = false;
    double values[channelSlots];

    LineCursor lines{begin_, end_, [this](qsizetype n) { worked(n); }};
    const char *b, *e;
    qsizetype i = -1;
    while (lines.next(b, e)) {
        worked(e - b + 1);
        if (isBlankLine(b, e))
            continue;
        ++i;
        if (i % 1000 == 0 && options_.progress)
            options_.progress(i, result_.rowCount);

        std::fill(std::begin(values), std::end(values), 0.0);
        bool good = fast && !(hasQuotes_ && lineHasQuote(b, e)) && fastRow(b, e, values);
        if (!good)
            generalRow(b, e, values, good);
        if (!good) {
            // The row leaves no gap. A count beyond the 16-bit field stays where it is.
            if (bad < int16Max)
                ++bad;
            log(QStringLiteral("LoadQXL: Badrowcount = ") + QString::number(bad));
            continue;
        }
        const qsizetype r = i - bad;
        if (r == 0)
            log(QStringLiteral("LoadQXL: xval = ") + datetime::formatNumber(timestamp_));
        anyGood = true;
        // Only one-channel loads are calibrated, judged by the load's channel count.
        const double channel1 = oneChannel ? values[0] * scale + offset : values[0];
        store(r, channel1, values);
    }
    result_.badRowCount = bad;
    if (anyGood) {
        result_.yscaleEnabled = oneChannel;
        result_.tracksEnabled = state_.numChannels <= 5;
    }
}

// Reads the whole file into the front of buffer, which only ever grows; the byte count, or -1
// when reading failed. A file that grows while it is read is read to its new end.
qsizetype readWhole(QFile& file, QByteArray& buffer, const std::function<void()>& keepAlive) {
    const qint64 expected = std::max<qint64>(file.size(), 0);
    // One byte more than the file, so that the end shows without another pass.
    if (buffer.size() <= expected)
        buffer.resize(qsizetype(expected) + 1);
    qsizetype size = 0;
    for (;;) {
        if (size == buffer.size())
            buffer.resize(buffer.size() + buffer.size() / 2 + 4096);
        const qint64 n =
            file.read(buffer.data() + size, std::min(buffer.size() - size, keepAliveBytes));
        if (n < 0)
            return -1;
        if (n == 0)
            return size;
        size += qsizetype(n);
        if (keepAlive && size >= keepAliveBytes)
            keepAlive();
    }
}

} // namespace

DataLogResult parseDataLog(QByteArrayView bytes, LoadState& state, const DataLogOptions& options) {
    return Parser(bytes, state, options).run();
}

DataLogResult readDataLog(const QString& path, const QString& appFolder, LoadState& state,
                          const DataLogOptions& options) {
    announceDataLog(path, appFolder, options);
    return openDataLog(path, state, options);
}

void announceDataLog(const QString& path, const QString& appFolder, const DataLogOptions& options) {
    if (options.debugOut)
        options.debugOut(QStringLiteral("LoadQXL(") + path + QLatin1Char(')'));
    WriteSchemaIni(appFolder, QFileInfo(path).fileName());
}

DataLogResult openDataLog(const QString& path, LoadState& state, const DataLogOptions& options) {
    QFile file(filenames::resolve(path));
    if (!file.open(QIODevice::ReadOnly))
        throw LoadFailure((path + QStringLiteral(": ") + file.errorString()).toStdString());
    if (options.opened)
        options.opened();
    // Read, not mapped: a mapped file that another program truncates while it is read would
    // bring the viewer down.
    QByteArray own;
    QByteArray& buffer = options.readBuffer ? *options.readBuffer : own;
    qsizetype size = readWhole(file, buffer, options.keepAlive);
    if (size < 0) {
        if (options.debugOut)
            options.debugOut(QStringLiteral("Rs1.Open() Err = ") + file.errorString());
        size = 0;
    }
    return parseDataLog(QByteArrayView(buffer.constData(), size), state, options);
}

HandoverPlan planHandover(int numChannels) {
    HandoverPlan plan;
    if (numChannels == 88)
        return plan;
    plan.steps.push_back({1, std::nullopt, 0});
    for (int k = 2; k <= 5; ++k) {
        if (numChannels > k - 1)
            plan.steps.push_back({k, std::nullopt, 0});
    }
    if (numChannels > 5) {
        for (int k = 6; k <= channelSlots; ++k) {
            if (k <= 8)
                plan.steps.push_back({k, true, k - 5});
            else
                plan.steps.push_back({k, false, 0});
        }
        plan.tracksEnabled = false;
        plan.quillChannelsEnabled = numChannels == 13;
    } else {
        plan.tracksEnabled = true;
        plan.quillChannelsEnabled = false;
    }
    return plan;
}

std::int32_t nextLoadedRowTotal(std::int32_t total, qsizetype rowCount, bool firstFileOfLoad) {
    constexpr qint64 limit = std::numeric_limits<std::int32_t>::max();
    const qint64 next = firstFileOfLoad ? qint64(rowCount) : qint64(total) + rowCount;
    // An overflowing total is passed over and keeps its value.
    return next > limit ? total : std::int32_t(next);
}

} // namespace trendax
