#include "ui/editor/fieldpage.h"

#include "ui/synoptic/plancolours.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPixmap>
#include <QPushButton>
#include <QScrollArea>
#include <QStackedWidget>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include <algorithm>

namespace telvane {

namespace {

// The swatch beside each lamp colour is the lamp as the synoptic lights it.
QIcon lampIcon(int colour)
{
    QPixmap swatch(14, 14);
    swatch.fill(PlanColours::lamp(colour));
    return QIcon(swatch);
}

} // namespace

FieldPage::FieldPage(PageModel model, QWidget *parent)
    : QWidget(parent)
    , m_model(std::move(model))
{
    setObjectName(QStringLiteral("Pic_") + m_model.name());
    auto *layout = new QVBoxLayout(this);
    auto *title = new QLabel(QStringLiteral("<b>%1</b>").arg(m_model.title().toHtmlEscaped()), this);
    layout->addWidget(title);

    auto *scroll = new QScrollArea(this);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    auto *content = new QWidget(scroll);
    auto *contentLayout = new QVBoxLayout(content);
    if (!m_model.pageFields().isEmpty())
        contentLayout->addWidget(buildFieldRows(m_model.pageFields()));

    for (int group = 0; group < m_model.groups().size(); ++group) {
        const QString word = m_model.groups()[group].word;
        auto *box = new QGroupBox(word, content);
        auto *boxLayout = new QVBoxLayout(box);
        auto *chooser = new QComboBox(box);
        chooser->setObjectName(QStringLiteral("Cmb_") + word);
        chooser->setSizeAdjustPolicy(QComboBox::AdjustToContents);
        auto *stack = new QStackedWidget(box);
        boxLayout->addWidget(chooser, 0, Qt::AlignLeft);
        boxLayout->addWidget(stack);
        contentLayout->addWidget(box);
        m_itemChoosers.append(chooser);
        m_itemStacks.append(stack);
        m_itemPages.append(QHash<int, QWidget *>());
        connect(chooser, &QComboBox::currentIndexChanged, this, [this, group](int item) {
            if (item >= 0)
                showItem(group, item);
        });
    }
    contentLayout->addStretch();
    scroll->setWidget(content);
    layout->addWidget(scroll, 1);

    m_summary = new QLabel(this);
    m_summary->setObjectName(QStringLiteral("Lab_Problemi"));
    m_summary->setStyleSheet(QStringLiteral("color: #b00000"));
    m_summary->setWordWrap(true);
    layout->addWidget(m_summary);

    m_buttons = new QHBoxLayout;
    m_buttons->addStretch();
    const QString arrayName = QStringLiteral("Cmd_Chiudi_") + m_model.name();
    const QString captions[] = {QStringLiteral("Conferma"), QStringLiteral("Annulla")};
    for (int index = 0; index < 2; ++index) {
        auto *button = new QPushButton(captions[index], this);
        button->setObjectName(arrayName + QLatin1Char('_') + QString::number(index));
        button->setProperty("index", index);
        connect(button, &QPushButton::clicked, this, [this, index] { emit closeRequested(index); });
        m_buttons->addWidget(button);
        if (index == 0)
            m_confirm = button;
    }
    layout->addLayout(m_buttons);
}

void FieldPage::addTrialButton(const std::function<void(const QString &section)> &action, const QString &pageSection)
{
    const QString caption = QStringLiteral("Prova strumento");
    if (m_itemChoosers.isEmpty()) {
        auto *button = new QPushButton(caption, this);
        button->setObjectName(QStringLiteral("Cmd_Prova"));
        connect(button, &QPushButton::clicked, this, [action, pageSection] { action(pageSection); });
        m_buttons->insertWidget(0, button);
        return;
    }
    for (int group = 0; group < m_itemChoosers.size(); ++group) {
        QComboBox *chooser = m_itemChoosers[group];
        auto *button = new QPushButton(caption, chooser->parentWidget());
        button->setObjectName(QStringLiteral("Cmd_Prova_") + m_model.groups()[group].word);
        button->setToolTip(QStringLiteral("Legge una volta i registri dello strumento mostrato, senza avviare l'acquisizione"));
        static_cast<QVBoxLayout *>(chooser->parentWidget()->layout())->insertWidget(1, button, 0, Qt::AlignLeft);
        connect(button, &QPushButton::clicked, this, [this, action, group] {
            if (m_itemChoosers[group]->currentIndex() >= 0)
                action(m_model.itemSection(group, m_itemChoosers[group]->currentIndex()));
        });
    }
}

QWidget *FieldPage::buildFieldRows(const QList<int> &fields)
{
    auto *rows = new QWidget(this);
    auto *form = new QFormLayout(rows);
    form->setFieldGrowthPolicy(QFormLayout::FieldsStayAtSizeHint);
    for (int field : fields) {
        QWidget *control = makeControl(field);
        auto *problem = new QLabel(rows);
        problem->setObjectName(QStringLiteral("Lab_Problema_") + control->objectName());
        problem->setStyleSheet(QStringLiteral("color: #b00000"));
        auto *row = new QWidget(rows);
        auto *rowLayout = new QHBoxLayout(row);
        rowLayout->setContentsMargins(0, 0, 0, 0);
        rowLayout->addWidget(control);
        rowLayout->addWidget(problem, 1);
        const FieldSpec &definition = m_model.field(field).definition;
        form->addRow(definition.kind == FieldKind::Flag ? QString() : definition.label + QLatin1Char(':'), row);
        m_problemLabels.insert(field, problem);
    }
    return rows;
}

QWidget *FieldPage::makeControl(int field)
{
    const FieldSpec &definition = m_model.field(field).definition;
    const QString name = definition.control.isEmpty() ? definition.key : definition.control;
    QWidget *control = nullptr;
    switch (definition.kind) {
    case FieldKind::Flag: {
        auto *box = new QCheckBox(definition.label);
        box->setChecked(flagTicked(definition, m_model.text(field)));
        connect(box, &QCheckBox::toggled, this,
                [this, field](bool on) { textEdited(field, on ? QStringLiteral("1") : QStringLiteral("0")); });
        control = box;
        break;
    }
    case FieldKind::Choice: {
        auto *combo = new QComboBox;
        combo->setEditable(definition.editableChoice);
        for (int i = 0; i < definition.choices.size(); ++i) {
            if (definition.key == QLatin1String("Col"))
                combo->addItem(lampIcon(i), definition.choices[i]);
            else
                combo->addItem(definition.choices[i]);
        }
        const QString shown = choiceShown(definition, m_model.text(field));
        const int at = combo->findText(shown);
        if (at >= 0)
            combo->setCurrentIndex(at);
        else if (definition.editableChoice)
            combo->setEditText(shown);
        else
            combo->setCurrentIndex(-1);
        const auto edited = [this, field, definition](const QString &text) { textEdited(field, choiceStored(definition, text)); };
        if (definition.editableChoice)
            connect(combo, &QComboBox::editTextChanged, this, edited);
        else
            connect(combo, &QComboBox::currentTextChanged, this, edited);
        control = combo;
        break;
    }
    default: {
        auto *edit = new QLineEdit(m_model.text(field));
        edit->setMinimumWidth(definition.kind == FieldKind::Text ? 220 : 110);
        connect(edit, &QLineEdit::textChanged, this, [this, field](const QString &text) { textEdited(field, text); });
        control = edit;
        break;
    }
    }
    control->setObjectName(name);
    m_controls.insert(field, control);
    return control;
}

QWidget *FieldPage::itemWidget(int group, int item)
{
    if (QWidget *built = m_itemPages[group].value(item))
        return built;
    QWidget *page = buildFieldRows(m_model.fieldsOf(group, item));
    page->setObjectName(QStringLiteral("Item_%1").arg(item + 1));
    m_itemStacks[group]->addWidget(page);
    m_itemPages[group].insert(item, page);
    refreshProblems();
    return page;
}

void FieldPage::showItem(int group, int item)
{
    m_itemStacks[group]->setCurrentWidget(itemWidget(group, item));
    if (m_itemChoosers[group]->currentIndex() != item)
        m_itemChoosers[group]->setCurrentIndex(item);
}

void FieldPage::showModel()
{
    m_showing = true;
    for (auto it = m_controls.cbegin(); it != m_controls.cend(); ++it) {
        const FieldSpec &definition = m_model.field(it.key()).definition;
        const QString text = m_model.text(it.key());
        if (auto *box = qobject_cast<QCheckBox *>(it.value()))
            box->setChecked(flagTicked(definition, text));
        else if (auto *combo = qobject_cast<QComboBox *>(it.value())) {
            const int at = combo->findText(choiceShown(definition, text));
            if (at >= 0 || !definition.editableChoice)
                combo->setCurrentIndex(at);
            else
                combo->setEditText(text);
        } else if (auto *edit = qobject_cast<QLineEdit *>(it.value()))
            edit->setText(text);
    }
    m_showing = false;
    for (int group = 0; group < m_model.groups().size(); ++group)
        refreshItemChoices(group);
    refreshProblems();
}

void FieldPage::textEdited(int field, const QString &text)
{
    if (m_showing)
        return;
    m_model.setText(field, text);
    for (int group = 0; group < m_model.groups().size(); ++group) {
        if (m_model.groups()[group].countField == field || m_model.field(field).definition.key == QLatin1String("Nome"))
            refreshItemChoices(group);
    }
    refreshProblems();
}

void FieldPage::refreshItemChoices(int group)
{
    QComboBox *chooser = m_itemChoosers[group];
    const int count = m_model.itemCount(group);
    const int current = chooser->currentIndex();
    const QSignalBlocker block(chooser);
    chooser->clear();
    for (int item = 0; item < count; ++item) {
        const int nameField = m_model.indexOf(m_model.itemSection(group, item), QStringLiteral("Nome"));
        const QString name = nameField >= 0 ? m_model.text(nameField).trimmed() : QString();
        chooser->addItem(name.isEmpty() ? m_model.itemSection(group, item)
                                        : m_model.itemSection(group, item) + QStringLiteral(" - ") + name);
    }
    m_itemStacks[group]->parentWidget()->setVisible(count > 0);
    if (count > 0) {
        const int item = std::clamp(current, 0, count - 1);
        chooser->setCurrentIndex(item);
        m_itemStacks[group]->setCurrentWidget(itemWidget(group, item));
    }
}

void FieldPage::refreshProblems()
{
    for (auto it = m_problemLabels.cbegin(); it != m_problemLabels.cend(); ++it)
        it.value()->setText(m_model.problem(it.key()));
    const QString first = m_model.firstProblem();
    m_summary->setText(first.isEmpty() ? QString() : QStringLiteral("Da correggere prima di confermare: ") + first);
    m_confirm->setEnabled(first.isEmpty());
}

} // namespace telvane
