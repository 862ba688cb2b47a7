#include "mainwindowtest.h"

namespace trendax::test {
namespace {

constexpr double minute = 1.0 / 1440.0;

using ReferenceReadouts = MainWindowTest;

TEST_F(ReferenceReadouts, FollowTheCursorAndTheReferenceAndLeaveNothingBehind) {
    loadChannels(3); // channel k reads k * 100 + the minute of the day
    showWindow();
    StatsPanel& panel = *w->picStats;
    const auto labelGeometries = [&panel] {
        QList<QRect> out;
        for (const QLabel* label : panel.findChildren<QLabel*>())
            if (!label->isHidden())
                out << label->geometry();
        return out;
    };
    const int panelWidth = panel.minimumWidth();
    const QList<QRect> before = labelGeometries();
    EXPECT_TRUE(w->referencePanel->isHidden());

    w->Strip1->setCursorX(mar15 + 7 * minute);
    w->UpdateCursorDisplay();
    w->Strip1->model().setReferenceX(mar15 + 2 * minute);
    EXPECT_TRUE(w->referencePanel->isVisible());
    EXPECT_EQ(w->referencePanel->text(),
              QString::fromUtf8("Ref: 3/15/2012 12:02:00 AM   Δt: 0:05:00"));
    for (int k = 0; k < StatsPanel::rowCount; ++k) {
        SCOPED_TRACE("row " + std::to_string(k));
        const StatsRow& row = panel.rows[size_t(k)];
        ASSERT_TRUE(row.lblRefValue && row.lblRefValue->isVisible());
        EXPECT_EQ(row.lblRefValue->text(),
                  k < 3 ? QString::number((k + 1) * 100 + 2) + ".00" : QStringLiteral("0.00"));
        EXPECT_EQ(row.lblDelta->text(), k < 3 ? "5.00" : "0.00");
    }
    const QLabel* max = panel.rows[0].lblMax;
    QStringList headings; // right of "Max", level with the column headings
    for (const QLabel* label : panel.findChildren<QLabel*>())
        if (label->isVisible() && label->y() < max->y() && label->x() > max->geometry().right())
            headings << label->text();
    EXPECT_EQ(headings, (QStringList{"Ref Value", "Delta"}));
    EXPECT_GT(panel.minimumWidth(), panelWidth);
    EXPECT_TRUE(QTest::qWaitFor([&] { return w->Strip1->width() >= panel.minimumWidth(); }, 1000))
        << "the chart column makes room for the columns";

    // A click moves the cursor: Δt and the deltas follow it.
    const QRectF plot = w->Strip1->plotArea();
    QTest::mouseClick(w->Strip1, Qt::LeftButton, {},
                      QPoint(int(plot.left() + plot.width() * 0.95), int(plot.center().y())));
    const double cursorShown = panel.rows[0].lblCursorValue->text().toDouble();
    EXPECT_GE(cursorShown, 108.0);
    EXPECT_EQ(panel.rows[0].lblDelta->text(), QString::number(cursorShown - 102.0, 'f', 2));
    EXPECT_FALSE(w->referencePanel->text().endsWith("0:05:00"));

    // A new load takes the reference away: it belonged to the data it was set on.
    loadChannels(3);
    EXPECT_FALSE(w->Strip1->model().referenceX());
    EXPECT_TRUE(w->referencePanel->isHidden());
    EXPECT_TRUE(panel.rows[0].lblRefValue->isHidden());
    EXPECT_EQ(panel.minimumWidth(), panelWidth);
    EXPECT_EQ(labelGeometries(), before) << "every label where it was";
}

} // namespace
} // namespace trendax::test
