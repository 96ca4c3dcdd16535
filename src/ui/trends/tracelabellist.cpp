#include "ui/trends/tracelabellist.h"

#include "ui/trends/trendchart.h"

#include <QPainter>
#include <QPixmap>

namespace telvane {

namespace {

QIcon swatch(const QColor &color)
{
    QPixmap pixmap(14, 14);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.fillRect(QRect(1, 5, 12, 4), color);
    painter.setPen(Qt::gray);
    painter.drawRect(QRect(0, 4, 13, 5));
    return QIcon(pixmap);
}

} // namespace

TraceLabelList::TraceLabelList(QWidget *parent)
    : QListWidget(parent)
{
    setObjectName(QStringLiteral("Lst_Tracce"));
    setSelectionMode(QAbstractItemView::NoSelection);
    setUniformItemSizes(true);
    for (int trace = 1; trace <= MaxZones; ++trace)
        addItem(new QListWidgetItem);
    connect(this, &QListWidget::itemChanged, this, [this](QListWidgetItem *row) {
        const int trace = this->row(row) + 1;
        if (trace > m_zoneCount)
            return;
        paintRow(row);
        emit traceToggled(trace, row->checkState() == Qt::Checked);
    });
    connect(this, &QListWidget::itemDoubleClicked, this, [this](QListWidgetItem *row) {
        const int index = this->row(row);
        if (index < m_zoneCount)
            emit colourRequested(index);
    });
}

void TraceLabelList::setLabels(const ChartSettings &settings, int zoneCount)
{
    const QSignalBlocker quiet(this);
    m_settings = settings;
    m_zoneCount = std::clamp(zoneCount, 0, int(MaxZones));
    for (int i = 0; i < MaxZones; ++i) {
        QListWidgetItem *row = item(i);
        row->setText(settings.traceLabels[i]);
        row->setToolTip(settings.traceToolTips[i]);
        if (i < m_zoneCount) {
            row->setFlags(Qt::ItemIsEnabled | Qt::ItemIsUserCheckable);
            if (row->data(Qt::CheckStateRole).isNull())
                row->setCheckState(Qt::Checked);
            row->setIcon(swatch(drawnColor(settings.traceColors[i], palette())));
        } else {
            row->setFlags(Qt::ItemIsEnabled);
            row->setData(Qt::CheckStateRole, QVariant());
            row->setIcon(QIcon());
        }
        paintRow(row);
    }
}

void TraceLabelList::paintRow(QListWidgetItem *row)
{
    const bool off = this->row(row) >= m_zoneCount || row->checkState() != Qt::Checked;
    row->setForeground(off ? QBrush(drawnColor(m_settings.off1, palette())) : QBrush());
    row->setBackground(off ? QBrush(drawnColor(m_settings.off2, palette())) : QBrush());
}

QString TraceLabelList::label(int trace) const
{
    return item(trace - 1)->text();
}

QString TraceLabelList::toolTipOf(int trace) const
{
    return item(trace - 1)->toolTip();
}

} // namespace telvane
