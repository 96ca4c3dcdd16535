// The operator journal's file: its lines, one file per month, and what a crash or a full
// disk leaves of it.

#include "filesizelimit.h"

#include "base/clock.h"
#include "journal/operatorjournal.h"

#include <QDir>
#include <QFile>
#include <QLoggingCategory>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace telvane;

namespace {

const QDateTime Evening(QDate(2026, 11, 30), QTime(23, 59, 58));

// A journal in a folder of its own, on a clock at the end of November.
struct JournalRig
{
    QTemporaryDir dir;
    ManualClock clock{Evening};
    OperatorJournal journal{ProgramFolder(dir.path()), clock};

    QString november() const { return dir.filePath(QStringLiteral("Dati/Giornale_2026_11.csv")); }
    bool record(const char *event) { return journal.record(QStringLiteral("Tecnico"), QLatin1String(event)); }
    QStringList events(const char *fileName = "Giornale_2026_11.csv") const
    {
        QStringList events;
        for (const JournalEntry &entry : journal.readJournal(QLatin1String(fileName)))
            events << entry.event;
        return events;
    }
};

} // namespace

class TestOperatorJournal : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QLoggingCategory::setFilterRules(QStringLiteral("telvane.storage.warning=false")); }

    void lineRoundTrip_data()
    {
        QTest::addColumn<QString>("detail");
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("readBack");
        QTest::newRow("separator quoted") << "Ricetta;nuova.prg"
                                          << "30/11/2026 23:59:58;Tecnico;Comando;\"Ricetta;nuova.prg\";confermato"
                                          << "Ricetta;nuova.prg";
        QTest::newRow("quote doubled") << "Zona \"nord\""
                                       << "30/11/2026 23:59:58;Tecnico;Comando;\"Zona \"\"nord\"\"\";confermato"
                                       << "Zona \"nord\"";
        QTest::newRow("line breaks become blanks")
            << "Valore\r\nSoggiorno\nx" << "30/11/2026 23:59:58;Tecnico;Comando;Valore Soggiorno x;confermato"
            << "Valore Soggiorno x";
    }
    void lineRoundTrip()
    {
        QFETCH(QString, detail);
        QFETCH(QString, line);
        QFETCH(QString, readBack);
        const JournalEntry entry{Evening, QStringLiteral("Tecnico"), QStringLiteral("Comando"), detail,
                                 QStringLiteral("confermato")};
        QCOMPARE(journalLine(entry), line);
        const std::optional<JournalEntry> parsed = parseJournalLine(line);
        QVERIFY(parsed);
        QCOMPARE(parsed->detail, readBack);
        QCOMPARE(parsed->time, Evening);
        QCOMPARE(parsed->outcome, QStringLiteral("confermato"));
    }

    void damagedLines_data()
    {
        QTest::addColumn<QString>("line");
        QTest::newRow("header") << journalHeader();
        QTest::newRow("cut by a crash") << "30/11/2026 23:59:58;Tecnico;Com";
        QTest::newRow("quote never closed") << "30/11/2026 23:59:58;Tecnico;Comando;\"Zona;x;confermato";
        QTest::newRow("no date") << "31/11/2026 10:00:00;Tecnico;Start;;";
        QTest::newRow("one field too many") << "30/11/2026 23:59:58;Tecnico;Start;;;";
    }
    void damagedLines()
    {
        QFETCH(QString, line);
        QVERIFY(!parseJournalLine(line));
    }

    // Entries land in the file of the month they happen in, each announced; the view
    // and the spreadsheet read them back in order, the newest month listed first.
    void oneFilePerMonth()
    {
        JournalRig rig;
        QSignalSpy announced(&rig.journal, &OperatorJournal::recorded);
        QVERIFY(rig.journal.record(QStringLiteral("Anonimo"), QStringLiteral("Start"), QStringLiteral("automatico")));
        rig.clock.advance(1000);
        QVERIFY(rig.record("Login"));
        rig.clock.advance(1000);
        QVERIFY(rig.record("Stop"));

        QFile file(rig.november());
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), "Data e ora;Livello utente;Evento;Dettaglio;Esito\r\n"
                                 "30/11/2026 23:59:58;Anonimo;Start;automatico;\r\n"
                                 "30/11/2026 23:59:59;Tecnico;Login;;\r\n");
        QCOMPARE(rig.journal.journalFiles(), (QStringList{"Giornale_2026_12.csv", "Giornale_2026_11.csv"}));
        const QList<JournalEntry> december = rig.journal.readJournal(QStringLiteral("Giornale_2026_12.csv"));
        QCOMPARE(december, (QList<JournalEntry>{{QDateTime(QDate(2026, 12, 1), QTime(0, 0)), "Tecnico", "Stop", "", ""}}));
        QCOMPARE(rig.events(), (QStringList{"Start", "Login"}));
        QCOMPARE(announced.size(), 3);
        QCOMPARE(announced.last().at(0).value<JournalEntry>(), december.first());
    }

    // A crash in the middle of a line leaves a fragment: the next entry starts on a line
    // of its own, and reading skips only the fragment. An entry a full disk does not take
    // is not half-written, and it is still announced, so that the headless output keeps
    // it. A folder "Dati" removed while running is made again.
    void nothingLostOrHalfWritten()
    {
        JournalRig rig;
        rig.record("Start");
        QFile file(rig.november());
        QVERIFY(file.open(QIODevice::Append));
        file.write("30/11/2026 23:59:58;Tecn");
        file.close();
        QVERIFY(rig.record("Stop"));
        QCOMPARE(rig.events(), (QStringList{"Start", "Stop"}));

        const qint64 size = QFileInfo(file).size();
        QSignalSpy announced(&rig.journal, &OperatorJournal::recorded);
        {
            const FileSizeLimit limit(size + 10);
            QVERIFY(!rig.record("Comando"));
        }
        QCOMPARE(QFileInfo(file).size(), size);
        QCOMPARE(announced.size(), 1);
        QVERIFY(rig.record("Rileggi"));
        QCOMPARE(rig.events(), (QStringList{"Start", "Stop", "Rileggi"}));

        QVERIFY(QDir(rig.dir.filePath(QStringLiteral("Dati"))).removeRecursively());
        QVERIFY(rig.record("Login"));
        QCOMPARE(rig.events(), QStringList{"Login"});
    }
};

QTEST_GUILESS_MAIN(TestOperatorJournal)
#include "tst_operatorjournal.moc"
