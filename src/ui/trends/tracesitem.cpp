#include "ui/trends/tracesitem.h"

#include <QPainter>

namespace telvane {

namespace {

// One pixel: the painter then draws the lines directly. A wider pen goes through the
// stroker, which over a week of readings (every pixel column a steep zigzag between its
// lowest and highest value) took a third of a second and froze the window meanwhile.
constexpr qreal LineWidth = 1;
constexpr qreal DotWidth = 3;

} // namespace

TracesItem::TracesItem(QGraphicsItem *parent)
    : QGraphicsItem(parent)
{
}

void TracesItem::setTraces(QList<Trace> traces, const QRectF &area)
{
    if (area != m_area)
        prepareGeometryChange();
    m_traces = std::move(traces);
    m_area = area;
    update();
}

void TracesItem::paint(QPainter *painter, const QStyleOptionGraphicsItem *, QWidget *)
{
    painter->save();
    painter->setClipRect(m_area);
    for (const Trace &trace : std::as_const(m_traces)) {
        painter->setPen(QPen(trace.color, LineWidth));
        for (const QPolygonF &stretch : trace.stretches) {
            if (stretch.size() > 1)
                painter->drawPolyline(stretch);
        }
        painter->setPen(QPen(trace.color, DotWidth, Qt::SolidLine, Qt::RoundCap));
        for (const QPolygonF &stretch : trace.stretches) {
            if (stretch.size() == 1)
                painter->drawPoint(stretch.front());
        }
    }
    painter->restore();
}

} // namespace telvane
