#pragma once

#include <QColor>
#include <QGraphicsItem>
#include <QList>
#include <QPolygonF>

namespace telvane {

// Every trace of the chart, drawn as polylines in the chart's own coordinates. One item
// for all of them whatever the gaps: a zone that fails every other round would
// otherwise cost a chart series per reading. A stretch of a single reading between two
// gaps is drawn as a dot, so it does not vanish.
class TracesItem final : public QGraphicsItem
{
public:
    struct Trace
    {
        QColor color;
        QList<QPolygonF> stretches;
    };

    explicit TracesItem(QGraphicsItem *parent = nullptr);

    // What to draw, clipped to `area`.
    void setTraces(QList<Trace> traces, const QRectF &area);
    const QList<Trace> &traces() const { return m_traces; }

    QRectF boundingRect() const override { return m_area; }
    void paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget) override;

private:
    QList<Trace> m_traces;
    QRectF m_area;
};

} // namespace telvane
