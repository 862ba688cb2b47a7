#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QStringList>
#include <functional>
#include <optional>
#include <vector>

// Import of the files a controller delivers: which files are taken, the names they get in the
// home and configuration folders, and the walk through a source folder. The walk reports what
// it does through callbacks, so the dialog only shows it.
namespace trendax::import {

enum class Kind {
    DataLog,     // 12 characters ending in ".CSV": site, month, day, no year
    Calibration, // ends in "SCAL.TXT" or "OFFS.TXT"
    History,     // ends in ".HST" or ".TXT", month and day as numbers, a numeric modified year
    Other        // left alone
};

// The kind of a bare file name, the tests in the order data log, calibration, history; suffixes
// in any letter case. modifiedYear is FileModifiedYear of the file; it is consulted only for
// history files.
Kind classify(QStringView name, QStringView modifiedYear);

// Whether a name ends like a history file (".HST" or ".TXT"): only for these the walk needs the
// file's modified year.
bool endsLikeHistory(QStringView name);

// Whether a piece of a file name reads as a number the way the controller's software tests it:
// blanks around, an optional sign, digits with at most one decimal point, at least one digit.
bool readsAsNumber(QStringView text);

// DataLogYear of a data log's first bytes: the last two of its first 13 characters. nullopt for
// an empty file, whose year cannot be read.
std::optional<QString> dataLogYearOf(QByteArrayView head);
// DataLogYear of a file; nullopt when it is empty or cannot be read.
std::optional<QString> DataLogYear(const QString& path);
std::optional<QString> DataLogYear(const QByteArray& nativePath);
// FileModifiedYear: the last two digits of the year of the file's last-modified date; nullopt
// when the file is not there.
std::optional<QString> FileModifiedYear(const QString& path);
std::optional<QString> FileModifiedYear(const QByteArray& nativePath);

// Whether a year taken from inside a data log can stand in a file name: no path separator and no
// control character (a short first line puts its line end there).
bool yearFitsFileName(QStringView year);

// The home folder names: the source's first eight characters, the two-digit year and the suffix.
QString dataLogName(QStringView name, QStringView year);
QString historyName(QStringView name, QStringView year);

// ---- The walk ----

struct Folders {
    QString source; // the folder to import from
    QString home;   // HomeFolderPath
    QString config; // ConfigFolderPath
    // When not empty, only these files of the source folder (as SourceFile::native paths, e.g.
    // files dropped from the file manager); the rest of the folder is left alone.
    QList<QByteArray> only;
};

// A file of a source folder as the walk sees it.
struct SourceFile {
    // The name as text: UTF-8 when its bytes are, otherwise read as Windows-1252 like the
    // program's text files, so media written on a controller's own system still import. The
    // name rules and the destination's name use it.
    QString name;
    QString path;      // the folder joined with name, for messages
    QByteArray native; // the path as the file system holds it; the file is read and deleted by it
    // Regular files, and symbolic links to a regular file inside the source folder (copied as
    // that file, since a controller's media may well link one name to another). A link that
    // leads out of the folder, or to nothing, is listed but passed over like a file of an
    // unknown kind: a link named like a data log must never bring a system file into the
    // program's folders.
    bool copyable = false;
};

// The files of a source folder in the walk's order (by name, without regard to letter case);
// hidden files and subfolders are left out.
std::vector<SourceFile> listSource(const QString& folder);

struct Callbacks {
    // The number of files listed; the progress bar's maximum.
    std::function<void(int count)> begin;
    // Before each file, its index from 0.
    std::function<void(int index)> progress;
    // Copies a data log the way the shell copy does (progress window, its own error message);
    // returns the error number, 0 on success. Unset: a plain copy.
    std::function<int(const SourceFile& source, const QString& destination)> copyDataLog;
    // True while a data log is being copied (and its source deleted): the dialog is disabled.
    std::function<void(bool copying)> dataLogCopying;
    // Deletes a source file; an empty text on success, otherwise why not. Unset: filecopy.
    std::function<QString(const SourceFile& source)> remove;
    // A message to the user with an OK button: why the import stopped.
    std::function<void(const QString& text)> message;
};

struct Outcome {
    int listed = 0;
    QStringList copied;       // destination paths written
    QStringList deleted;      // source paths deleted (as SourceFile::path)
    QStringList failedCopies; // data logs whose copy failed (with their error message shown)
    // Set when the import stopped at a file: the message that said so.
    std::optional<QString> stopped;
};

// What was dropped from the file manager, as imports: first each folder whole, then the files
// grouped by the folder that holds them (only those files; none of a folder dropped whole).
// Paths that are neither a folder nor a file are left out.
struct DropGroup {
    QString folder;         // canonical
    QList<QByteArray> only; // empty for a whole folder
};
std::vector<DropGroup> groupDropped(const QStringList& paths);

// Imports every file of folders.source that the viewer knows into folders.home and
// folders.config, deleting each source after its copy when deleteSources is set. Stops at the
// first failure that leaves a file in doubt (an empty or unreadable data log, a failing plain copy
// or delete, a file that vanished) with a message naming the file and the reason; the files
// already handled stay handled.
Outcome run(const Folders& folders, bool deleteSources, const Callbacks& callbacks);

} // namespace trendax::import
