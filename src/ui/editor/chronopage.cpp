#include "ui/editor/chronopage.h"

#include "storage/plantconfig.h"

#include <QCalendarWidget>
#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

namespace telvane {

ChronoPage::ChronoPage(QWidget *parent)
    : QWidget(parent)
    , m_zone(new QComboBox(this))
    , m_zoneEnabled(new QCheckBox(QStringLiteral("La zona segue il cronotermostato"), this))
    , m_setPoint(new QLineEdit(this))
    , m_problem(new QLabel(this))
    , m_holidayCaption(new QLabel(ChronoPageModel::holidayCaption(), this))
    , m_holidays(new QListWidget(this))
    , m_calendar(new QCalendarWidget(this))
{
    setObjectName(QStringLiteral("Pic_Crono"));
    m_zone->setObjectName(QStringLiteral("Cmb_ZonaCT"));
    m_zone->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    m_zoneEnabled->setObjectName(QStringLiteral("Chk_ZonaCT"));
    m_setPoint->setObjectName(QStringLiteral("Txt_CT"));
    m_setPoint->setPlaceholderText(QStringLiteral("es. 21,5"));
    m_setPoint->setMaximumWidth(90);
    m_problem->setObjectName(QStringLiteral("Lab_CTProblema"));
    m_problem->setStyleSheet(QStringLiteral("color: #b00000"));
    m_holidayCaption->setObjectName(QStringLiteral("Lab_CTf"));
    m_holidays->setObjectName(QStringLiteral("Lst_Festa"));
    m_calendar->setObjectName(QStringLiteral("Cal_Festa"));
    m_calendar->setGridVisible(true);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(QStringLiteral("<b>Impostazioni cronotermostato</b>"), this));
    auto *top = new QHBoxLayout;
    top->addWidget(new QLabel(QStringLiteral("Zona:"), this));
    top->addWidget(m_zone);
    top->addWidget(m_zoneEnabled);
    top->addStretch();
    layout->addLayout(top);

    auto *week = new QGridLayout;
    const QStringList captions = ChronoPageModel::dayCaptions();
    for (int day = 0; day < 7; ++day) {
        auto *caption = new QLabel(captions[day], this);
        caption->setObjectName(QStringLiteral("Lab_CTg_%1").arg(day));
        auto *list = new QListWidget(this);
        list->setObjectName(QStringLiteral("Lst_CT_%1").arg(day));
        list->setSelectionMode(QAbstractItemView::ExtendedSelection);
        list->setMinimumWidth(90);
        week->addWidget(caption, 0, day);
        week->addWidget(list, 1, day);
        m_dayCaptions.append(caption);
        m_days.append(list);
    }
    layout->addLayout(week, 1);

    auto *edit = new QHBoxLayout;
    edit->addWidget(new QLabel(QStringLiteral("Temperatura per le fasce scelte:"), this));
    edit->addWidget(m_setPoint);
    auto *bottom = new QHBoxLayout;
    const QString names[] = {QStringLiteral("Conferma"), QStringLiteral("Annulla"), QStringLiteral("Imposta"),
                             QStringLiteral("Copia il giorno su tutta la settimana"),
                             QStringLiteral("Aggiungi festività"), QStringLiteral("Rimuovi festività"),
                             QStringLiteral("Stampa")};
    QList<QPushButton *> buttons;
    for (int index = 0; index < 7; ++index) {
        auto *button = new QPushButton(names[index], this);
        button->setObjectName(QStringLiteral("Cmd_OK_CT_%1").arg(index));
        button->setProperty("index", index);
        connect(button, &QPushButton::clicked, this, [this, index] { buttonClicked(index); });
        buttons.append(button);
    }
    edit->addWidget(buttons[2]);
    edit->addWidget(buttons[3]);
    edit->addWidget(m_problem, 1);
    layout->addLayout(edit);

    auto *holidays = new QGridLayout;
    holidays->addWidget(m_holidayCaption, 0, 0);
    holidays->addWidget(m_holidays, 1, 0);
    holidays->addWidget(m_calendar, 1, 1);
    auto *holidayButtons = new QVBoxLayout;
    holidayButtons->addWidget(buttons[4]);
    holidayButtons->addWidget(buttons[5]);
    holidayButtons->addStretch();
    holidays->addLayout(holidayButtons, 1, 2);
    m_holidays->setMaximumHeight(m_calendar->sizeHint().height());
    layout->addLayout(holidays);

    bottom->addWidget(buttons[6]);
    auto *preview = new QPushButton(QStringLiteral("Anteprima di stampa..."), this);
    preview->setObjectName(QStringLiteral("Cmd_AnteprimaCT"));
    connect(preview, &QPushButton::clicked, this, &ChronoPage::previewRequested);
    bottom->addWidget(preview);
    bottom->addStretch();
    bottom->addWidget(buttons[0]);
    bottom->addWidget(buttons[1]);
    layout->addLayout(bottom);

    connect(m_zone, &QComboBox::currentIndexChanged, this, [this] { showZone(); });
    connect(m_zoneEnabled, &QCheckBox::toggled, this, [this](bool on) {
        if (zone() >= 0)
            m_model.setZoneEnabled(zone(), on);
    });
    connect(m_setPoint, &QLineEdit::returnPressed, this, &ChronoPage::applySetPoint);
}

int ChronoPage::zone() const
{
    return m_zone->currentIndex();
}

int ChronoPage::focusedDay() const
{
    for (int day = 0; day < 7; ++day) {
        if (m_days[day]->hasFocus() || !m_days[day]->selectedItems().isEmpty())
            return day;
    }
    return 0;
}

void ChronoPage::showModel(const PlantConfig &plant)
{
    {
        const QSignalBlocker block(m_zone);
        m_zone->clear();
        for (int zone = 0; zone < plant.zoneCount(); ++zone) {
            const QString name = plant.zones[zone].name.trimmed();
            const QString number = QStringLiteral("Zona %1").arg(zone + 1, 2, 10, QLatin1Char('0'));
            m_zone->addItem(name.isEmpty() ? number : number + QStringLiteral(" - ") + name);
        }
        if (m_zone->count() > 0)
            m_zone->setCurrentIndex(0);
    }
    m_problem->clear();
    showZone();
    showHolidays();
}

void ChronoPage::showZone()
{
    const int current = zone();
    for (int day = 0; day < 7; ++day) {
        QListWidget *list = m_days[day];
        const int row = list->currentRow();
        list->clear();
        if (current >= 0)
            list->addItems(m_model.dayLines(current, day));
        if (row >= 0)
            list->setCurrentRow(row, QItemSelectionModel::NoUpdate);
        list->setEnabled(current >= 0);
    }
    const QSignalBlocker block(m_zoneEnabled);
    m_zoneEnabled->setChecked(current >= 0 && m_model.zoneEnabled(current));
    m_zoneEnabled->setEnabled(current >= 0);
}

void ChronoPage::showHolidays()
{
    m_holidays->clear();
    m_holidays->addItems(m_model.holidays());
}

void ChronoPage::applySetPoint()
{
    if (zone() < 0)
        return;
    bool anySlot = false;
    for (int day = 0; day < 7; ++day) {
        for (const QListWidgetItem *item : m_days[day]->selectedItems()) {
            const int slot = m_days[day]->row(item);
            const QString problem = m_model.setSetPoints(zone(), day, slot, slot, m_setPoint->text());
            m_problem->setText(problem);
            if (!problem.isEmpty())
                return;
            anySlot = true;
        }
    }
    m_problem->setText(anySlot ? QString() : QStringLiteral("Scegliere prima le fasce orarie nelle liste"));
    showZone();
}

void ChronoPage::buttonClicked(int index)
{
    switch (index) {
    case 2:
        applySetPoint();
        return;
    case 3:
        if (zone() >= 0) {
            m_model.copyDayToWeek(zone(), focusedDay());
            showZone();
        }
        return;
    case 4:
        if (!m_model.addHoliday(m_calendar->selectedDate()))
            m_problem->setText(QStringLiteral("Il giorno scelto è già tra le festività"));
        showHolidays();
        return;
    case 5:
        m_model.removeHoliday(m_holidays->currentRow());
        showHolidays();
        return;
    case 6:
        emit printRequested();
        return;
    default:
        emit closeRequested(index);
    }
}

ChronoPrintout ChronoPage::printout() const
{
    ChronoPrintout page;
    page.zone = m_zone->currentText();
    for (int day = 0; day < 7; ++day) {
        page.dayCaptions.append(m_dayCaptions[day]->text());
        QStringList lines;
        for (int row = 0; row < m_days[day]->count(); ++row)
            lines.append(m_days[day]->item(row)->text());
        page.dayLines.append(lines);
    }
    page.holidayCaption = m_holidayCaption->text();
    for (int row = 0; row < m_holidays->count(); ++row)
        page.holidays.append(m_holidays->item(row)->text());
    return page;
}

} // namespace telvane
