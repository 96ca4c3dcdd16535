#include "ui/workspace.h"

#include "base/productinfo.h"

#include <QIcon>
#include <QPainter>

namespace telvane {

Workspace::Workspace(QWidget *parent)
    : QMdiArea(parent)
{
    setObjectName(QStringLiteral("Workspace"));
    setBackground(QColor(0xe4, 0xe8, 0xec));
}

void Workspace::paintEvent(QPaintEvent *event)
{
    QMdiArea::paintEvent(event);

    QPainter painter(viewport());
    const QRect area = viewport()->rect();
    const int side = std::min(120, area.height() / 4);
    if (side < 24)
        return;
    painter.setOpacity(0.18);
    const QRect mark(area.center().x() - side / 2, area.center().y() - side, side, side);
    QIcon(QStringLiteral(":/icons/telvane.svg")).paint(&painter, mark);

    painter.setOpacity(0.35);
    QFont font = painter.font();
    font.setPointSizeF(font.pointSizeF() * 2.4);
    font.setBold(true);
    painter.setFont(font);
    painter.setPen(QColor(0x1f, 0x3b, 0x53));
    const QRect nameBox(area.left(), mark.bottom() + 12, area.width(), side / 2);
    painter.drawText(nameBox, Qt::AlignHCenter | Qt::AlignTop, QLatin1String(ProductName));
}

} // namespace telvane
