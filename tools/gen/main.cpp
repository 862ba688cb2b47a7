// trendax-gen: writes a synthetic site as a controller's media or as an imported home folder.
#include "synthetic.h"

#include "storage/datetime.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <cstdio>

using namespace trendax;

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(
        "Writes deterministic synthetic pump-controller data logs, history files and "
        "calibration factor files.");
    parser.addHelpOption();
    const QCommandLineOption out({"o", "out"},
                                 "Output folder (the application folder for home "
                                 "names).",
                                 "folder");
    const QCommandLineOption site("site", "Four-character site code.", "code", "AB12");
    const QCommandLineOption channels("channels", "Channels per row: 1, 5, 8 or 13.", "n", "13");
    const QCommandLineOption start("start", "First day, MM/DD/YY.", "date", "03/15/12");
    const QCommandLineOption days("days", "Number of days.", "n", "1");
    const QCommandLineOption rows("rows", "Rows per day.", "n", "86400");
    const QCommandLineOption interval("interval", "Seconds between rows (instead of --rows).",
                                      "seconds");
    const QCommandLineOption time("time", "Time form: hundredths (13:45:12.34) or ampm.", "form",
                                  "hundredths");
    const QCommandLineOption names("names",
                                   "File names: home (SSSSMMDDYY.CSV under logfiles) or "
                                   "controller (SSSSMMDD.CSV, as on the controller's media).",
                                   "form", "home");
    const QCommandLineOption seed("seed", "Random seed.", "n", "1");
    const QCommandLineOption noHistory("no-history", "Write no history files.");
    const QCommandLineOption noFactors("no-factors", "Write no calibration factor files.");
    const QCommandLineOption scale("scale", "Text of the scale factor file.", "text", "2");
    const QCommandLineOption offset("offset", "Text of the offset file.", "text", "-1");
    parser.addOptions({out, site, channels, start, days, rows, interval, time, names, seed,
                       noHistory, noFactors, scale, offset});
    parser.process(app);

    auto fail = [](const QString& why) {
        std::fprintf(stderr, "trendax-gen: %s\n", qPrintable(why));
        return 2;
    };
    if (!parser.isSet(out))
        return fail("--out is required");

    gen::SiteSpec siteSpec;
    siteSpec.site = parser.value(site);
    if (siteSpec.site.size() != 4)
        return fail("the site code must have four characters");
    siteSpec.channels = parser.value(channels).toInt();
    if (siteSpec.channels < 1 || siteSpec.channels > 13)
        return fail("--channels must be 1 to 13");
    const auto first = datetime::parse(parser.value(start));
    if (!first)
        return fail("--start must be a date MM/DD/YY");
    const datetime::Civil c = datetime::toCivil(*first);
    siteSpec.start = QDate(c.year, c.month, c.day);
    siteSpec.days = parser.value(days).toInt();
    siteSpec.rowsPerDay = parser.value(rows).toInt();
    if (parser.isSet(interval)) {
        const double seconds = parser.value(interval).toDouble();
        if (seconds <= 0)
            return fail("--interval must be positive");
        siteSpec.rowsPerDay = int(86400.0 / seconds);
    }
    if (siteSpec.days < 1 || siteSpec.rowsPerDay < 1)
        return fail("--days and --rows must be positive");
    if (parser.value(time) == "ampm")
        siteSpec.timeForm = gen::TimeForm::AmPm;
    else if (parser.value(time) != "hundredths")
        return fail("--time must be hundredths or ampm");
    if (parser.value(names) == "controller")
        siteSpec.naming = gen::Naming::Controller;
    else if (parser.value(names) != "home")
        return fail("--names must be home or controller");
    siteSpec.seed = parser.value(seed).toULongLong();
    siteSpec.history = !parser.isSet(noHistory);
    siteSpec.factors = !parser.isSet(noFactors);
    siteSpec.scaleText = parser.value(scale);
    siteSpec.offsetText = parser.value(offset);

    QString error;
    if (!gen::writeSite(siteSpec, parser.value(out), &error))
        return fail(error);
    return 0;
}
