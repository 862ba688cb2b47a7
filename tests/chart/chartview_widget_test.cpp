#include "chart/statspanel.h"

#include <QCheckBox>
#include <QLabel>
#include <gtest/gtest.h>

namespace trendax {
namespace {

// Rows 0 to 7 start checked and every read-out "0"; filled, every name and value shows whole.
TEST(StatsPanel, StartsAtZeroAndShowsEveryNameAndValueWholeAt96And144Dpi) {
    for (const double dpi : {96.0, 144.0}) {
        SCOPED_TRACE(dpi);
        StatsPanel panel(dpi);
        for (int i = 0; i < StatsPanel::rowCount; ++i) {
            const StatsRow& row = panel.rows[size_t(i)];
            EXPECT_EQ(row.chkChannelVisible->isChecked(), i < 8) << i;
            for (const QLabel* l : {row.lblCursorValue, row.lblMinDisp, row.lblAvgDisp,
                                    row.lblMaxDisp, row.lblMin, row.lblAvg, row.lblMax})
                EXPECT_EQ(l->text(), "0") << i;
        }
        const QStringList names = {"Intake Temp.", "Discharge Pressure", "Quill Channel 8"};
        for (int i = 0; i < StatsPanel::rowCount; ++i) {
            panel.setRowName(i, names[i % 3]);
            panel.showStatistics(i, {-12345.678, 1234.5678, 0.004, -99999.99, 3, 4, 123456.78});
        }
        panel.setCursorText(QStringLiteral("12/28/2012 10:58:58 PM"));
        panel.setHeightTwips(3645);
        panel.resize(panel.minimumWidth(), panel.height());
        QList<QLabel*> labels = panel.findChildren<QLabel*>();
        for (QLabel* label : labels) {
            SCOPED_TRACE(label->text().toStdString());
            EXPECT_LT(label->fontMetrics().horizontalAdvance(label->text()), label->width());
            EXPECT_GE(label->height(), label->fontMetrics().height());
            EXPECT_TRUE(panel.rect().contains(label->geometry()));
            for (QLabel* other : labels)
                EXPECT_TRUE(other == label || !label->geometry().intersects(other->geometry()))
                    << "overlaps " << other->text().toStdString();
        }
        for (int i = 1; i < StatsPanel::rowCount; ++i) {
            const QRect above = panel.rows[size_t(i - 1)].chkChannelVisible->geometry();
            const QRect box = panel.rows[size_t(i)].chkChannelVisible->geometry();
            EXPECT_FALSE(box.intersects(above)) << "check box " << i;
            EXPECT_FALSE(box.intersects(panel.rows[size_t(i)].lblVar->geometry())) << i;
        }
    }
}

} // namespace
} // namespace trendax
