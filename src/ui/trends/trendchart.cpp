#include "ui/trends/trendchart.h"

#include "base/datetimetext.h"
#include "trends/drawnsegments.h"
#include "trends/tracecolors.h"
#include "ui/trends/tracesitem.h"

#include <QDateTime>
#include <QDateTimeAxis>
#include <QGraphicsLineItem>
#include <QLabel>
#include <QMouseEvent>
#include <QTimer>
#include <QValueAxis>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace telvane {

namespace {

constexpr double WheelZoomStep = 0.8;
// The shortest time range worth zooming to.
constexpr qint64 MinimumSpanMs = 60 * 1000;
// A trace that has had no point for this long shows no value under the cursor.
constexpr qint64 CursorReachMs = 15 * 60 * 1000;

QString valueText(float value)
{
    return QLocale().toString(value, 'f', 1);
}

} // namespace

QColor drawnColor(quint32 stored, const QPalette &palette)
{
    const ScreenColor color = screenColor(stored);
    if (color.systemIndex == SystemWindowTextIndex)
        return palette.color(QPalette::WindowText);
    if (color.systemIndex >= 0)
        return palette.color(QPalette::Text);
    return QColor(color.red, color.green, color.blue);
}

TrendChart::TrendChart(QWidget *parent)
    : QChartView(parent)
    , m_chart(new QChart)
    , m_timeAxis(new QDateTimeAxis)
    , m_valueAxis(new QValueAxis)
    , m_traces(new TracesItem(m_chart))
    , m_cursorLine(new QGraphicsLineItem)
    , m_info(new QLabel(viewport()))
{
    setObjectName(QStringLiteral("TrendChart"));
    m_visible.fill(true);
    m_chart->legend()->hide();
    m_chart->setMargins(QMargins(4, 4, 4, 4));
    m_chart->setBackgroundRoundness(0);
    m_chart->setPlotAreaBackgroundVisible(true);
    m_timeAxis->setFormat(QStringLiteral("dd/MM HH:mm"));
    m_timeAxis->setTickCount(7);
    m_valueAxis->setTickCount(11);
    m_valueAxis->setLabelFormat(QStringLiteral("%.1f"));
    // A date-time axis that joins a chart shown in a view while still at its empty
    // default range is never laid out again: no labels and no grid, whatever range
    // it gets later. So it gets a real range first.
    const QDateTime now = QDateTime::currentDateTime();
    m_timeAxis->setRange(now.addSecs(-3600), now);
    m_chart->addAxis(m_timeAxis, Qt::AlignBottom);
    m_chart->addAxis(m_valueAxis, Qt::AlignLeft);
    setChart(m_chart);
    setRenderHint(QPainter::Antialiasing, false);
    setMouseTracking(true);
    setRubberBand(QChartView::NoRubberBand);

    // Above the grid, where the chart's own series would stand.
    m_traces->setZValue(5);
    connect(m_chart, &QChart::plotAreaChanged, this, [this] {
        placeCursor();
        scheduleRedraw();
    });

    m_cursorLine->setZValue(10);
    m_cursorLine->hide();
    scene()->addItem(m_cursorLine);

    m_info->setObjectName(QStringLiteral("InfoBox"));
    m_info->setTextFormat(Qt::RichText);
    m_info->setToolTip(QStringLiteral("Trascinare per spostare il riquadro"));
    m_info->setCursor(Qt::SizeAllCursor);
    m_info->installEventFilter(this);
    m_info->hide();

    setTimeRange(now.addSecs(-3600).toMSecsSinceEpoch(), now.toMSecsSinceEpoch());
    m_followAll = true;
    applyValueRange(m_valueRange, false);
}

TrendChart::~TrendChart() = default;

void TrendChart::applySettings(const ChartSettings &settings, int traceCount, const QStringList &names,
                               const InfoPosition &info)
{
    m_settings = settings;
    m_traceCount = std::clamp(traceCount, 0, int(TrendSet::Traces));
    m_names = names;

    const QColor border = drawnColor(settings.border, palette());
    const QColor grid = drawnColor(settings.grid, palette());
    const QColor labels = border.lightnessF() < 0.5 ? Qt::white : Qt::black;
    m_chart->setBackgroundBrush(border);
    m_chart->setPlotAreaBackgroundBrush(drawnColor(settings.background, palette()));
    for (QAbstractAxis *axis : {static_cast<QAbstractAxis *>(m_timeAxis), static_cast<QAbstractAxis *>(m_valueAxis)}) {
        axis->setGridLineColor(grid);
        axis->setLinePenColor(grid);
        axis->setLabelsColor(labels);
    }
    const QColor cursor = drawnColor(settings.cursor, palette());
    m_cursorLine->setPen(QPen(cursor, 1));
    m_info->setStyleSheet(QStringLiteral("QLabel { background: %1; border: 1px solid %2; padding: 3px; color: black; }")
                              .arg(drawnColor(settings.off2, palette()).name(), cursor.name()));
    m_infoAt = QPoint(info.x / TwipsPerPixel, info.y / TwipsPerPixel);
    moveInfoTo(m_infoAt);
    applyValueRange({settings.displayMin, settings.displayMax}, false);
    scheduleRedraw();
}

void TrendChart::setPoints(const TrendSet *points)
{
    m_points = points;
    m_followAll = true;
    pointsChanged();
}

void TrendChart::pointsChanged()
{
    if (m_followAll && m_points && m_points->pointCount() > 0) {
        m_from = m_points->firstMs();
        m_to = std::max(m_points->lastMs(), m_from + MinimumSpanMs);
        m_timeAxis->setRange(QDateTime::fromMSecsSinceEpoch(m_from), QDateTime::fromMSecsSinceEpoch(m_to));
    }
    scheduleRedraw();
}

void TrendChart::setTraceVisible(int trace, bool visible)
{
    if (trace < 1 || trace > TrendSet::Traces)
        return;
    m_visible[trace - 1] = visible;
    scheduleRedraw();
}

void TrendChart::setTimeRange(qint64 from, qint64 to)
{
    if (to - from < MinimumSpanMs) {
        const qint64 middle = from + (to - from) / 2;
        from = middle - MinimumSpanMs / 2;
        to = from + MinimumSpanMs;
    }
    m_followAll = false;
    m_from = from;
    m_to = to;
    m_timeAxis->setRange(QDateTime::fromMSecsSinceEpoch(from), QDateTime::fromMSecsSinceEpoch(to));
    scheduleRedraw();
}

void TrendChart::showAll()
{
    m_followAll = true;
    pointsChanged();
}

void TrendChart::setValueRange(ValueRange range)
{
    applyValueRange(range, false);
}

void TrendChart::applyValueRange(ValueRange range, bool byUser)
{
    m_valueRange = clampedValueRange(range, {m_settings.absoluteMin, m_settings.absoluteMax});
    m_valueAxis->setRange(m_valueRange.min, m_valueRange.max);
    placeCursor();
    if (byUser)
        emit valueRangeChangedByUser(m_valueRange.min, m_valueRange.max);
}

void TrendChart::scheduleRedraw()
{
    if (m_redrawPending)
        return;
    m_redrawPending = true;
    QTimer::singleShot(0, this, [this] {
        if (m_redrawPending)
            redraw();
    });
}

void TrendChart::redrawNow()
{
    redraw();
}

QPointF TrendChart::positionOf(qint64 ms, double value) const
{
    const QRectF plot = m_chart->plotArea();
    const double span = double(std::max<qint64>(1, m_to - m_from));
    const double height = std::max(1e-9, m_valueRange.max - m_valueRange.min);
    return {plot.left() + double(ms - m_from) * plot.width() / span,
            plot.bottom() - (value - m_valueRange.min) * plot.height() / height};
}

// The chart's own series would need one series per unbroken stretch to show gaps;
// the traces are drawn by one item instead, in pixels, after the reduction to what
// the plot's columns can show.
void TrendChart::redraw()
{
    m_redrawPending = false;
    const QRectF plot = m_chart->plotArea();
    const int columns = std::max(200, int(plot.width()));
    m_drawnPoints = 0;
    QList<TracesItem::Trace> traces;
    for (int trace = 1; trace <= TrendSet::Traces; ++trace) {
        if (!m_points || trace > m_traceCount || !m_visible[trace - 1])
            continue;
        TracesItem::Trace drawn{traceColor(trace), {}};
        for (const std::vector<TrendPoint> &segment :
             drawnSegments(m_points->trace(trace).points(), m_from, m_to, columns)) {
            QPolygonF line;
            line.reserve(qsizetype(segment.size()));
            for (const TrendPoint &point : segment)
                line.append(positionOf(point.ms, point.value));
            m_drawnPoints += line.size();
            drawn.stretches.append(std::move(line));
        }
        traces.append(std::move(drawn));
    }
    m_traces->setTraces(std::move(traces), plot);
    // Over a week that is millions of readings: counted once per drawing, not at
    // every move of the cursor.
    for (int trace = 1; trace <= TrendSet::Traces; ++trace)
        m_stats[trace - 1] = m_points ? m_points->trace(trace).stats(m_from, m_to) : TrendStats{};
    updateInfo();
}

QColor TrendChart::traceColor(int trace) const
{
    return drawnColor(m_settings.traceColors[trace - 1], palette());
}

const QList<TracesItem::Trace> &TrendChart::drawnTraces() const
{
    return m_traces->traces();
}

QString TrendChart::infoText() const
{
    return m_info->text();
}

void TrendChart::updateInfo()
{
    if (!m_points || m_traceCount == 0) {
        m_info->hide();
        return;
    }
    QString html = QStringLiteral("<table cellspacing=0 cellpadding=1>");
    if (m_cursorMs >= 0) {
        html += QStringLiteral("<tr><td colspan=5><b>%1</b></td></tr>")
                    .arg(QDateTime::fromMSecsSinceEpoch(m_cursorMs).toString(QLatin1String(DateTimeTextFormat)));
    }
    html += QStringLiteral("<tr><td></td><td align=right>%1</td><td align=right>min</td><td align=right>max</td>"
                           "<td align=right>media</td></tr>")
                .arg(m_cursorMs >= 0 ? QStringLiteral("cursore") : QString());
    for (int trace = 1; trace <= m_traceCount; ++trace) {
        const TrendSeries &series = m_points->trace(trace);
        if (!m_visible[trace - 1] || series.isEmpty())
            continue;
        const TrendStats &stats = m_stats[trace - 1];
        QString atCursor;
        if (m_cursorMs >= 0) {
            const std::optional<float> value = series.valueAt(m_cursorMs, CursorReachMs);
            atCursor = value ? valueText(*value) : QStringLiteral("--.-");
        }
        const QString name = trace <= m_names.size() ? m_names[trace - 1] : QStringLiteral("Zona %1").arg(trace);
        html += QStringLiteral("<tr><td><font color=\"%1\">&#9632;</font> %2&nbsp;</td><td align=right>%3</td>")
                    .arg(traceColor(trace).name(), name.toHtmlEscaped(), atCursor);
        if (stats.count > 0) {
            html += QStringLiteral("<td align=right>&nbsp;%1</td><td align=right>&nbsp;%2</td><td align=right>&nbsp;%3</td></tr>")
                        .arg(valueText(stats.min), valueText(stats.max), valueText(float(stats.mean)));
        } else {
            html += QStringLiteral("<td align=right>--.-</td><td align=right>--.-</td><td align=right>--.-</td></tr>");
        }
    }
    html += QStringLiteral("</table>");
    m_info->setText(html);
    m_info->adjustSize();
    m_info->show();
}

void TrendChart::moveCursorTo(qint64 ms)
{
    m_cursorMs = ms;
    placeCursor();
    updateInfo();
}

void TrendChart::placeCursor()
{
    if (m_cursorMs < m_from || m_cursorMs > m_to) {
        m_cursorLine->hide();
        return;
    }
    const QPointF top = positionOf(m_cursorMs, m_valueRange.max);
    const QPointF bottom = positionOf(m_cursorMs, m_valueRange.min);
    m_cursorLine->setLine(QLineF(m_chart->mapToScene(top), m_chart->mapToScene(bottom)));
    m_cursorLine->show();
}

QPointF TrendChart::valueAt(const QPoint &viewPos) const
{
    const QPointF at = m_chart->mapFromScene(mapToScene(viewPos));
    const QRectF plot = m_chart->plotArea();
    if (plot.width() <= 0 || plot.height() <= 0)
        return {};
    return {double(m_from) + (at.x() - plot.left()) * double(m_to - m_from) / plot.width(),
            m_valueRange.min + (plot.bottom() - at.y()) * (m_valueRange.max - m_valueRange.min) / plot.height()};
}

bool TrendChart::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != m_info)
        return QChartView::eventFilter(watched, event);
    switch (event->type()) {
    case QEvent::MouseButtonPress: {
        auto *press = static_cast<QMouseEvent *>(event);
        if (press->button() != Qt::LeftButton)
            return false;
        m_infoGrab = press->position().toPoint();
        m_movingInfo = true;
        return true;
    }
    case QEvent::MouseMove:
        if (m_movingInfo) {
            moveInfoTo(m_info->mapToParent(static_cast<QMouseEvent *>(event)->position().toPoint()) - m_infoGrab);
            return true;
        }
        return false;
    case QEvent::MouseButtonRelease:
        if (m_movingInfo && static_cast<QMouseEvent *>(event)->button() == Qt::LeftButton) {
            m_movingInfo = false;
            m_infoAt = m_info->pos();
            emit infoMoved({m_info->x() * TwipsPerPixel, m_info->y() * TwipsPerPixel});
            return true;
        }
        return false;
    default:
        return false;
    }
}

// Kept whole inside the chart, so it can always be grabbed again.
void TrendChart::moveInfoTo(QPoint topLeft)
{
    const QSize room = viewport()->size() - m_info->size();
    m_info->move(std::clamp(topLeft.x(), 0, std::max(0, room.width())),
                 std::clamp(topLeft.y(), 0, std::max(0, room.height())));
}

void TrendChart::wheelEvent(QWheelEvent *event)
{
    const double steps = event->angleDelta().y() / 120.0;
    if (steps == 0) {
        event->ignore();
        return;
    }
    const double factor = std::pow(WheelZoomStep, steps);
    const QPointF at = valueAt(event->position().toPoint());
    if (event->modifiers() & Qt::ControlModifier) {
        applyValueRange({at.y() - (at.y() - m_valueRange.min) * factor, at.y() + (m_valueRange.max - at.y()) * factor},
                        true);
    } else {
        const double pivot = std::clamp(at.x(), double(m_from), double(m_to));
        setTimeRange(qint64(pivot - (pivot - m_from) * factor), qint64(pivot + (m_to - pivot) * factor));
    }
    event->accept();
}

void TrendChart::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton) {
        QChartView::mousePressEvent(event);
        return;
    }
    m_dragging = true;
    m_dragStart = event->position().toPoint();
    m_dragFrom = m_from;
    m_dragTo = m_to;
    m_dragValues = m_valueRange;
    setCursor(Qt::ClosedHandCursor);
    event->accept();
}

void TrendChart::mouseMoveEvent(QMouseEvent *event)
{
    const QPoint pos = event->position().toPoint();
    if (m_dragging) {
        const QRectF plot = m_chart->plotArea();
        if (plot.width() > 0 && plot.height() > 0) {
            const double msPerPixel = double(m_dragTo - m_dragFrom) / plot.width();
            const double valuePerPixel = (m_dragValues.max - m_dragValues.min) / plot.height();
            const qint64 shift = qint64((m_dragStart.x() - pos.x()) * msPerPixel);
            const double lift = (pos.y() - m_dragStart.y()) * valuePerPixel;
            setTimeRange(m_dragFrom + shift, m_dragTo + shift);
            if (lift != 0)
                applyValueRange({m_dragValues.min + lift, m_dragValues.max + lift}, true);
        }
    } else if (m_chart->plotArea().contains(m_chart->mapFromScene(mapToScene(pos)))) {
        moveCursorTo(qint64(valueAt(pos).x()));
    }
    event->accept();
}

void TrendChart::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton && m_dragging) {
        m_dragging = false;
        unsetCursor();
        event->accept();
        return;
    }
    QChartView::mouseReleaseEvent(event);
}

void TrendChart::resizeEvent(QResizeEvent *event)
{
    QChartView::resizeEvent(event);
    moveInfoTo(m_infoAt);
    placeCursor();
    scheduleRedraw();
}

void TrendChart::leaveEvent(QEvent *event)
{
    QChartView::leaveEvent(event);
    if (!m_dragging)
        moveCursorTo(-1);
}

} // namespace telvane
