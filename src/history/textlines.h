#pragma once

#include <QByteArrayView>
#include <QStringList>

// The lines of a history or comments file as the lists show them. Controllers and editors leave
// these files in more shapes than the CR LF the program writes, so the reading is lenient.
namespace trendax::history {

// The non-blank lines of a Windows-1252 file in file order. A line ends at CR LF, LF or a lone
// CR; a UTF-8 byte order mark at the start is dropped (the rest is still read as Windows-1252);
// a line that is empty or holds only blanks and TABs is no line. Linear in the size of the
// bytes; NUL bytes are kept as characters.
QStringList textLines(QByteArrayView bytes);

} // namespace trendax::history
