#pragma once

#include "storage/datetime.h"

#include <QByteArrayView>
#include <QHash>
#include <QString>
#include <QStringList>
#include <QStringView>
#include <optional>

// The user's comments on a site: one file per site in the home folder, site + "USEREVENTS.TXT",
// one line per comment, "MM/DD/YYYY HH:MM:SS" + " " + the comment as typed, in Windows-1252 with
// CR LF. New comments are added at the end; the lines already there never change.
//
// A comment is stored byte for byte as typed, TABs, commas and quotes included. A character that
// Windows-1252 has no code for is stored as "?" (the program's text files are Windows-1252 and
// the controllers' tools read them so). A TAB in a comment splits the comment over further grid
// columns when it is read back, as the TAB is the grid's column separator.
namespace trendax::history {

// The grid row of one line: characters 1-19 (the time), a TAB, characters 21 to the end; the
// 20th character, the separator, is dropped whatever it is. nullopt for a line shorter than 20.
std::optional<QString> SplitCommentLine(QStringView line);

// The time column of a grid row: its text up to the first TAB.
QStringView commentRowTime(QStringView row);

// Sorts rows by their time column as text, comparing character codes, letter case respected.
// Rows with equal times keep their order, so two comments of one second both stay, in the order
// they were stored. Times begin with the month, so a January comment sorts before the December
// of the year before; users know the grid this way and it is kept.
void sortCommentRows(QStringList& rows);

// The sorted grid rows of a comments file's bytes: each line taken whole, commas included. A line
// that cannot be split repeats the row before it (an empty row when it is the first); blank
// lines are no lines.
QStringList commentRows(QByteArrayView bytes);

// The sorted rows of the file at path, whatever the letter case of its name; none when the file
// is missing or unreadable.
QStringList readCommentRows(const QString& path);

// Remembers the rows of comments files while they are unchanged (same size and modification
// time), since a load asks for the same file once per day of the site.
class CommentRowsCache {
public:
    QStringList rows(const QString& path);
    void clear() { entries_.clear(); }

private:
    struct Entry {
        qint64 size = -1;
        qint64 modified = 0; // milliseconds since 1970
        QStringList rows;
    };
    QHash<QString, Entry> entries_;
};

// The 19-character time text of the file: MM/DD/YYYY HH:MM:SS, the year as its plain number.
QString formatCommentTime(datetime::DateTime time);

// The moment of a grid time cell, in the file's form or in the general form that a row added
// since the last load holds. nullopt when the cell is no time ("Time", an empty row, a hand edit).
std::optional<datetime::DateTime> commentCellTime(QStringView cell);

// What became of an append: stored, or why not.
struct AppendResult {
    QString error; // empty when stored; otherwise the reason, such as "Permission denied"
    bool stored() const { return error.isEmpty(); }
};

// Appends formatCommentTime(time) + " " + comment + CR LF to the file at path (matched without
// regard to letter case), creating it when missing. The line is on disk (flushed and synced)
// before this reports it stored. On any failure the bytes already in the file are left exactly
// as they were (a partly written line is cut off again) and the reason is returned.
AppendResult AppendUserComment(datetime::DateTime time, const QString& comment,
                               const QString& path);

} // namespace trendax::history
