#pragma once

#include <QString>

// File names are matched without regard to letter case, as the controllers' media and the
// program's own writers use both cases for the same file.
namespace trendax::filenames {

// The path of the file that is there for the given path: the path itself when it exists,
// otherwise the entry of its folder whose name differs only in letter case, otherwise the path
// unchanged (so that a writer creates it under the asked-for name).
QString resolve(const QString& path);

// The permission bits the user's umask gives a new file (0666 less the umask).
unsigned newFilePermissions();

// The order of file names lists show: without regard to letter case, and names that differ only
// in letter case capitals first, so that the order never depends on how a folder was read.
bool lessByName(QStringView a, QStringView b);

// Joins a folder and a bare name with one separator.
QString join(const QString& folder, const QString& name);

} // namespace trendax::filenames
