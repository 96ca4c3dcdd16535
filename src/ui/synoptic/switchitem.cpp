#include "ui/synoptic/switchitem.h"

#include "synoptic/planunits.h"
#include "ui/synoptic/plancolours.h"

#include <QCursor>
#include <QPainter>

namespace telvane {

namespace {

constexpr int PictureSidePx = 34;

} // namespace

SwitchItem::SwitchItem(int sw, const QString &name, const PlanUnits &units, const PlacementRules &rules)
    : PlanItem(PlanItemKind::Switch, sw, rules)
    , m_name(name)
    , m_pixel(units.twipsPerPixel())
    , m_picture(0, 0, units.toTwips(PictureSidePx), units.toTwips(PictureSidePx))
{
    setObjectName(QStringLiteral("Interruttore_%1").arg(sw));
    setToolTip(name);
    setCursor(Qt::PointingHandCursor);
    connect(this, &PlanItem::clicked, this, [this] {
        if (m_state == SwitchState::On)
            emit onImageClicked(index());
        else if (m_state == SwitchState::Off)
            emit offImageClicked(index());
    });
}

QRectF SwitchItem::boundingRect() const
{
    return m_picture;
}

QString SwitchItem::visiblePicture() const
{
    switch (m_state) {
    case SwitchState::On:
        return QStringLiteral("Img_on");
    case SwitchState::Off:
        return QStringLiteral("Img_off");
    case SwitchState::Undetermined:
        break;
    }
    return QStringLiteral("Img_ind");
}

bool SwitchItem::setState(SwitchState state)
{
    return repaintIfChanged(m_state, state);
}

bool SwitchItem::setAlarm(bool inAlarm, bool framed)
{
    return repaintIfChanged(m_alarmFramed, inAlarm && framed);
}

// On: a lit green lever up; off: a grey lever down; undetermined: amber with a question
// mark, so that a switch nobody has read never passes for off.
void SwitchItem::paint(QPainter *painter, const QStyleOptionGraphicsItem *, QWidget *)
{
    painter->setRenderHint(QPainter::Antialiasing);
    const QRectF body = m_picture.adjusted(2 * m_pixel, 2 * m_pixel, -2 * m_pixel, -2 * m_pixel);
    QColor fill;
    QString mark;
    switch (m_state) {
    case SwitchState::On:
        fill = QColor(0x2e, 0xb8, 0x4a);
        mark = QStringLiteral("I");
        break;
    case SwitchState::Off:
        fill = QColor(0x8c, 0x95, 0x9d);
        mark = QStringLiteral("O");
        break;
    case SwitchState::Undetermined:
        fill = QColor(0xe8, 0xa8, 0x20);
        mark = QStringLiteral("?");
        break;
    }
    painter->setPen(QPen(m_alarmFramed ? PlanColours::alarm() : PlanColours::frame(),
                         (m_alarmFramed ? 3 : 1.5) * m_pixel));
    painter->setBrush(fill);
    painter->drawRoundedRect(body, 6 * m_pixel, 6 * m_pixel);
    QFont font = painter->font();
    font.setBold(true);
    font.setPixelSize(int(18 * m_pixel));
    painter->setFont(font);
    painter->setPen(Qt::white);
    painter->drawText(body, Qt::AlignCenter, mark);
}

} // namespace telvane
