#include "ui/synoptic/zonemarkeritem.h"

#include "synoptic/planunits.h"
#include "ui/synoptic/plancolours.h"

#include <QCursor>
#include <QPainter>

#include <algorithm>

namespace telvane {

namespace {

constexpr int MarkerWidthPx = 112;
constexpr int NameRowPx = 20;
constexpr int ValueRowPx = 22;
constexpr int SecondRowPx = 18;

const QString NoReading = QStringLiteral("--.-");

} // namespace

ZoneMarkerItem::ZoneMarkerItem(int zone, const QString &name, const QPixmap &icon, const PlanUnits &units,
                               const PlacementRules &rules)
    : PlanItem(PlanItemKind::ZoneMarker, zone, rules)
    , m_name(name)
    , m_icon(icon)
    , m_pixel(units.twipsPerPixel())
    , m_labTempText(NoReading)
    , m_labTemp1Text(NoReading)
{
    setObjectName(QStringLiteral("Cmd_PuntoMon_%1").arg(zone));
    const double width = units.toTwips(MarkerWidthPx);
    const double nameHeight = units.toTwips(icon.isNull() ? NameRowPx : std::max(NameRowPx, 32));
    m_marker = QRectF(0, 0, width, nameHeight);
    m_labTemp = QRectF(0, m_marker.bottom(), width, units.toTwips(ValueRowPx));
    m_labTemp1 = QRectF(0, m_labTemp.bottom(), width, units.toTwips(SecondRowPx));
    setCursor(Qt::PointingHandCursor);
    connect(this, &PlanItem::clicked, this, [this](QPointF at) {
        if (m_marker.contains(at))
            emit markerClicked(index());
    });
    connect(this, &PlanItem::doubleClicked, this, [this](QPointF at) {
        if (m_labTemp.contains(at))
            emit labTempDoubleClicked(index(), m_labTempText);
    });
}

QRectF ZoneMarkerItem::boundingRect() const
{
    const double pen = 2 * m_pixel;
    return m_marker.united(m_labTemp1).adjusted(-pen, -pen, pen, pen);
}

bool ZoneMarkerItem::setTexts(const QString &labTemp, const QString &labTemp1)
{
    if (labTemp == m_labTempText && labTemp1 == m_labTemp1Text)
        return false;
    m_labTempText = labTemp;
    m_labTemp1Text = labTemp1;
    update();
    return true;
}

bool ZoneMarkerItem::setStale(bool stale)
{
    return repaintIfChanged(m_stale, stale);
}

bool ZoneMarkerItem::setAlarm(bool inAlarm, bool framed)
{
    return repaintIfChanged(m_alarmFramed, inAlarm && framed);
}

void ZoneMarkerItem::paint(QPainter *painter, const QStyleOptionGraphicsItem *, QWidget *)
{
    const QRectF whole = m_marker.united(m_labTemp1);
    const double radius = 4 * m_pixel;
    painter->setRenderHint(QPainter::Antialiasing);

    painter->setPen(QPen(m_alarmFramed ? PlanColours::alarm() : PlanColours::frame(),
                         (m_alarmFramed ? 3 : 1) * m_pixel));
    painter->setBrush(m_stale ? PlanColours::staleBody() : PlanColours::labelBody());
    painter->drawRoundedRect(whole, radius, radius);

    painter->setPen(Qt::NoPen);
    painter->setBrush(m_stale ? PlanColours::staleHeader() : PlanColours::markerHeader());
    painter->drawRoundedRect(m_marker, radius, radius);

    QFont font = painter->font();
    font.setBold(true);
    font.setPixelSize(int(12 * m_pixel));
    painter->setFont(font);
    painter->setPen(Qt::white);
    QRectF nameBox = m_marker.adjusted(4 * m_pixel, 0, -4 * m_pixel, 0);
    if (!m_icon.isNull()) {
        const QRectF iconBox(m_marker.left() + 2 * m_pixel, m_marker.top() + 2 * m_pixel,
                             m_marker.height() - 4 * m_pixel, m_marker.height() - 4 * m_pixel);
        painter->drawPixmap(iconBox, m_icon, m_icon.rect());
        nameBox.setLeft(iconBox.right() + 4 * m_pixel);
    }
    painter->drawText(nameBox, Qt::AlignVCenter | Qt::AlignLeft,
                      painter->fontMetrics().elidedText(m_name, Qt::ElideRight, int(nameBox.width())));

    painter->setPen(m_stale ? PlanColours::staleText() : PlanColours::valueText());
    font.setPixelSize(int(16 * m_pixel));
    painter->setFont(font);
    painter->drawText(m_labTemp, Qt::AlignCenter, m_labTempText);
    font.setBold(false);
    font.setPixelSize(int(12 * m_pixel));
    painter->setFont(font);
    painter->drawText(m_labTemp1, Qt::AlignCenter, m_labTemp1Text);
}

} // namespace telvane
