#include "support/scratchfolder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <stdexcept>

namespace trendax::test {

ScratchFolder::ScratchFolder() {
    if (!dir_.isValid())
        throw std::runtime_error("cannot create a scratch folder");
}

QString ScratchFolder::mkdir(const QString& name) const {
    const QString p = file(name);
    QDir().mkpath(p);
    return p;
}

QString ScratchFolder::write(const QString& name, const QByteArray& bytes) const {
    const QString p = file(name);
    QDir().mkpath(QFileInfo(p).path());
    QFile f(p);
    if (!f.open(QIODevice::WriteOnly) || f.write(bytes) != bytes.size())
        throw std::runtime_error("cannot write scratch file");
    return p;
}

QByteArray ScratchFolder::read(const QString& name) const {
    QFile f(file(name));
    if (!f.open(QIODevice::ReadOnly))
        return {};
    return f.readAll();
}

} // namespace trendax::test
