#include "loading/dlgprogress.h"

#include <QLabel>
#include <QProgressBar>
#include <gtest/gtest.h>

namespace trendax {
namespace {

TEST(DlgProgress, ShowsFilesAndLinesOfALoad) {
    dlgProgress progress;
    progress.beginFiles(3);
    progress.showFile(2, 3);
    EXPECT_EQ(progress.lblFiles->text(), QStringLiteral("Loading file 2 of 3"));
    progress.showLine(5000, 86400);
    EXPECT_EQ(progress.lblLines->text(), QStringLiteral("Reading line 5000 of 86400"));
    progress.showLine(1000, 2000); // the next, shorter file
    EXPECT_EQ(progress.ProgressBar2->maximum(), 2000);
    EXPECT_EQ(progress.ProgressBar2->value(), 1000);
    progress.finishFiles();
    EXPECT_EQ(progress.ProgressBar1->maximum(), 4);
    EXPECT_EQ(progress.ProgressBar1->value(), 4);
}

} // namespace
} // namespace trendax
