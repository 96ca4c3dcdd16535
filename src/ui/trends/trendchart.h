#pragma once

#include "storage/chartsettings.h"
#include "trends/chartkeys.h"
#include "trends/trendset.h"
#include "ui/trends/tracesitem.h"

#include <QChartView>
#include <QList>

#include <array>

class QDateTimeAxis;
class QGraphicsLineItem;
class QLabel;
class QValueAxis;

namespace telvane {

// The chart both trend windows draw: one line per zone over a date-time axis, the value
// axis between the displayed limits. The wheel zooms the time axis around the mouse,
// with Ctrl the value axis; dragging moves both. The value axis never leaves the
// absolute limits. A cursor follows the mouse and the information box shows, for each
// trace, its value under the cursor and its minimum, maximum and mean over the shown
// time range.
//
// Colours: Colore_Sfondo fills the plot area, Colore_Bordo the frame around it where the
// axes' labels stand (the labels turn white on a dark frame), Colore_Griglia draws the
// grid and the axes' lines, Colore_Cursore the cursor and the information box's border,
// Colore_Off2 the information box's background.
class TrendChart final : public QChartView
{
    Q_OBJECT

public:
    explicit TrendChart(QWidget *parent = nullptr);
    ~TrendChart() override;

    // `names` are the traces' labels; traces beyond `traceCount` are not drawn.
    void applySettings(const ChartSettings &settings, int traceCount, const QStringList &names,
                       const InfoPosition &info);
    // The points to draw; not owned, must outlive the chart or be replaced.
    void setPoints(const TrendSet *points);
    // The points changed: draw them again (coalesced with other changes).
    void pointsChanged();
    void setTraceVisible(int trace, bool visible);
    bool traceVisible(int trace) const { return m_visible[trace - 1]; }

    // The time range shown. Until the operator zooms or scrolls, the chart shows all its
    // points and follows new ones.
    void setTimeRange(qint64 from, qint64 to);
    void showAll();
    qint64 shownFrom() const { return m_from; }
    qint64 shownTo() const { return m_to; }
    ValueRange valueRange() const { return m_valueRange; }
    // Kept within the absolute limits.
    void setValueRange(ValueRange range);

    // Puts the cursor at a time, as the mouse does.
    void moveCursorTo(qint64 ms);
    QString infoText() const;
    // Points handed to the chart in its last drawing, all traces together.
    qsizetype drawnPointCount() const { return m_drawnPoints; }
    // The traces as last drawn, in the chart's coordinates.
    const QList<TracesItem::Trace> &drawnTraces() const;
    // Draws now rather than at the next turn of the event loop.
    void redrawNow();

signals:
    // The operator zoomed or scrolled the value axis.
    void valueRangeChangedByUser(double min, double max);
    // The operator dragged the information box to a new place.
    void infoMoved(InfoPosition position);

protected:
    void wheelEvent(QWheelEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void leaveEvent(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void scheduleRedraw();
    void redraw();
    void updateInfo();
    void placeCursor();
    void applyValueRange(ValueRange range, bool byUser);
    QPointF valueAt(const QPoint &viewPos) const;
    QColor traceColor(int trace) const;
    QPointF positionOf(qint64 ms, double value) const;
    void moveInfoTo(QPoint topLeft);

    QChart *m_chart;
    QDateTimeAxis *m_timeAxis;
    QValueAxis *m_valueAxis;
    TracesItem *m_traces;
    QGraphicsLineItem *m_cursorLine;
    QLabel *m_info;

    const TrendSet *m_points = nullptr;
    ChartSettings m_settings;
    QStringList m_names;
    int m_traceCount = 0;
    std::array<bool, TrendSet::Traces> m_visible;
    // Of the shown time range, as of the last drawing.
    std::array<TrendStats, TrendSet::Traces> m_stats{};

    bool m_followAll = true;
    qint64 m_from = 0;
    qint64 m_to = 0;
    ValueRange m_valueRange{-50, 50};
    qint64 m_cursorMs = -1;
    bool m_redrawPending = false;
    qsizetype m_drawnPoints = 0;

    QPoint m_dragStart;
    qint64 m_dragFrom = 0;
    qint64 m_dragTo = 0;
    ValueRange m_dragValues{0, 0};
    bool m_dragging = false;
    QPoint m_infoAt;
    QPoint m_infoGrab;
    bool m_movingInfo = false;
};

// How a stored colour is drawn, the palette standing in for the system's colours.
QColor drawnColor(quint32 stored, const QPalette &palette);

} // namespace telvane
