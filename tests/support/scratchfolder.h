#pragma once

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QString>
#include <QTemporaryDir>
#include <stdexcept>

namespace trendax::test {

// A temporary folder that disappears with the test, with small helpers to fill it.
class ScratchFolder {
public:
    ScratchFolder() {
        if (!dir_.isValid())
            throw std::runtime_error("cannot create a scratch folder");
    }

    QString path() const { return dir_.path(); }
    QString file(const QString& name) const { return dir_.filePath(name); }
    // Creates the folder (and its parents) below the scratch folder; returns its path.
    QString mkdir(const QString& name) const {
        QDir().mkpath(file(name));
        return file(name);
    }
    // Writes bytes to a file below the scratch folder, creating folders; returns its path.
    QString write(const QString& name, const QByteArray& bytes) const {
        QFile f(file(name));
        QDir().mkpath(QFileInfo(f).path());
        if (!f.open(QIODevice::WriteOnly) || f.write(bytes) != bytes.size())
            throw std::runtime_error("cannot write scratch file");
        return f.fileName();
    }
    // The file's bytes; empty when it cannot be read.
    QByteArray read(const QString& name) const {
        QFile f(file(name));
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    }

private:
    QTemporaryDir dir_;
};

} // namespace trendax::test
