#pragma once

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

namespace trendax::test {

// A temporary folder that disappears with the test, with small helpers to fill it.
class ScratchFolder {
public:
    ScratchFolder();

    QString path() const { return dir_.path(); }
    QString file(const QString& name) const { return dir_.filePath(name); }
    // Creates the folder (and its parents) below the scratch folder; returns its path.
    QString mkdir(const QString& name) const;
    // Writes bytes to a file below the scratch folder, creating folders; returns its path.
    QString write(const QString& name, const QByteArray& bytes) const;
    QByteArray read(const QString& name) const;

private:
    QTemporaryDir dir_;
};

} // namespace trendax::test
