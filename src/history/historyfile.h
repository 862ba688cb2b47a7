#pragma once

#include "storage/datetime.h"

#include <QByteArrayView>
#include <QString>
#include <QStringList>
#include <QStringView>
#include <optional>

// A controller's history file of one site and day, one event per line: the code, then
// MM/DD HH:MM:SS, then flags that are never shown. Each line becomes one history list entry such
// as "03/15/12 10:22:33 - Overload".
namespace trendax::history {

// The list entry of one line, the year being the file's two-digit year as text. The code is what
// stands before the three characters ahead of the first "/", so code columns of any width read.
// nullopt when the line has no "/" or its first "/" is among the first two characters.
std::optional<QString> HistoryEventText(QStringView line, QStringView year);

// The year of a history file: characters 9 and 10 of its bare name (SSSS MM DD YY.TXT). The
// year never comes from the content, so a file renamed to another year shows that year.
QString historyYear(const QString& path);

// The entries of a whole file. A file of a single line yields none; otherwise every line, the
// first included, yields one entry. A line that cannot be decoded repeats the entry before it
// (an empty entry when it is the first). Blank lines are no lines. The single-line rule looks odd
// but it is how the program has always read these files, and sites' reports rely on it.
QStringList historyEntries(QByteArrayView bytes, QStringView year);

// The entries of the file at path, whatever the letter case of its name on disk; none when the
// file is missing or cannot be read.
QStringList readHistoryFile(const QString& path);

// The moment of a list entry: its first 17 characters as MM/DD/YY HH:MM:SS, the two-digit year
// by the program's one rule. nullopt for an entry that is no such time (an empty entry).
std::optional<datetime::DateTime> historyEntryTime(QStringView entry);

} // namespace trendax::history
