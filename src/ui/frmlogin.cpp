#include "ui/frmlogin.h"

#include "commands/users.h"
#include "supervisor/statusbar.h"
#include "supervisor/userlevel.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace telvane {

namespace {

QLabel *caption(const QString &text, QWidget *parent)
{
    auto *label = new QLabel(text, parent);
    label->setObjectName(QStringLiteral("lblLabels"));
    return label;
}

} // namespace

frmLogin::frmLogin(UserLevel &user, StatusBar &statusBar, Prompts &prompts, OperatorJournal &journal, QWidget *parent)
    : QWidget(parent)
    , m_user(user)
    , m_statusBar(statusBar)
    , m_prompts(prompts)
    , m_journal(journal)
    , m_userName(new QLineEdit(this))
    , m_password(new QLineEdit(this))
    , m_ok(new QPushButton(QStringLiteral("OK"), this))
    , m_cancel(new QPushButton(QStringLiteral("Annulla"), this))
{
    setObjectName(QStringLiteral("frmLogin"));
    setWindowTitle(QStringLiteral("Login"));

    m_userName->setObjectName(QStringLiteral("txtUserName"));
    m_password->setObjectName(QStringLiteral("txtPassword"));
    m_password->setEchoMode(QLineEdit::Password);
    m_ok->setObjectName(QStringLiteral("cmdOK"));
    m_cancel->setObjectName(QStringLiteral("cmdCancel"));
    m_ok->setDefault(true);
    m_userName->setMinimumWidth(180);

    auto *form = new QFormLayout;
    form->addRow(caption(QStringLiteral("&Nome utente:"), this), m_userName);
    form->addRow(caption(QStringLiteral("&Password:"), this), m_password);
    for (QLabel *label : findChildren<QLabel *>(QStringLiteral("lblLabels")))
        label->setBuddy(label->text().startsWith(QLatin1String("&N")) ? m_userName : m_password);

    auto *buttons = new QDialogButtonBox(this);
    buttons->addButton(m_ok, QDialogButtonBox::AcceptRole);
    buttons->addButton(m_cancel, QDialogButtonBox::RejectRole);

    auto *layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(buttons);

    connect(m_ok, &QPushButton::clicked, this, &frmLogin::cmdOKClick);
    connect(m_cancel, &QPushButton::clicked, this, &frmLogin::cmdCancelClick);
    // Enter in either field is OK, as in a dialog.
    connect(m_userName, &QLineEdit::returnPressed, m_ok, &QPushButton::click);
    connect(m_password, &QLineEdit::returnPressed, m_ok, &QPushButton::click);
}

void frmLogin::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    m_userName->setFocus();
    m_userName->selectAll();
}

// Not a dialog, so Escape is ours to map, as a dialog maps it to its cancel button.
void frmLogin::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape && event->modifiers() == Qt::NoModifier) {
        m_cancel->click();
        return;
    }
    QWidget::keyPressEvent(event);
}

void frmLogin::cmdOKClick()
{
    const QString name = m_userName->text();
    const QString password = m_password->text();
    const UserLevel level = logInUser(name, password, m_user, m_statusBar, m_prompts, m_journal);
    emit userChanged();
    m_password->clear();

    const bool granted = level.hasCommandRights();
    if (!granted && !(name.isEmpty() && password.isEmpty())) {
        m_password->setFocus();
        return;
    }
    emit finished();
}

void frmLogin::cmdCancelClick()
{
    m_password->clear();
    emit finished();
}

} // namespace telvane
