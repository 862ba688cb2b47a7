#pragma once

#include <QByteArray>
#include <QString>
#include <QtGlobal>
#include <functional>

// Copying one file so that a reader never sees half of it: the bytes go to a temporary file in
// the destination's folder, which is then renamed over the destination. A missing destination
// folder is created; an existing destination is replaced without asking. Only regular files are
// copied; a copy gets the permissions the user's umask gives a new file, never more than the
// source's.
namespace trendax::filecopy {

struct Result {
    int error = 0;  // errno of the failing step; 0 on success
    QString reason; // what failed, in words, naming the step; empty on success
    bool ok() const { return error == 0; }
};

// Called after each block with the bytes written so far and the source's size.
using Progress = std::function<void(qint64 done, qint64 total)>;

Result copy(const QString& source, const QString& destination, const Progress& progress = {});
// The same with the source named by its bytes, for a name that is no text in the system's
// encoding (a controller's media written on another system).
Result copy(const QByteArray& source, const QString& destination, const Progress& progress = {});

// Deletes a file named by its bytes, also a read-only one (its folder's permissions decide on
// this system).
Result remove(const QByteArray& path);

// True when both paths, the first by its bytes, name the same existing file.
bool sameFile(const QByteArray& a, const QString& b);

} // namespace trendax::filecopy
