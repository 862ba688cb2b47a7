#pragma once

#include <QRectF>
#include <QString>
#include <QStringList>
#include <functional>
#include <vector>

class QPagedPaintDevice;
class QPainter;

namespace trendax {

// The site report a field engineer leaves with the operator: the chart of the visible window,
// the loaded range, the statistics and the events and comments of the window, on landscape pages
// that each name the site and their number.
struct SiteReport {
    QString site;
    QString loadedRange;
    QString viewRange;
    QString made;
    // Name, cursor value, view min/avg/max, overall min/avg/max, as the panel shows them.
    struct StatsRow {
        QString name;
        QStringList values;
    };
    std::vector<StatsRow> stats;
    // Time text and what happened, in list order.
    std::vector<std::pair<QString, QString>> events;
    std::vector<std::pair<QString, QString>> comments;
};

// Draws the chart into a rectangle of the page (device pixels) at the device's resolution.
using ChartPainter = std::function<void(QPainter& painter, double dpi, const QRectF& rect)>;

// The history entries whose time lies in [start, end], split into time and text.
std::vector<std::pair<QString, QString>> eventsInWindow(const QStringList& entries, double start,
                                                        double end);
// The comment rows (time TAB comment) whose time lies in [start, end].
std::vector<std::pair<QString, QString>> commentsInWindow(const QStringList& rows, double start,
                                                          double end);

// Lays the report out on the device's pages; false when the device cannot be painted on or a
// new page cannot be started. Returns the number of pages through pages when given.
bool printSiteReport(QPagedPaintDevice& device, const SiteReport& report,
                     const ChartPainter& drawChart, int* pages = nullptr);

} // namespace trendax
