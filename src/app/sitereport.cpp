#include "app/sitereport.h"

#include "history/historyfile.h"
#include "history/usercomments.h"

#include <QAbstractTextDocumentLayout>
#include <QPagedPaintDevice>
#include <QPainter>
#include <QTextDocument>
#include <cmath>

namespace trendax {

namespace {

QString escaped(const QString& text) {
    return text.toHtmlEscaped();
}

QString table(const QStringList& headers, const std::vector<QStringList>& rows) {
    QString html = QStringLiteral(
        "<table border=\"1\" cellspacing=\"0\" cellpadding=\"3\" width=\"100%\"><thead><tr>");
    for (const QString& h : headers)
        html += QStringLiteral("<th>") + escaped(h) + QStringLiteral("</th>");
    html += QStringLiteral("</tr></thead>");
    for (const QStringList& row : rows) {
        html += QStringLiteral("<tr>");
        for (const QString& cell : row)
            html += QStringLiteral("<td>") + escaped(cell) + QStringLiteral("</td>");
        html += QStringLiteral("</tr>");
    }
    return html + QStringLiteral("</table>");
}

std::vector<QStringList> pairRows(const std::vector<std::pair<QString, QString>>& pairs) {
    std::vector<QStringList> rows;
    rows.reserve(pairs.size());
    for (const auto& [time, text] : pairs)
        rows.push_back({time, text});
    return rows;
}

QString reportHtml(const SiteReport& r) {
    QString html = QStringLiteral("<h2>Site: ") + escaped(r.site) + QStringLiteral("</h2>");
    html += QStringLiteral("<p>Loaded: ") + escaped(r.loadedRange) + QStringLiteral("<br>Shown: ") +
            escaped(r.viewRange) + QStringLiteral("<br>Made: ") + escaped(r.made) +
            QStringLiteral("</p>");
    html += QStringLiteral("<h3>Statistics</h3>");
    std::vector<QStringList> stats;
    for (const auto& row : r.stats)
        stats.push_back(QStringList{row.name} + row.values);
    html += table(
        {"Channel", "Cursor", "View Min", "View Avg", "View Max", "All Min", "All Avg", "All Max"},
        stats);
    html += QStringLiteral("<h3>History events in the window</h3>");
    html += r.events.empty() ? QStringLiteral("<p>None.</p>")
                             : table({"Time", "Event"}, pairRows(r.events));
    html += QStringLiteral("<h3>Comments in the window</h3>");
    html += r.comments.empty() ? QStringLiteral("<p>None.</p>")
                               : table({"Time", "Comment"}, pairRows(r.comments));
    return html;
}

void paintFooter(QPainter& p, const QRectF& page, double dpi, const QString& site, int number,
                 int count) {
    p.save();
    QFont font = p.font();
    font.setPixelSize(std::max(1, int(std::lround(9.0 / 72.0 * dpi))));
    p.setFont(font);
    p.setPen(Qt::black);
    const double h = QFontMetricsF(font).height();
    const QRectF line(page.left(), page.bottom() - h, page.width(), h);
    p.drawText(line, Qt::AlignLeft | Qt::AlignVCenter, QStringLiteral("Site: ") + site);
    p.drawText(line, Qt::AlignRight | Qt::AlignVCenter,
               QStringLiteral("Page %1 of %2").arg(number).arg(count));
    p.restore();
}

} // namespace

std::vector<std::pair<QString, QString>> eventsInWindow(const QStringList& entries, double start,
                                                        double end) {
    std::vector<std::pair<QString, QString>> out;
    for (const QString& entry : entries) {
        const auto t = history::historyEntryTime(entry);
        if (t && *t >= start && *t <= end)
            out.emplace_back(entry.left(17), entry.mid(17).trimmed());
    }
    return out;
}

std::vector<std::pair<QString, QString>> commentsInWindow(const QStringList& rows, double start,
                                                          double end) {
    std::vector<std::pair<QString, QString>> out;
    for (const QString& row : rows) {
        const QString time = row.section(QLatin1Char('\t'), 0, 0);
        const auto t = history::commentCellTime(time);
        if (t && *t >= start && *t <= end)
            out.emplace_back(time, row.section(QLatin1Char('\t'), 1));
    }
    return out;
}

bool printSiteReport(QPagedPaintDevice& device, const SiteReport& report,
                     const ChartPainter& drawChart, int* pages) {
    const double dpi = device.logicalDpiY();
    QPainter p;
    if (!p.begin(&device))
        return false;
    const QRectF page(QPointF(0, 0), QSizeF(device.width(), device.height()));
    const double footer = 16.0 / 72.0 * dpi;
    const QRectF body(page.left(), page.top(), page.width(), page.height() - footer);

    QTextDocument doc;
    doc.setDocumentMargin(0);
    QFont font = p.font();
    font.setPixelSize(std::max(1, int(std::lround(9.0 / 72.0 * dpi))));
    doc.setDefaultFont(font);
    doc.setHtml(reportHtml(report));
    doc.setPageSize(body.size());
    const int textPages = std::max(1, doc.pageCount());
    const int count = 1 + textPages;
    if (pages)
        *pages = count;

    // Page 1: the chart across the page.
    drawChart(p, dpi, body);
    paintFooter(p, page, dpi, report.site, 1, count);
    for (int i = 0; i < textPages; ++i) {
        if (!device.newPage()) {
            p.end();
            return false;
        }
        p.save();
        p.translate(body.left(), body.top() - i * body.height());
        const QRectF visible(0, i * body.height(), body.width(), body.height());
        p.setClipRect(visible);
        QAbstractTextDocumentLayout::PaintContext context;
        context.clip = visible;
        context.palette.setColor(QPalette::Text, Qt::black);
        doc.documentLayout()->draw(&p, context);
        p.restore();
        paintFooter(p, page, dpi, report.site, i + 2, count);
    }
    return p.end();
}

} // namespace trendax
