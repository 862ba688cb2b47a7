#pragma once

#include "storage/datetime.h"

#include <QString>
#include <QStringList>
#include <functional>
#include <optional>
#include <vector>

// The site and date tree of the open dialog as plain data: one site per four-character code of
// the data logs in the home folder, under it one day per data log. Nothing is kept between
// openings; the tree is built from the folder listing each time.
namespace trendax::sitetree {

struct Day {
    QString key;  // "md" + site code + day text
    QString text; // the six characters after the site code, as they stand ("031512")
};

struct Site {
    QString key;  // "m" + site code
    QString code; // the first four characters of the data log names
    std::vector<Day> days;
};

struct Tree {
    std::vector<Site> sites;
    // Set when a failure came before the first data log and ended the walk: the file and why.
    std::optional<QString> failure;
};

// Builds the tree from the home folder's files and makes the ".txt" working copy of every ".HST"
// history file (any letter case) on the way. Sites come in order of their codes, each site's
// days in calendar order of their full dates (see dayOrder), so that a range across New Year
// loads in time order. Keys are compared without regard to letter case, so a day that exists
// as two files differing only in case is listed once. Files are walked in name order; a failure
// before the first data log ends the walk (the tree is what was found so far), later failures
// are passed over.
Tree build(const QString& homeFolder);

// The same walk over a listing of bare names in walk order. copy is called with the ".HST" name
// and the name of its working copy and returns an empty text on success, otherwise why it
// failed.
Tree buildFromNames(const QStringList& names,
                    const std::function<QString(const QString& hst, const QString& txt)>& copy);

// The files of a folder in the order the tree and the import walk them: by name, without regard
// to letter case. Hidden files, the program's own temporary files and subfolders are left out;
// an empty path lists nothing.
QStringList listFiles(const QString& folder);

// The name of the working copy of a ".HST" file: its name less the last three characters plus
// "txt".
QString historyWorkingCopyName(const QString& hstName);

// The calendar date of a day text MMDDYY with the year by datetime::fullYear; nullopt when the
// text is not such a date (for example ".CSV" from an eight-character data log name).
std::optional<datetime::DateTime> dayDate(const QString& dayText);

// Strict weak order of day texts: real dates by calendar date first, then the others by text.
bool dayOrder(const QString& a, const QString& b);

// ---- Clicks ----

enum class KeyKind { Root, Site, Day };

// A key starting with "md" is a day, one starting with "m" a site, anything else the root.
KeyKind kindOfKey(const QString& key);

// The start calendar's date for a clicked day key: month from positions 7-8, day from 9-10 and
// the two-digit year from 11-12, made a full year by the same rule as the loader's. nullopt for
// a key whose positions are not digits or give an impossible date.
std::optional<datetime::DateTime> dateOfDayKey(const QString& key);

} // namespace trendax::sitetree
