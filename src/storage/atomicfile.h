#pragma once

#include <QByteArray>
#include <QIODevice>
#include <QString>
#include <functional>

namespace trendax {

// Writes all the bytes to a file descriptor, going on after interruptions; false with errno set
// on failure.
bool writeAllBytes(int fd, QByteArrayView bytes);

// A file that appears whole or not at all. Bytes go to a temporary file beside the target; every
// write is checked, and commit() syncs it and renames it over the target only when all of them
// succeeded. Without a successful commit the temporary file is removed and the target stays as it
// was. Anything that writes to a QIODevice (a text stream, an image writer, a PDF or SVG
// generator) can write through it.
class AtomicFile : public QIODevice {
public:
    explicit AtomicFile(const QString& path);
    ~AtomicFile() override;

    // Creates the temporary file, with the permissions an existing regular target has, or those
    // the user's umask gives. False, with error() telling why, when it cannot be created.
    bool open(OpenMode mode) override;
    // Syncs, closes and renames the temporary file into place. False, removing the temporary
    // file, when any write before failed or any of these steps fails.
    bool commit();
    // Removes the temporary file; the target stays as it was.
    void cancel();

    const QString& path() const { return path_; }
    // The first failure's error number, 0 while there was none.
    int error() const { return error_; }
    // The first failure in words ("No space left on device"), empty while there was none.
    QString errorText() const;

    bool isSequential() const override { return true; }

protected:
    qint64 readData(char* data, qint64 maxSize) override;
    qint64 writeData(const char* data, qint64 size) override;

private:
    void fail(int error);
    void removeTemporary();

    QString path_;
    QByteArray target_;
    QByteArray temporary_;
    int fd_ = -1;
    int error_ = 0;
};

// Writes a whole file through an AtomicFile: write fills it and says whether it succeeded. Returns
// the empty text when the file is in place, otherwise the message for the user, naming the file
// and the reason ("Cannot write /media/usb/view.pdf: No space left on device").
QString writeWhole(const QString& path, const std::function<bool(QIODevice& out)>& write);

} // namespace trendax
