#pragma once

#include "storage/datetime.h"

#include <QString>
#include <QStringList>
#include <functional>
#include <optional>

// Loading a site over a range of days: the selection the main window keeps, the date codes and
// the range rule, the day file names and the two passes over the date codes.
namespace trendax {

// The main window's copy of the chosen site node and range.
struct NodeCopy {
    QString text;      // the site code
    QString tag;       // the folder holding the site's files (the home folder)
    QStringList dates; // date codes MMDDYY in tree order; never empty
    datetime::DateTime startdate = 0;
    datetime::DateTime enddate = 0;
};

// The selection for a site node with the given child texts. A node without children leaves one
// empty date code, whose load then fails on purpose: the chart is cleared and nothing is read.
NodeCopy CopySelectedNode(const QString& text, const QString& tag, const QStringList& childTexts,
                          datetime::DateTime startdate, datetime::DateTime enddate);

// "MM/DD/YY" of a date code MMDDYY (shorter codes give shorter text).
QString dateCodeText(const QString& code);
// The date of a date code, read as month/day/two-digit year; nullopt when it is no date.
std::optional<datetime::DateTime> dateOfCode(const QString& code);
// Inclusive, by calendar day: times of day play no part on any side.
bool dayInRange(datetime::DateTime fdate, datetime::DateTime startdate, datetime::DateTime enddate);

// The day's data log as the loader builds it (tag/site + code + ".csv", whatever the letter case
// of the file on disk; the reader resolves it when it opens it).
QString dataLogPath(const NodeCopy& node, const QString& code);
// The day's history file (tag/site + code + ".txt") and the site's comments file in the home
// folder, each resolved to the file there whatever its letter case.
QString historyFilePath(const NodeCopy& node, const QString& code);
QString commentsFilePath(const QString& appFolder, const QString& siteCode);

// The data logs of the date codes in range, in the order a load reads them; empty when a date
// code is no date (such a load fails before it reads any).
QStringList dataLogsInRange(const NodeCopy& node);

// What the two passes do to the window; every hook may be left empty.
struct WellLoadHooks {
    std::function<void(const QString&)> debugOut;
    // After counting: show the progress dialog (overall bar maximum count + 1, value 0) and
    // disable the main window.
    std::function<void(int count)> beginLoading;
    // A day in range: fileNumber is the overall bar's new value (1 for the first file of the
    // load). Reads the data log, then the history file.
    std::function<void(int fileNumber, int count, const QString& dataLog,
                       const QString& historyFile)>
        loadDay;
    // After every date code, in range or not: reload the comments and show XMin to XMax.
    std::function<void()> afterDateCode;
};

// Counts the date codes in range, then loads them in tree order, logging every step. A date
// code that is no date throws LoadFailure; whatever loadDay throws passes through. Returns the
// count of days in range.
int runWellLoadPasses(const NodeCopy& node, const WellLoadHooks& hooks);

} // namespace trendax
