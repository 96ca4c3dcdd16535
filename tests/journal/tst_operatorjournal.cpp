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

QByteArray fileBytes(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

const QDateTime Evening(QDate(2026, 11, 30), QTime(23, 59, 58));

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
        QTest::newRow("plain") << "Accensione Pompa" << "30/11/2026 23:59:58;Tecnico;Comando;Accensione Pompa;confermato"
                               << "Accensione Pompa";
        QTest::newRow("separator quoted") << "Ricetta;nuova.prg"
                                          << "30/11/2026 23:59:58;Tecnico;Comando;\"Ricetta;nuova.prg\";confermato"
                                          << "Ricetta;nuova.prg";
        QTest::newRow("quote doubled") << "Zona \"nord\""
                                       << "30/11/2026 23:59:58;Tecnico;Comando;\"Zona \"\"nord\"\"\";confermato"
                                       << "Zona \"nord\"";
        QTest::newRow("line breaks become blanks")
            << "Valore\r\nSoggiorno\nx" << "30/11/2026 23:59:58;Tecnico;Comando;Valore Soggiorno x;confermato"
            << "Valore Soggiorno x";
        QTest::newRow("empty") << "" << "30/11/2026 23:59:58;Tecnico;Comando;;confermato" << "";
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
        QTest::newRow("empty") << "";
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
        QTemporaryDir dir;
        ManualClock clock(Evening);
        OperatorJournal journal(ProgramFolder(dir.path()), clock);
        QSignalSpy announced(&journal, &OperatorJournal::recorded);

        QVERIFY(journal.record(QStringLiteral("Anonimo"), QStringLiteral("Start"), QStringLiteral("automatico")));
        clock.advance(1000);
        QVERIFY(journal.record(QStringLiteral("Tecnico"), QStringLiteral("Login"), QStringLiteral("Tecnico")));
        clock.advance(1000);
        QVERIFY(journal.record(QStringLiteral("Tecnico"), QStringLiteral("Stop")));

        QCOMPARE(fileBytes(dir.filePath(QStringLiteral("Dati/Giornale_2026_11.csv"))),
                 "Data e ora;Livello utente;Evento;Dettaglio;Esito\r\n"
                 "30/11/2026 23:59:58;Anonimo;Start;automatico;\r\n"
                 "30/11/2026 23:59:59;Tecnico;Login;Tecnico;\r\n");
        QCOMPARE(journal.journalFiles(), (QStringList{"Giornale_2026_12.csv", "Giornale_2026_11.csv"}));
        const QList<JournalEntry> december = journal.readJournal(QStringLiteral("Giornale_2026_12.csv"));
        QCOMPARE(december, (QList<JournalEntry>{{QDateTime(QDate(2026, 12, 1), QTime(0, 0)), "Tecnico", "Stop", "", ""}}));
        QCOMPARE(journal.readJournal(QStringLiteral("Giornale_2026_11.csv")).size(), 2);
        QCOMPARE(announced.size(), 3);
        QCOMPARE(announced.last().at(0).value<JournalEntry>(), december.first());
    }

    // A crash in the middle of a line leaves a fragment: the next entry starts on a line
    // of its own, and reading skips only the fragment. A folder "Dati" removed while
    // running is made again.
    void crashFragmentAndMissingFolder()
    {
        QTemporaryDir dir;
        ManualClock clock(Evening);
        OperatorJournal journal(ProgramFolder(dir.path()), clock);
        journal.record(QStringLiteral("Tecnico"), QStringLiteral("Start"));
        const QString path = dir.filePath(QStringLiteral("Dati/Giornale_2026_11.csv"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::Append));
        file.write("30/11/2026 23:59:58;Tecn");
        file.close();

        QVERIFY(journal.record(QStringLiteral("Tecnico"), QStringLiteral("Stop")));
        const QList<JournalEntry> entries = journal.readJournal(QFileInfo(path).fileName());
        QCOMPARE(entries.size(), 2);
        QCOMPARE(entries.last().event, QStringLiteral("Stop"));

        QVERIFY(QDir(dir.filePath(QStringLiteral("Dati"))).removeRecursively());
        QVERIFY(journal.record(QStringLiteral("Tecnico"), QStringLiteral("Rileggi")));
        QCOMPARE(journal.readJournal(QFileInfo(path).fileName()).size(), 1);
    }

    // A full disk: the entry that does not fit is not half-written (the next one, once
    // there is room, reads back whole), and it is still announced, so that the headless
    // output keeps it.
    void fullDisk()
    {
        QTemporaryDir dir;
        ManualClock clock(Evening);
        OperatorJournal journal(ProgramFolder(dir.path()), clock);
        QVERIFY(journal.record(QStringLiteral("Tecnico"), QStringLiteral("Start")));
        const QString path = dir.filePath(QStringLiteral("Dati/Giornale_2026_11.csv"));
        const qint64 size = QFileInfo(path).size();
        QSignalSpy announced(&journal, &OperatorJournal::recorded);
        {
            const FileSizeLimit limit(size + 10);
            QVERIFY(!journal.record(QStringLiteral("Tecnico"), QStringLiteral("Comando"), QStringLiteral("Apertura porta"),
                                    QStringLiteral("confermato")));
        }
        QCOMPARE(QFileInfo(path).size(), size);
        QCOMPARE(announced.size(), 1);
        QVERIFY(journal.record(QStringLiteral("Tecnico"), QStringLiteral("Stop")));
        const QList<JournalEntry> entries = journal.readJournal(QFileInfo(path).fileName());
        QCOMPARE(entries.size(), 2);
        QCOMPARE(entries.last().event, QStringLiteral("Stop"));
    }
};

QTEST_GUILESS_MAIN(TestOperatorJournal)
#include "tst_operatorjournal.moc"
