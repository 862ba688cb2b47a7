#pragma once

#include <QString>
#include <QStringList>
#include <QStringView>

namespace trendax {

class Environment;

// The folder tree under the application folder: every data log, history file and comments file
// lives in the home folder "logfiles", the calibration files in the configuration folder
// "cnffiles". There are no per-site folders.
namespace homefolder {

QString homeFolder(const QString& appFolder);
QString configFolder(const QString& appFolder);

// The per-user data folder's "logfiles": where a system-wide install keeps its home folder, the
// counterpart of the per-user redirected copy of a protected install folder.
QString redirectedHomeFolder();

// Whether a bare file name is one of the program's own temporary files: a copy in progress
// (".trendax-copy-" and six characters) or the replacement of one of the text files it writes
// (a factor file, "Schema.ini", a comments file, then "." and six characters).
bool isOwnTemporary(QStringView name);

// Removes the program's own temporary files that an import or a write killed half-way left in
// the folder, and returns their names. Only files untouched for some minutes go: a younger one
// may belong to a copy that another instance of the program is still making.
QStringList removeStaleTemporaries(const QString& folder);

} // namespace homefolder

// The logged-on user's name; never more than 127 characters, as the system call's buffer of 128
// holds no more.
QString CurrentUserName(const Environment& environment);

// The four lines of the text-reader settings for one data log.
QStringList schemaIniLines(const QString& fileName);

// Writes the home folder's "Schema.ini" for the data log about to be read, replacing what was
// there. Failures are silent: the caller reads the data log all the same.
void WriteSchemaIni(const QString& appFolder, const QString& fileName);

// What the "show the home folder" command did, for the window to finish it.
struct ShowHomeFolderResult {
    QString folder;  // the folder handed to the file manager
    bool opened;     // whether the file manager started
    QString message; // always shown afterwards, also when the start succeeded
};

inline constexpr char unableToDetermineWorkingFolder[] =
    "Unable to determine Trendax's working folder.";

// Opens the redirected copy when that folder exists, the home folder otherwise, in the desktop's
// file manager without waiting. The message that follows every start is the program's
// established behaviour and is kept on purpose.
ShowHomeFolderResult ShowHomeFolder(Environment& environment, const QString& redirectedFolder);

} // namespace trendax
