#include "filesizelimit.h"
#include "storage/atomicfile.h"
#include "storage/inifilecache.h"
#include "storage/inistore.h"
#include "storage/modesettings.h"
#include "support/settingsfixture.h"

#include <QRegularExpression>

using namespace telvane;

namespace {

void setModified(const QString &path, const QDateTime &time)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(file.setFileTime(time, QFileDevice::FileModificationTime));
}

QDateTime modified(const QString &path)
{
    return QFileInfo(path).fileTime(QFileDevice::FileModificationTime);
}

enum class Failure { FolderMissing, DiskFull };

} // namespace

class TestIniStore : public QObject
{
    Q_OBJECT

private slots:
    void modeSelection_data()
    {
        QTest::addColumn<QByteArray>("modeFile"); // null: no mode file at all
        QTest::addColumn<bool>("civil");
        QTest::newRow("no mode file") << QByteArray() << false;
        QTest::newRow("empty is not 0") << QByteArray("[Generale]\r\nModo=\r\n") << true;
    }
    void modeSelection()
    {
        QFETCH(QByteArray, modeFile);
        QFETCH(bool, civil);
        SettingsFolder dir;
        if (!modeFile.isNull())
            dir.write("Telvane0.ini", modeFile);
        IniStore store = dir.store("", "Other.ini");
        const ModeSettings settings = LoadSettings(store);
        QCOMPARE(settings.CivilMode, civil);
        QCOMPARE(store.currentIniName(), QString(civil ? "Telvane1.ini" : "Telvane2.ini"));
    }

    void readsAndWritesGoToTheCurrentFile()
    {
        SettingsFolder dir;
        dir.write("Telvane0.ini", "[Generale]\r\nModo=1\r\n");
        dir.write("Telvane1.ini", "[Generale]\r\nZone=4\r\n");
        IniStore store = dir.store("[Generale]\r\nZone=7\r\n");
        QCOMPARE(store.ReadIniKey("Generale", "Zone", ""), QStringLiteral("7"));
        LoadSettings(store);
        QCOMPARE(store.ReadIniKey("Generale", "Zone", ""), QStringLiteral("4"));

        QVERIFY(store.WriteIniKey("Generale", "Zone", "5"));
        QVERIFY(store.WriteIniKey("COM", "Porta", "2"));
        QCOMPARE(dir.read("Telvane1.ini"), QByteArray("[Generale]\r\nZone=5\r\n\r\n[COM]\r\nPorta=2\r\n"));
        QCOMPARE(dir.read("Telvane2.ini"), QByteArray("[Generale]\r\nZone=7\r\n"));
        QCOMPARE(store.ReadIniKey("generale", "zone", ""), QStringLiteral("5"));
    }

    void changeSettingsFileToggles()
    {
        SettingsFolder dir;
        IniStore store(dir.folder());
        QVERIFY(ChangeSettingsFile(store, false).CivilMode);
        QCOMPARE(dir.read("Telvane0.ini"), QByteArray("[Generale]\r\nModo=1\r\n"));
        QCOMPARE(store.currentIniName(), QStringLiteral("Telvane1.ini"));

        QVERIFY(!ChangeSettingsFile(store, true).CivilMode);
        QCOMPARE(store.currentIniName(), QStringLiteral("Telvane2.ini"));
    }

    // Another program's edit is seen even when it keeps the file's size and time, and
    // after our own write.
    void editByAnotherProgramIsSeen()
    {
        SettingsFolder dir;
        IniStore store = dir.store("[A]\r\nk=0\r\n");
        QVERIFY(store.WriteIniKey("A", "k", "1"));
        QCOMPARE(store.ReadIniKey("A", "k", "default"), QStringLiteral("1"));
        const QString path = dir.path(SettingsFolder::Industrial);
        const QDateTime before = modified(path);
        dir.write(SettingsFolder::Industrial, "[A]\r\nk=2\r\n");
        setModified(path, before);
        QCOMPARE(store.ReadIniKey("A", "k", "default"), QStringLiteral("2"));
        QVERIFY(QFile::remove(path));
        QCOMPARE(store.ReadIniKey("A", "k", "default"), QStringLiteral("default"));
    }

    void aTrustedEntryStillSeesNewStamps()
    {
        SettingsFolder dir;
        dir.write("x.ini", "[A]\r\nk=1\r\n");
        const QString path = dir.path("x.ini");
        IniFileCache cache(-1);
        QCOMPARE(cache.load(path)->value("A", "k"), QStringLiteral("1"));
        const QDateTime time = modified(path);
        dir.write("x.ini", "[A]\r\nk=2\r\n");
        setModified(path, time.addSecs(5));
        QCOMPARE(cache.load(path)->value("A", "k"), QStringLiteral("2"));
    }

    void writeFailureKeepsTheOldFile_data()
    {
        QTest::addColumn<Failure>("failure");
        QTest::newRow("program folder missing") << Failure::FolderMissing;
        QTest::newRow("disk full") << Failure::DiskFull;
    }
    void writeFailureKeepsTheOldFile()
    {
        QFETCH(Failure, failure);
        SettingsFolder dir;
        const QByteArray old("; vecchio\r\n[A]\r\nk=1\r\n");
        if (failure == Failure::DiskFull)
            dir.write(SettingsFolder::Industrial, old);
        const QString root = failure == Failure::FolderMissing ? dir.path("missing") : dir.folder().root();
        const QStringList entriesBefore = QDir(dir.folder().root()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden);
        IniStore store{ProgramFolder(root)};
        const QString kept = failure == Failure::DiskFull ? "1" : "default";

        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("Cannot write"));
        {
            const FileSizeLimit limit(failure == Failure::DiskFull ? 8 : RLIM_INFINITY);
            QVERIFY(!store.WriteIniKey("A", "k", "a value longer than the limit"));
        }
        QCOMPARE(QDir(dir.folder().root()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden), entriesBefore);
        if (failure == Failure::DiskFull)
            QCOMPARE(dir.read(SettingsFolder::Industrial), old);
        QCOMPARE(store.ReadIniKey("A", "k", "default"), kept);
    }

    // Existing keys change in place, new keys join their section after its last key, a
    // new section goes at the end, a key given twice keeps its last value; everything
    // else of the file stays as the user left it.
    void batchWritesEveryKeyInOneReplace()
    {
        SettingsFolder dir;
        IniStore store = dir.store("; impianto\r\n[COM]\r\nPorta = 1\r\nRetry=1\r\n\r\n[Zona 01]\r\nNome=Sala\r\n");
        QVERIFY(store.WriteIniKeys({{"com", "porta", "3"},
                                    {"Zona 01", "Indirizzo", "5"},
                                    {"Zona 02", "Nome", "Cucina"},
                                    {"COM", "TimeOut", "400"},
                                    {"Zona 01", "INDIRIZZO", "7"},
                                    {"Zona 02", "Indirizzo", "6"}}));
        QCOMPARE(dir.read(SettingsFolder::Industrial),
                 QByteArray("; impianto\r\n[COM]\r\nPorta =3\r\nRetry=1\r\nTimeOut=400\r\n\r\n"
                            "[Zona 01]\r\nNome=Sala\r\nIndirizzo=7\r\n\r\n[Zona 02]\r\nNome=Cucina\r\nIndirizzo=6\r\n"));
    }

    void batchWithAnUnwritableKeyWritesNothing()
    {
        SettingsFolder dir;
        const QByteArray old("[A]\r\nk=1\r\n");
        IniStore store = dir.store(old);
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("Cannot write key"));
        QVERIFY(!store.WriteIniKeys({{"A", "k", "2"}, {"B", "x=y", "3"}}));
        QCOMPARE(dir.read(SettingsFolder::Industrial), old);
        QCOMPARE(store.ReadIniKey("A", "k", ""), QStringLiteral("1"));
    }

    // Another program watching the file's time sees no change that is none.
    void unchangedValueIsNotRewritten()
    {
        SettingsFolder dir;
        IniStore store = dir.store("[A]\r\nk=1\r\n");
        const QString path = dir.path(SettingsFolder::Industrial);
        const QDateTime old(QDate(2020, 3, 1), QTime(12, 0));
        setModified(path, old);
        QVERIFY(store.WriteIniKey("a", "K", "1"));
        QCOMPARE(modified(path), old);
    }

    // What a save killed half-way leaves beside the settings, chrono and recipe files is
    // removed; files that only look alike are the user's and stay.
    void leftoverSaveFilesRemoved()
    {
        SettingsFolder dir;
        const QStringList leftovers{"Telvane1.ini.k3Xq9Z", "Crono/Cronotermostato.cts.a1B2c3", "Ricetta/Estate.prg.ZZ9zz9"};
        const QStringList kept{"Telvane1.ini", "Telvane1.ini.k3Xq9", "Dati/2026_11_14.csv.a1B2c3"};
        for (const QString &name : leftovers + kept)
            dir.write(name, "x");
        for (int i = 0; i < leftovers.size(); ++i)
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression("Removed .*interrupted"));
        QCOMPARE(removeLeftoverSaveFiles(dir.folder()), leftovers.size());
        for (const QString &name : leftovers)
            QVERIFY2(!QFile::exists(dir.path(name)), qPrintable(name));
        for (const QString &name : kept)
            QVERIFY2(QFile::exists(dir.path(name)), qPrintable(name));
    }

};

QTEST_GUILESS_MAIN(TestIniStore)
#include "tst_inistore.moc"
