#include "base/prompts.h"
#include "base/clock.h"
#include "commands/users.h"
#include "journal/operatorjournal.h"
#include "supervisor/statusbar.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace telvane;

Q_DECLARE_METATYPE(telvane::UserLevel)

class TestUsers : public QObject
{
    Q_OBJECT

private slots:
    void login_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("password");
        QTest::addColumn<UserLevel>("level");
        QTest::addColumn<bool>("refused");
        const UserLevel anonymous{false, false}, technician{true, false}, administrator{false, true};
        QTest::newRow("technician") << "Tecnico" << "Qx7" << technician << false;
        QTest::newRow("service") << "Service" << "7ubl4ko" << administrator << false;
        QTest::newRow("wrong password") << "Tecnico" << "qx7" << anonymous << true;
        QTest::newRow("blank after the password") << "Admin" << "Wm4 " << anonymous << true;
        QTest::newRow("both empty logs out quietly") << "" << "" << anonymous << false;
    }
    // Each attempt starts from a logged-in administrator, who is logged out first: the
    // user panel shows "Anonimo" before the new user, even for the same one again. The
    // journal has the logout, then the login or its refusal, never the password.
    void login()
    {
        QFETCH(QString, name);
        QFETCH(QString, password);
        QFETCH(UserLevel, level);
        QFETCH(bool, refused);
        StatusBar statusBar;
        RecordingPrompts prompts;
        UserLevel user{false, true};
        statusBar.setPanel(StatusBar::PortPanel, QStringLiteral("Utente: Amministratore"));
        QSignalSpy panel(&statusBar, &StatusBar::panelChanged);
        QTemporaryDir dir;
        ManualClock clock;
        OperatorJournal journal{ProgramFolder(dir.path()), clock};
        QStringList journalled;
        connect(&journal, &OperatorJournal::recorded, [&journalled](const JournalEntry &entry) {
            journalled.append(QStringList{entry.level, entry.event, entry.detail, entry.outcome}.join(u'|'));
        });

        const UserLevel result = Login(name, password, user, statusBar, prompts, journal);
        QVERIFY(user.IsTechnician == level.IsTechnician && user.IsAdministrator == level.IsAdministrator);
        QVERIFY(result.IsTechnician == level.IsTechnician && result.IsAdministrator == level.IsAdministrator);
        QList<QVariantList> texts{{StatusBar::PortPanel, "Utente: Anonimo"}};
        if (level.IsTechnician || level.IsAdministrator)
            texts.append({StatusBar::PortPanel, level.IsTechnician ? "Utente: Tecnico" : "Utente: Amministratore"});
        QCOMPARE(QList<QVariantList>(panel), texts);
        const RecordingPrompts::Prompt wrongPassword{RecordingPrompts::Kind::Warning, "Accesso", "Password errata."};
        QCOMPARE(prompts.asked(), refused ? QList{wrongPassword} : QList<RecordingPrompts::Prompt>{});
        QStringList expected{"Amministratore|Logout||"};
        if (refused)
            expected.append("Anonimo|Login|" + name + "|password errata");
        else if (result.hasCommandRights())
            expected.append(user.levelName() + "|Login|" + name + "|");
        QCOMPARE(journalled, expected);
    }

    // Nobody to log out: an anonymous user's attempt is journalled alone.
    void anonymousLogin()
    {
        StatusBar statusBar;
        RecordingPrompts prompts;
        UserLevel user;
        QTemporaryDir dir;
        ManualClock clock;
        OperatorJournal journal{ProgramFolder(dir.path()), clock};
        QSignalSpy journalled(&journal, &OperatorJournal::recorded);
        Login(QStringLiteral("Tecnico"), QStringLiteral("Qx7"), user, statusBar, prompts, journal);
        QCOMPARE(journalled.size(), 1);
        QCOMPARE(journalled.first().at(0).value<JournalEntry>().event, QStringLiteral("Login"));
    }
};

QTEST_GUILESS_MAIN(TestUsers)
#include "tst_users.moc"
