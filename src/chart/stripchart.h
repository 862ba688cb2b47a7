#pragma once

#include "chart/charttypes.h"
#include "chart/eventmarkers.h"
#include "chart/xyarray.h"

#include <QRectF>
#include <QString>
#include <QStringList>
#include <QWidget>
#include <cstdint>
#include <memory>
#include <optional>
#include <stdexcept>

class QPainter;
class QPrinter;

namespace trendax {

class Dialogs;
class StripChartModel;
struct ChartSettings;

// The multi-track strip chart: up to 13 variables on 1 to 5 horizontal tracks sharing one time
// axis, a movable visible window, a vertical cursor, statistics per variable and printing.
// Per-variable and per-track properties act on the slot chosen by CurrentVar / CurrentTrack.
class StripChart : public QWidget {
    Q_OBJECT

public:
    explicit StripChart(QWidget* parent = nullptr);
    ~StripChart() override;

    // ---- Chart-wide state ----
    int MaxBufferSize() const;
    void setMaxBufferSize(int points);
    int VarCount() const;
    int TrackCount() const;
    void setTrackCount(int tracks);
    PackedColor BackColor() const;
    void setBackColor(PackedColor color);
    QString Caption() const;
    void setCaption(const QString& caption);
    double XSpan() const;
    void setXSpan(double days);
    double XViewStart() const;
    double XViewEnd() const;
    double CursorX() const;
    void setCursorX(double x);
    int ChartMode() const;
    void setChartMode(int mode);
    int CurrentVar() const;
    void setCurrentVar(int index);
    int CurrentTrack() const;
    void setCurrentTrack(int index);
    // While a load appends day after day the curves change far more often than anyone can
    // follow, and a year's load would spend a fifth of its time redrawing them: with an interval
    // the curves are redrawn at most that often (the last change always shows), 0 redraws them
    // at every change.
    void setCurveRepaintInterval(int milliseconds);

    // ---- The selected variable ----
    QString VarName() const;
    void setVarName(const QString& name);
    PackedColor VarColor() const;
    void setVarColor(PackedColor color);
    int VarSymbol() const;
    void setVarSymbol(int symbol);
    bool VarVisible() const;
    void setVarVisible(bool visible);
    int VarTrack() const;
    void setVarTrack(int track);
    double VarYMin() const;
    void setVarYMin(double y);
    double VarYMax() const;
    void setVarYMax(double y);

    // ---- The selected track ----
    PackedColor TrackColor() const;
    void setTrackColor(PackedColor color);
    double TrackYMin() const;
    void setTrackYMin(double y);
    double TrackYMax() const;
    void setTrackYMax(double y);

    // ---- Operations ----
    // Appends the points of a 2 x N array to variable k; null, a bad index or a bad shape throws.
    void AddXYArray(int k, const XYArray* array);
    void ClearData();
    void ShowXRange(double start, double end);
    double CursorValue(int i) const;
    double DataMin(int i) const;
    double DataMax(int i) const;
    double DataAvg(int i) const;
    double ViewMin(int i) const;
    double ViewMax(int i) const;
    double ViewAvg(int i) const;
    // Draws the whole chart into a rectangle of the printer page, in inches.
    void PrintChart(QPrinter& printer, double left, double top, double width, double height);
    // The same onto any painter whose device has the given resolution (dots per inch).
    void PrintChart(QPainter& painter, double dpi, double left, double top, double width,
                    double height);
    // The settings dialog, shown through dialogs; its settings apply when it is accepted.
    void ShowSettingsDialog(Dialogs& dialogs);
    // The channel names a printed legend shows, by variable; where one is missing or empty the
    // variable's name stands.
    void setLegendNames(const QStringList& names);
    // The options the settings dialog edits, read and applied without opening it.
    ChartSettings settings() const;
    void applySettings(const ChartSettings& settings);

    // The plot area (all track bands) in widget coordinates; a left click inside it moves the
    // cursor to the time under the pointer.
    QRectF plotArea() const;

    // ---- Event markers ----
    // Replaces the history events and comments drawn as markers across the tracks.
    void setEventMarkers(std::vector<EventMarker> markers);
    const EventMarkers& eventMarkers() const;
    // The markers whose flag is at pos (widget coordinates), unless markers are hidden.
    std::optional<MarkerColumn> markerFlagAt(const QPointF& pos) const;
    // The tooltip of the flag at pos; empty where there is none.
    QString markerToolTip(const QPointF& pos) const;

    // The model behind the widget (points, window, cursor, statistics).
    StripChartModel& model();
    const StripChartModel& model() const;

signals:
    // The user moved the cursor: a left click in the plot area, and every position a drag from
    // there reaches (at most once per repaint of the chart, the last position always).
    void CursorChange(double x);
    // A mouse button went down: button 1 left, 2 right, 4 middle; shift 1 Shift, 2 Ctrl, 4 Alt.
    void ChartMouseDown(int button, int shift, double x, double y);
    // Home was pressed on the focused chart: the owner shows all loaded data (it knows its range).
    void ZoomAllRequest();
    // The reference cursor was set, moved or removed (model().referenceX()).
    void ReferenceChange();
    // A plain left click on a marker's flag: the row of its event or comment (the first of the
    // markers that share the flag).
    void MarkerClick(trendax::MarkerSource source, int index);

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    // Mouse navigation: a press that starts a pan, a range selection or a reference cursor move
    // (true), and the moves and release of such a press (true while one is under way).
    bool startNavigation(const QMouseEvent* event);
    bool continueNavigation(const QMouseEvent* event);
    bool finishNavigation(const QMouseEvent* event);

    // Moves the cursor to a time the user chose and reports it.
    void moveCursorByUser(double t);
    // Applies the drag position that waited for the last repaint.
    void flushDrag();
    // A plain left press on a marker's flag reports the marker; true when it did.
    bool clickMarkerFlag(QMouseEvent* event);

    struct Impl;
    std::unique_ptr<Impl> d;
};

} // namespace trendax
