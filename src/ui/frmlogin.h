#pragma once

#include <QWidget>

class QLineEdit;
class QPushButton;

namespace telvane {

class Prompts;
class StatusBar;
struct UserLevel;

// The login window: one of the main window's exclusive child windows. OK logs the user
// in (or out, with both fields empty); a wrong name or password leaves it open for
// another try with the password cleared. Enter is OK and Escape is Annulla.
class frmLogin final : public QWidget
{
    Q_OBJECT

public:
    frmLogin(UserLevel &user, StatusBar &statusBar, Prompts &prompts, QWidget *parent = nullptr);

signals:
    // The operator is done with the window: logged in, logged out or cancelled.
    void finished();
    // The user's rights may have changed.
    void userChanged();

protected:
    void showEvent(QShowEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void cmdOKClick();
    void cmdCancelClick();

    UserLevel &m_user;
    StatusBar &m_statusBar;
    Prompts &m_prompts;
    QLineEdit *m_userName;
    QLineEdit *m_password;
    QPushButton *m_ok;
    QPushButton *m_cancel;
};

} // namespace telvane
