#include "synthetic.h"

#include <QDir>
#include <QFile>
#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

namespace trendax::gen {

namespace {

// ---- Random numbers ----

// splitmix64: small, fast and the same on every machine.
class Random {
public:
    explicit Random(std::uint64_t seed) : state_(seed) {}
    std::uint64_t next() {
        std::uint64_t z = (state_ += 0x9E3779B97F4A7C15ull);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
        return z ^ (z >> 31);
    }
    // Uniform in [0, 1).
    double uniform() { return double(next() >> 11) * 0x1.0p-53; }
    double range(double lo, double hi) { return lo + (hi - lo) * uniform(); }
    // Roughly normal, from the sum of four uniforms.
    double noise(double sigma) {
        return sigma * (uniform() + uniform() + uniform() + uniform() - 2.0) * 1.732;
    }
    bool chance(double p) { return uniform() < p; }

private:
    std::uint64_t state_;
};

std::uint64_t daySeed(const SiteSpec& siteSpec, int dayIndex) {
    std::uint64_t h = siteSpec.seed * 0x100000001B3ull;
    for (const QChar c : siteSpec.site)
        h = (h ^ c.unicode()) * 0x100000001B3ull;
    return h ^ (std::uint64_t(dayIndex + 1) * 0x9E3779B97F4A7C15ull);
}

// ---- Text ----

void appendInt(QByteArray& out, long long v, int width = 0) {
    char buf[24];
    int n = 0;
    const bool negative = v < 0;
    unsigned long long u = negative ? 0ull - static_cast<unsigned long long>(v) : v;
    do {
        buf[n++] = char('0' + u % 10);
        u /= 10;
    } while (u != 0);
    while (n < width)
        buf[n++] = '0';
    if (negative)
        out += '-';
    while (n > 0)
        out += buf[--n];
}

void appendFixed(QByteArray& out, double v, int decimals) {
    const long long scale = decimals == 2 ? 100 : decimals == 1 ? 10 : 1;
    const long long units = std::llround(v * double(scale));
    if (units < 0)
        out += '-';
    const unsigned long long u = units < 0 ? 0ull - static_cast<unsigned long long>(units) : units;
    appendInt(out, static_cast<long long>(u / scale));
    if (decimals > 0) {
        out += '.';
        appendInt(out, static_cast<long long>(u % scale), decimals);
    }
}

// ---- The site's physics ----

// What one row of the controller records, before the channel set picks from it.
struct Sample {
    double current[3];
    double voltage[2];
    double gauge[8];
    double raw; // the one-channel logs' raw gauge counts
};

struct Event {
    int second;
    const char* code;
};

// A pump motor that starts and stops, with inrush at every start, occasional overloads, a line
// whose voltage sags with the load, and downhole gauges that follow it slowly.
class Well {
public:
    Well(const SiteSpec& siteSpec, int dayIndex) : rng_(daySeed(siteSpec, dayIndex)) {
        running_ = rng_.chance(0.8);
        untilChange_ = running_ ? rng_.range(3600, 6 * 3600) : rng_.range(300, 1800);
        load_ = rng_.range(35, 55);
        phaseBias_[0] = rng_.range(-1.5, 1.5);
        phaseBias_[1] = rng_.range(-1.5, 1.5);
        phaseBias_[2] = -phaseBias_[0] - phaseBias_[1];
        lineVolts_ = rng_.range(470, 490);
        intakeTemp_ = rng_.range(170, 190);
        intakePressure_ = rng_.range(1100, 1400);
        windingTemp_ = running_ ? 230 : 190;
        expansion_ = rng_.range(40, 50);
        events_.push_back({0, running_ ? "PUV" : "PWRF"});
    }

    // Advances by dt seconds to second t of the day and returns the recorded sample.
    Sample step(double t, double dt) {
        untilChange_ -= dt;
        if (untilChange_ <= 0)
            toggle(t);
        if (running_) {
            sinceStart_ += dt;
            if (overloadLeft_ > 0) {
                overloadLeft_ -= dt;
            } else if (rng_.chance(dt / 5400.0)) {
                overloadLeft_ = rng_.range(3, 25);
                events_.push_back({int(t), "OLD"});
            }
        }
        // A slow daily swing of the reservoir and the line, plus noise.
        const double hours = t / 3600.0;
        const double swing = std::sin(2 * std::numbers::pi * hours / 24.0);

        double amps = 0;
        if (running_) {
            amps = load_ * (1.0 + 0.03 * swing);
            if (sinceStart_ < 8)
                amps *= 1.0 + 5.0 * std::exp(-sinceStart_ / 2.0); // inrush
            if (overloadLeft_ > 0)
                amps *= 1.6;
        }
        Sample s{};
        for (int p = 0; p < 3; ++p)
            s.current[p] = running_ ? std::max(0.0, amps + phaseBias_[p] + rng_.noise(0.4)) : 0.0;
        const double sag = running_ ? amps * 0.12 : 0.0;
        s.voltage[0] = lineVolts_ + 4 * swing - sag + rng_.noise(0.8);
        s.voltage[1] = lineVolts_ + 4 * swing - sag - 1.5 + rng_.noise(0.8);

        // Gauges drift slowly towards where the pump state drives them.
        const double k = std::min(1.0, dt / 900.0);
        intakePressure_ += k * ((running_ ? 1150 : 1450) - intakePressure_) + rng_.noise(0.3);
        windingTemp_ += k * ((running_ ? 235 + 0.3 * amps : 185) - windingTemp_);
        intakeTemp_ += k * (180 + 3 * swing - intakeTemp_) + rng_.noise(0.05);
        expansion_ += k * (45 + 2 * swing - expansion_);
        const double vib = running_ ? 0.25 + (overloadLeft_ > 0 ? 0.2 : 0.0) : 0.02;
        s.gauge[0] = intakeTemp_;
        s.gauge[1] = intakePressure_ + rng_.noise(1.0);
        s.gauge[2] = windingTemp_ + rng_.noise(0.2);
        s.gauge[3] = std::abs(vib + rng_.noise(0.03));
        s.gauge[4] = std::abs(vib * 0.8 + rng_.noise(0.03));
        s.gauge[5] = (running_ ? 2350 + 2 * amps : intakePressure_ + 40) + rng_.noise(3.0);
        s.gauge[6] = intakeTemp_ + (running_ ? 12 : 2) + rng_.noise(0.1);
        s.gauge[7] = expansion_ + rng_.noise(0.1);
        s.raw = std::round((s.gauge[1] - 500.0) * 2.0);
        return s;
    }

    const std::vector<Event>& events() const { return events_; }

private:
    void toggle(double t) {
        running_ = !running_;
        if (running_) {
            sinceStart_ = 0;
            untilChange_ = rng_.range(2 * 3600, 8 * 3600);
            events_.push_back({int(t), rng_.chance(0.7) ? "ASTR" : "MSTR"});
        } else {
            untilChange_ = rng_.range(600, 3600);
            events_.push_back({int(t), rng_.chance(0.5) ? "RSTO" : "ULD"});
        }
    }

    Random rng_;
    bool running_ = true;
    double untilChange_ = 0;
    double sinceStart_ = 1e9;
    double overloadLeft_ = 0;
    double load_ = 45;
    double phaseBias_[3]{};
    double lineVolts_ = 480;
    double intakeTemp_ = 180;
    double intakePressure_ = 1200;
    double windingTemp_ = 200;
    double expansion_ = 45;
    std::vector<Event> events_;
};

void appendChannels(QByteArray& line, const Sample& s, int channels) {
    auto value = [&](double v, int decimals) {
        line += ',';
        appendFixed(line, v, decimals);
    };
    if (channels == 1) {
        value(s.raw, 0);
        return;
    }
    int written = 0;
    if (channels != 8) {
        for (int p = 0; p < 3 && written < channels; ++p, ++written)
            value(s.current[p], 1);
        for (int v = 0; v < 2 && written < channels; ++v, ++written)
            value(s.voltage[v], 1);
    }
    for (int g = 0; g < 8 && written < channels; ++g, ++written)
        value(s.gauge[g], g == 3 || g == 4 ? 2 : 1);
}

void appendTime(QByteArray& line, long long hundredths, TimeForm form) {
    const long long seconds = hundredths / 100;
    const int h = int(seconds / 3600), m = int(seconds / 60 % 60), s = int(seconds % 60);
    if (form == TimeForm::Hundredths) {
        appendInt(line, h, 2);
        line += ':';
        appendInt(line, m, 2);
        line += ':';
        appendInt(line, s, 2);
        line += '.';
        appendInt(line, hundredths % 100, 2);
    } else {
        appendInt(line, h % 12 == 0 ? 12 : h % 12);
        line += ':';
        appendInt(line, m, 2);
        line += ':';
        appendInt(line, s, 2);
        line += h < 12 ? " AM" : " PM";
    }
}

QByteArray dayDateText(const QDate& date) {
    QByteArray out;
    appendInt(out, date.month(), 2);
    out += '/';
    appendInt(out, date.day(), 2);
    out += '/';
    appendInt(out, date.year() % 100, 2);
    return out;
}

// Runs the well through the day, handing every row's time and sample to the visitor.
template <typename Visit>
std::vector<Event> simulateDay(const SiteSpec& siteSpec, int dayIndex, Visit&& visit) {
    Well well(siteSpec, dayIndex);
    const int rows = std::max(1, siteSpec.rowsPerDay);
    const double dt = 86400.0 / rows;
    for (int j = 0; j < rows; ++j) {
        const long long hundredths = (long long)j * 8'640'000 / rows;
        visit(hundredths, well.step(double(hundredths) / 100.0, dt));
    }
    return well.events();
}

bool writeFile(const QString& path, const QByteArray& bytes, QString* error) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) ||
        file.write(bytes) != bytes.size()) {
        if (error)
            *error = path + QStringLiteral(": ") + file.errorString();
        return false;
    }
    return true;
}

} // namespace

QString dateCode(const QDate& date) {
    return QString::fromLatin1(dayDateText(date)).remove(QLatin1Char('/'));
}

QString dataLogName(const SiteSpec& siteSpec, const QDate& date) {
    const QString code = dateCode(date);
    return siteSpec.site + (siteSpec.naming == Naming::Home ? code : code.left(4)) +
           QStringLiteral(".CSV");
}

QString historyName(const SiteSpec& siteSpec, const QDate& date) {
    const QString code = dateCode(date);
    return siteSpec.naming == Naming::Home ? siteSpec.site + code + QStringLiteral(".TXT")
                                           : siteSpec.site + code.left(4) + QStringLiteral(".HST");
}

QByteArray dataLogDay(const SiteSpec& siteSpec, int dayIndex) {
    const QDate date = siteSpec.start.addDays(dayIndex);
    QByteArray prefix = siteSpec.site.toLatin1() + ',' + dayDateText(date) + ',';
    QByteArray out;
    out.reserve(qsizetype(std::max(1, siteSpec.rowsPerDay)) * (24 + 8 * siteSpec.channels));
    simulateDay(siteSpec, dayIndex, [&](long long hundredths, const Sample& s) {
        out += prefix;
        appendTime(out, hundredths, siteSpec.timeForm);
        appendChannels(out, s, siteSpec.channels);
        out += "\r\n";
    });
    return out;
}

QByteArray historyDay(const SiteSpec& siteSpec, int dayIndex) {
    const QDate date = siteSpec.start.addDays(dayIndex);
    std::vector<Event> events = simulateDay(siteSpec, dayIndex, [](long long, const Sample&) {});
    // Gauge alarms of the day, from the downhole equipment's own checks.
    Random rng(daySeed(siteSpec, dayIndex) ^ 0xA5A5A5A5ull);
    static const char* const alarms[] = {"HI21", "HI22", "HI25", "HI29", "HI36", "HI37"};
    const int count = int(rng.range(0, 3));
    for (int i = 0; i < count; ++i)
        events.push_back({int(rng.range(0, 86399)), alarms[rng.next() % 6]});
    std::stable_sort(events.begin(), events.end(),
                     [](const Event& a, const Event& b) { return a.second < b.second; });

    QByteArray out;
    for (const Event& e : events) {
        QByteArray line = QByteArray(e.code).leftJustified(8, ' ');
        appendInt(line, date.month(), 2);
        line += '/';
        appendInt(line, date.day(), 2);
        line += ' ';
        appendInt(line, e.second / 3600, 2);
        line += ':';
        appendInt(line, e.second / 60 % 60, 2);
        line += ':';
        appendInt(line, e.second % 60, 2);
        QByteArray flags = " ST";
        appendInt(flags, long(rng.next() % 100), 2);
        flags += " FL";
        appendInt(flags, long(rng.next() % 10000), 4);
        flags += " A";
        appendInt(flags, long(rng.next() % 1000), 3);
        line += flags.leftJustified(24, ' ');
        out += line + "\r\n";
    }
    return out;
}

bool writeSite(const SiteSpec& siteSpec, const QString& folder, QString* error) {
    const bool home = siteSpec.naming == Naming::Home;
    const QString logs = home ? folder + QStringLiteral("/logfiles") : folder;
    const QString config = home ? folder + QStringLiteral("/cnffiles") : folder;
    if (!QDir().mkpath(logs) || !QDir().mkpath(config)) {
        if (error)
            *error = QStringLiteral("cannot create ") + logs;
        return false;
    }
    for (int d = 0; d < siteSpec.days; ++d) {
        const QDate date = siteSpec.start.addDays(d);
        if (!writeFile(logs + QLatin1Char('/') + dataLogName(siteSpec, date),
                       dataLogDay(siteSpec, d), error))
            return false;
        if (siteSpec.history && !writeFile(logs + QLatin1Char('/') + historyName(siteSpec, date),
                                           historyDay(siteSpec, d), error))
            return false;
    }
    if (siteSpec.factors) {
        if (!writeFile(config + QLatin1Char('/') + siteSpec.site + QStringLiteral("SCAL.TXT"),
                       siteSpec.scaleText.toLatin1() + "\r\n", error) ||
            !writeFile(config + QLatin1Char('/') + siteSpec.site + QStringLiteral("OFFS.TXT"),
                       siteSpec.offsetText.toLatin1() + "\r\n", error))
            return false;
    }
    return true;
}

} // namespace trendax::gen
