#pragma once

#include <QByteArray>
#include <QDate>
#include <QString>
#include <cstdint>

// Synthetic controller media: deterministic, realistic daily data logs, history files and
// calibration factor files, for tests, benchmarks and sample data.
namespace trendax::gen {

enum class TimeForm {
    Hundredths, // 13:45:12.34
    AmPm,       // 1:45:12 PM
};

enum class Naming {
    Home,       // logfiles/SSSSMMDDYY.CSV and .TXT, cnffiles/SSSSSCAL.TXT and SSSSOFFS.TXT
    Controller, // one folder: SSSSMMDD.CSV, SSSSMMDD.HST, SSSSSCAL.TXT, SSSSOFFS.TXT
};

struct SiteSpec {
    QString site = QStringLiteral("AB12");
    // 1: one raw gauge (calibrated by the factor files); 5: phase currents A, B, C and the
    // A-B and C-A line voltages; 8: downhole gauges; 13: the five motor channels and the eight
    // gauges. Any count from 1 to 13 is written.
    int channels = 13;
    QDate start = QDate(2012, 3, 15);
    int days = 1;
    // Rows per day, evenly spread from midnight.
    int rowsPerDay = 86400;
    TimeForm timeForm = TimeForm::Hundredths;
    Naming naming = Naming::Home;
    std::uint64_t seed = 1;
    bool history = true;
    bool factors = true;
    QString scaleText = QStringLiteral("2");
    QString offsetText = QStringLiteral("-1");
};

// The bytes of day dayIndex (0 = start) of the site's data log and history file.
QByteArray dataLogDay(const SiteSpec& siteSpec, int dayIndex);
QByteArray historyDay(const SiteSpec& siteSpec, int dayIndex);

QString dataLogName(const SiteSpec& siteSpec, const QDate& date);
QString historyName(const SiteSpec& siteSpec, const QDate& date);
// The six-character date code MMDDYY of a day.
QString dateCode(const QDate& date);

// Writes every day's files and the factor files under folder (for home naming, into its
// "logfiles" and "cnffiles" folders, created when missing). False with a reason on failure.
bool writeSite(const SiteSpec& siteSpec, const QString& folder, QString* error = nullptr);

} // namespace trendax::gen
