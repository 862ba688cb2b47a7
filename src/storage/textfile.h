#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <optional>

// The one helper for the program's text files: Windows-1252 with CR LF line ends. Reading also
// takes LF-only files. Writers replace a file atomically (temporary file, then rename), so a
// crash never leaves a half-written file behind.
namespace trendax::textfile {

QString decode(QByteArrayView windows1252);
// Characters outside Windows-1252 become '?'.
QByteArray encode(QStringView text);

// Splits on CR LF or LF; a final line end does not start another line.
QStringList splitLines(const QString& text);

// The non-blank lines of bytes in file order, read leniently as controllers and editors leave
// files: a line ends at CR LF, LF or a lone CR; a UTF-8 byte order mark at the start is dropped
// (the rest is still read as Windows-1252); a line that is empty or holds only blanks and TABs
// is no line. Linear in the size of the bytes; NUL bytes are kept as characters.
QStringList nonBlankLines(QByteArrayView bytes);

// Calls visit with each of those lines, still as bytes, so that a reader that needs only part
// of a line decodes only that part (a history file with a 50 MB line is read in a blink).
template <typename Visit> void forEachNonBlankLine(QByteArrayView bytes, Visit&& visit) {
    if (bytes.startsWith("\xEF\xBB\xBF"))
        bytes = bytes.sliced(3);
    const char* p = bytes.data();
    const char* const end = p + bytes.size();
    while (p < end) {
        const char* e = p;
        while (e < end && *e != '\r' && *e != '\n')
            ++e;
        const QByteArrayView line(p, e - p);
        for (const char c : line) {
            if (c != ' ' && c != '\t') {
                visit(line);
                break;
            }
        }
        p = e < end && *e == '\r' && e + 1 < end && e[1] == '\n' ? e + 2 : e + 1;
    }
}

// Reads the whole file; nullopt when it cannot be opened.
std::optional<QByteArray> readBytes(const QString& path);
std::optional<QStringList> readLines(const QString& path);
// First line of the file; nullopt when the file cannot be opened or is empty.
std::optional<QString> readFirstLine(const QString& path);

// Writes every line followed by CR LF, replacing the file whatever the letter case of its
// existing name. Returns false, leaving the old file as it was, on any failure. A symbolic link
// in the file's place is replaced by a regular file, its target left alone.
bool writeLines(const QString& path, const QStringList& lines);
// Appends one line and CR LF, creating the file when missing. The line is on disk (synced)
// before this reports success; on failure the file holds exactly the bytes it held before (a
// partly written line is cut off again, a file it created is removed). A regular file is
// replaced by a copy with the line added, renamed over it, so that even a process killed in the
// middle of the write leaves the line whole or absent. A symbolic link in the
// file's place is refused (ELOOP), never written through.
bool appendLine(const QString& path, const QString& line);
// The same, telling why: 0 when the line is stored, otherwise the error number.
int appendLineOrError(const QString& path, const QString& line);

} // namespace trendax::textfile
