#include "loading/wellload.h"

#include "loading/datalog.h"
#include "storage/filenames.h"
#include "storage/homefolder.h"

namespace trendax {

NodeCopy CopySelectedNode(const QString& text, const QString& tag, const QStringList& childTexts,
                          datetime::DateTime startdate, datetime::DateTime enddate) {
    NodeCopy node;
    node.dates = childTexts.isEmpty() ? QStringList{QString()} : childTexts;
    node.text = text;
    node.tag = tag;
    node.startdate = startdate;
    node.enddate = enddate;
    return node;
}

QString dateCodeText(const QString& code) {
    return code.mid(0, 2) + QLatin1Char('/') + code.mid(2, 2) + QLatin1Char('/') + code.mid(4, 2);
}

std::optional<datetime::DateTime> dateOfCode(const QString& code) {
    return datetime::parse(dateCodeText(code));
}

bool dayInRange(datetime::DateTime fdate, datetime::DateTime startdate,
                datetime::DateTime enddate) {
    const double day = datetime::dateValue(fdate);
    return day >= datetime::dateValue(startdate) && day <= datetime::dateValue(enddate);
}

QString dataLogPath(const NodeCopy& node, const QString& code) {
    // Left as built: the reader names Schema.ini's section after it and opens it whatever the
    // letter case of the file there.
    return filenames::join(node.tag, node.text + code + QStringLiteral(".csv"));
}

QString historyFilePath(const NodeCopy& node, const QString& code) {
    return filenames::resolve(filenames::join(node.tag, node.text + code + QStringLiteral(".txt")));
}

QString commentsFilePath(const QString& appFolder, const QString& siteCode) {
    return filenames::resolve(filenames::join(homefolder::homeFolder(appFolder),
                                              siteCode + QStringLiteral("USEREVENTS.TXT")));
}

namespace {

// The date of one code with its two log lines; a code that is no date ends the load.
datetime::DateTime codeDate(const QString& code, const WellLoadHooks& hooks) {
    if (hooks.debugOut)
        hooks.debugOut(QStringLiteral("fdate = CDate(") + dateCodeText(code) + QLatin1Char(')'));
    const auto fdate = dateOfCode(code);
    if (!fdate)
        throw LoadFailure("Type mismatch: the date code \"" + code.toStdString() +
                          "\" is not a date");
    if (hooks.debugOut)
        hooks.debugOut(QStringLiteral("fdate = ") + datetime::formatNumber(*fdate));
    return *fdate;
}

} // namespace

QStringList dataLogsInRange(const NodeCopy& node) {
    QStringList paths;
    for (const QString& code : node.dates) {
        const auto fdate = dateOfCode(code);
        if (!fdate)
            return {};
        if (dayInRange(*fdate, node.startdate, node.enddate))
            paths << dataLogPath(node, code);
    }
    return paths;
}

int runWellLoadPasses(const NodeCopy& node, const WellLoadHooks& hooks) {
    auto log = [&](const QString& message) {
        if (hooks.debugOut)
            hooks.debugOut(message);
    };

    int count = 0;
    for (const QString& code : node.dates) {
        if (dayInRange(codeDate(code, hooks), node.startdate, node.enddate))
            ++count;
    }
    log(QStringLiteral("xNodeCount = ") + QString::number(count));

    if (hooks.beginLoading)
        hooks.beginLoading(count);
    log(QStringLiteral("Beginning load loop..."));

    int fileNumber = 0;
    for (const QString& code : node.dates) {
        const datetime::DateTime fdate = codeDate(code, hooks);
        if (hooks.debugOut) {
            using datetime::dateValue, datetime::formatShortDate;
            log(QStringLiteral("DateValue(CDate(fdate)) = ") + formatShortDate(dateValue(fdate)));
            log(QStringLiteral("DateValue(CDate(NodeCopy.startdate)) = ") +
                formatShortDate(dateValue(node.startdate)));
            log(QStringLiteral("DateValue(CDate(NodeCopy.enddate)) = ") +
                formatShortDate(dateValue(node.enddate)));
        }
        if (dayInRange(fdate, node.startdate, node.enddate)) {
            log(QStringLiteral("bingo, call LoadQXL"));
            ++fileNumber;
            if (hooks.loadDay)
                hooks.loadDay(fileNumber, count, dataLogPath(node, code),
                              historyFilePath(node, code));
        } else {
            log(QStringLiteral("no bingo"));
        }
        if (hooks.afterDateCode)
            hooks.afterDateCode();
    }
    return count;
}

} // namespace trendax
