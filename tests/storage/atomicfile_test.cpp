// A file written through AtomicFile appears whole or not at all.
#include "storage/atomicfile.h"
#include "support/fulldisk.h"
#include "support/scratchfolder.h"

#include <QDir>
#include <cerrno>
#include <gtest/gtest.h>

namespace trendax {
namespace {

QStringList filesIn(const QString& folder) {
    QStringList names =
        QDir(folder).entryList(QDir::Files | QDir::Hidden | QDir::Dirs | QDir::NoDotAndDotDot);
    names.removeAll("filler");
    return names;
}

TEST(AtomicFiles, ReplaceOnlyOnCommit) {
    test::ScratchFolder dir;
    const QString path = dir.write("view.csv", "old");
    {
        AtomicFile abandoned(path);
        ASSERT_TRUE(abandoned.open(QIODevice::WriteOnly));
        EXPECT_EQ(abandoned.write("new"), 3);
    }
    EXPECT_EQ(dir.read("view.csv"), "old");
    EXPECT_EQ(filesIn(dir.path()), QStringList{"view.csv"});

    AtomicFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    EXPECT_EQ(file.write("new"), 3);
    EXPECT_TRUE(file.commit());
    EXPECT_EQ(dir.read("view.csv"), "new");
    EXPECT_EQ(filesIn(dir.path()), QStringList{"view.csv"});
}

TEST(AtomicFiles, FullDiskKeepsTheOldFileAndSaysWhy) {
    test::ScratchFolder dir;
    test::FullDisk disk(dir.file("media"));
    SCOPED_TRACE(disk.how());
    const QString path = dir.write("media/report.pdf", "old");
    disk.fill();
    AtomicFile file(path);
    // The temporary file may not even be created on a full file system.
    if (file.open(QIODevice::WriteOnly)) {
        file.write(QByteArray(1 << 20, 'x'));
        EXPECT_FALSE(file.commit());
    }
    EXPECT_TRUE(file.error() == ENOSPC || file.error() == EFBIG) << file.error();
    EXPECT_FALSE(file.errorText().isEmpty());
    EXPECT_EQ(dir.read("media/report.pdf"), "old");
    EXPECT_EQ(filesIn(dir.file("media")), QStringList{"report.pdf"});
}

TEST(AtomicFiles, AFolderInTheFilesPlaceIsRefused) {
    test::ScratchFolder dir;
    const QString path = dir.mkdir("chart.png");
    AtomicFile file(path);
    EXPECT_FALSE(file.open(QIODevice::WriteOnly));
    EXPECT_EQ(file.error(), EISDIR);
    EXPECT_TRUE(QFileInfo(path).isDir());
    EXPECT_EQ(filesIn(dir.path()), QStringList{"chart.png"});
}

} // namespace
} // namespace trendax
