#pragma once

#include "config_editor/pagemodel.h"

#include <QHash>
#include <QWidget>

#include <functional>

class QComboBox;
class QHBoxLayout;
class QLabel;
class QPushButton;
class QStackedWidget;
class QVBoxLayout;

namespace telvane {

// An editor page over its PageModel: one control per key, each with its reason in red
// beside it when its text cannot be saved; numbered items are chosen from a list and
// shown one at a time. The close buttons are the array `Cmd_Chiudi_<page>`: index 0
// confirms (disabled while a field has a problem), index 1 closes without saving.
class FieldPage final : public QWidget
{
    Q_OBJECT

public:
    FieldPage(PageModel model, QWidget *parent = nullptr);

    PageModel &model() { return m_model; }
    // Shows the model's texts (after the model was loaded).
    void showModel();
    // The control of a field; for an item's field, null until the item was shown.
    QWidget *control(int field) const { return m_controls.value(field); }
    // Shows item `item` of group `group`.
    void showItem(int group, int item);
    // A "Prova strumento" button for the item shown in each group (or, on a page
    // without items, for the page's own instrument in `pageSection`): `action` gets the
    // section of the instrument to try.
    void addTrialButton(const std::function<void(const QString &section)> &action, const QString &pageSection = {});

signals:
    // Index 0: confirm; any other: close without saving.
    void closeRequested(int index);

private:
    QWidget *buildFieldRows(const QList<int> &fields);
    QWidget *makeControl(int field);
    void textEdited(int field, const QString &text);
    void refreshProblems();
    void refreshItemChoices(int group);
    QWidget *itemWidget(int group, int item);

    PageModel m_model;
    QHash<int, QWidget *> m_controls;
    QHash<int, QLabel *> m_problemLabels;
    QList<QComboBox *> m_itemChoosers;        // one per group
    QList<QStackedWidget *> m_itemStacks;     // one per group
    QList<QHash<int, QWidget *>> m_itemPages; // per group: item -> its widget
    QLabel *m_summary = nullptr;
    QPushButton *m_confirm = nullptr;
    QHBoxLayout *m_buttons = nullptr;
    bool m_showing = false;
};

} // namespace telvane
