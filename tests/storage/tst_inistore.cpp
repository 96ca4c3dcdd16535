#include "filesizelimit.h"
#include "storage/inifilecache.h"
#include "storage/inistore.h"
#include "storage/modesettings.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

using namespace telvane;

namespace {

void writeBytes(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY2(file.open(QIODevice::WriteOnly | QIODevice::Truncate), qPrintable(path));
    QCOMPARE(file.write(bytes), bytes.size());
}

QByteArray readBytes(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

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

enum class Failure { FolderIsAFile, FolderMissing, DiskFull, SettingsFileIsAFolder };

} // namespace

class TestIniStore : public QObject
{
    Q_OBJECT

private slots:
    void modeSelection_data()
    {
        QTest::addColumn<QByteArray>("modeFile"); // null: no mode file at all
        QTest::addColumn<bool>("civil");
        QTest::addColumn<QString>("iniName");
        QTest::addColumn<QString>("seasonCaption");
        QTest::addColumn<QString>("scheduleCaption");
        const QString industrial[] = {"Telvane2.ini", "Ricette", "Impostazioni orologio"};
        const QString civil[] = {"Telvane1.ini", "Stagione", "Impostazioni cronotermostato"};
        auto row = [](const char *name, const QByteArray &file, bool isCivil, const QString (&names)[3]) {
            QTest::newRow(name) << file << isCivil << names[0] << names[1] << names[2];
        };
        row("no mode file", QByteArray(), false, industrial);
        row("mode file without the key", "[Generale]\r\n", false, industrial);
        row("0", "[Generale]\r\nModo=0\r\n", false, industrial);
        row("0 with blanks", "[generale]\r\n modo = 0 \r\n", false, industrial);
        row("1", "[Generale]\r\nModo=1\r\n", true, civil);
        row("2 is civil too", "[Generale]\r\nModo=2\r\n", true, civil);
        row("empty is not 0", "[Generale]\r\nModo=\r\n", true, civil);
    }
    void modeSelection()
    {
        QFETCH(QByteArray, modeFile);
        QFETCH(bool, civil);
        QFETCH(QString, iniName);
        QFETCH(QString, seasonCaption);
        QFETCH(QString, scheduleCaption);
        QTemporaryDir dir;
        if (!modeFile.isNull())
            writeBytes(dir.filePath("Telvane0.ini"), modeFile);
        IniStore store{ProgramFolder(dir.path())};
        store.setCurrentIniName("Other.ini");
        const ModeSettings settings = LoadSettings(store);
        QCOMPARE(settings.CivilMode, civil);
        QCOMPARE(settings.CurrentIniName, iniName);
        QCOMPARE(settings.seasonCaption, seasonCaption);
        QCOMPARE(settings.scheduleCaption, scheduleCaption);
        QCOMPARE(store.currentIniName(), iniName);
    }

    void readsAndWritesGoToTheCurrentFile()
    {
        QTemporaryDir dir;
        writeBytes(dir.filePath("Telvane0.ini"), "[Generale]\r\nModo=1\r\n");
        writeBytes(dir.filePath("Telvane1.ini"), "[Generale]\r\nZone=4\r\n");
        const QByteArray industrial("[Generale]\r\nZone=7\r\n");
        writeBytes(dir.filePath("Telvane2.ini"), industrial);
        IniStore store{ProgramFolder(dir.path())};
        QCOMPARE(store.ReadIniKey("Generale", "Zone", ""), QStringLiteral("7"));
        LoadSettings(store);
        QCOMPARE(store.ReadIniKey("Generale", "Zone", ""), QStringLiteral("4"));
        QCOMPARE(store.ReadModeKey("Generale", "Modo", "0"), QStringLiteral("1"));

        QVERIFY(store.WriteIniKey("Generale", "Zone", "5"));
        QVERIFY(store.WriteIniKey("COM", "Porta", "2"));
        QCOMPARE(readBytes(dir.filePath("Telvane1.ini")), QByteArray("[Generale]\r\nZone=5\r\n\r\n[COM]\r\nPorta=2\r\n"));
        QCOMPARE(readBytes(dir.filePath("Telvane2.ini")), industrial);
        QCOMPARE(store.ReadIniKey("generale", "zone", ""), QStringLiteral("5"));
        QCOMPARE(store.ReadIniKey("COM", "Porta", "1"), QStringLiteral("2"));
    }

    void changeSettingsFileToggles()
    {
        QTemporaryDir dir;
        writeBytes(dir.filePath("Telvane0.ini"), "; selettore\r\n[Generale]\r\nModo=0\r\n");
        IniStore store{ProgramFolder(dir.path())};
        ModeSettings settings = LoadSettings(store);
        QVERIFY(!settings.CivilMode);

        settings = ChangeSettingsFile(store, settings.CivilMode);
        QVERIFY(settings.CivilMode);
        QCOMPARE(store.currentIniName(), QStringLiteral("Telvane1.ini"));
        QCOMPARE(readBytes(dir.filePath("Telvane0.ini")), QByteArray("; selettore\r\n[Generale]\r\nModo=1\r\n"));

        settings = ChangeSettingsFile(store, settings.CivilMode);
        QVERIFY(!settings.CivilMode);
        QCOMPARE(store.currentIniName(), QStringLiteral("Telvane2.ini"));
        QCOMPARE(readBytes(dir.filePath("Telvane0.ini")), QByteArray("; selettore\r\n[Generale]\r\nModo=0\r\n"));
    }

    void changeSettingsFileCreatesTheModeFile()
    {
        QTemporaryDir dir;
        IniStore store{ProgramFolder(dir.path())};
        QVERIFY(ChangeSettingsFile(store, false).CivilMode);
        QCOMPARE(readBytes(dir.filePath("Telvane0.ini")), QByteArray("[Generale]\r\nModo=1\r\n"));
    }

    void editByAnotherProgramIsSeen_data()
    {
        QTest::addColumn<bool>("ownWriteFirst");
        QTest::addColumn<QByteArray>("edited"); // null: the file is deleted
        QTest::addColumn<bool>("keepTime");
        QTest::addColumn<QString>("expected");
        QTest::newRow("same size, same time") << false << QByteArray("[A]\r\nk=2\r\n") << true << "2";
        QTest::newRow("same size, same time, after our write") << true << QByteArray("[A]\r\nk=2\r\n") << true << "2";
        QTest::newRow("longer") << false << QByteArray("[A]\r\nk=22\r\n") << false << "22";
        QTest::newRow("key removed") << false << QByteArray("[A]\r\n") << false << "default";
        QTest::newRow("file deleted") << true << QByteArray() << false << "default";
    }
    void editByAnotherProgramIsSeen()
    {
        QFETCH(bool, ownWriteFirst);
        QFETCH(QByteArray, edited);
        QFETCH(bool, keepTime);
        QFETCH(QString, expected);
        QTemporaryDir dir;
        const QString path = dir.filePath("Telvane2.ini");
        writeBytes(path, "[A]\r\nk=0\r\n");
        IniStore store{ProgramFolder(dir.path())};
        QCOMPARE(store.ReadIniKey("A", "k", "default"), QStringLiteral("0"));
        if (ownWriteFirst) {
            QVERIFY(store.WriteIniKey("A", "k", "1"));
            QCOMPARE(store.ReadIniKey("A", "k", "default"), QStringLiteral("1"));
        }
        QCOMPARE(store.ReadIniKey("A", "k", "default"), QString(ownWriteFirst ? "1" : "0"));

        const QDateTime before = modified(path);
        if (edited.isNull()) {
            QVERIFY(QFile::remove(path));
        } else {
            writeBytes(path, edited);
            if (keepTime) {
                setModified(path, before);
                QCOMPARE(modified(path), before);
                QCOMPARE(QFileInfo(path).size(), 10);
            }
        }
        QCOMPARE(store.ReadIniKey("A", "k", "default"), expected);
    }

    void aTrustedEntryStillSeesNewStamps()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath("x.ini");
        writeBytes(path, "[A]\r\nk=1\r\n");
        IniFileCache cache(-1);
        QCOMPARE(cache.load(path)->value("A", "k"), QStringLiteral("1"));
        QCOMPARE(cache.load(path)->value("A", "k"), QStringLiteral("1"));

        const QDateTime time = modified(path);
        writeBytes(path, "[A]\r\nk=2\r\n");
        setModified(path, time.addSecs(5));
        QCOMPARE(cache.load(path)->value("A", "k"), QStringLiteral("2"));

        writeBytes(path, "[A]\r\nk=333\r\n");
        QCOMPARE(cache.load(path)->value("A", "k"), QStringLiteral("333"));
    }

    void writeFailureKeepsTheOldFile_data()
    {
        QTest::addColumn<Failure>("failure");
        QTest::newRow("program folder is a file") << Failure::FolderIsAFile;
        QTest::newRow("program folder missing") << Failure::FolderMissing;
        QTest::newRow("disk full") << Failure::DiskFull;
        QTest::newRow("settings file is a folder") << Failure::SettingsFileIsAFolder;
    }
    void writeFailureKeepsTheOldFile()
    {
        QFETCH(Failure, failure);
        QTemporaryDir dir;
        QString root = dir.path();
        const QByteArray old("; vecchio\r\n[A]\r\nk=1\r\n");
        switch (failure) {
        case Failure::FolderIsAFile:
            root = dir.filePath("file");
            writeBytes(root, old);
            break;
        case Failure::FolderMissing:
            root = dir.filePath("missing");
            break;
        case Failure::DiskFull:
            writeBytes(dir.filePath("Telvane2.ini"), old);
            break;
        case Failure::SettingsFileIsAFolder:
            QVERIFY(QDir(root).mkdir("Telvane2.ini"));
            break;
        }
        const QStringList entriesBefore = QDir(dir.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden);
        IniStore store{ProgramFolder(root)};
        QCOMPARE(store.ReadIniKey("A", "k", "default"), QString(failure == Failure::DiskFull ? "1" : "default"));

        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("Cannot write"));
        bool written = true;
        {
            const FileSizeLimit limit(failure == Failure::DiskFull ? 8 : RLIM_INFINITY);
            written = store.WriteIniKey("A", "k", "a value longer than the limit");
        }
        QVERIFY(!written);
        QCOMPARE(QDir(dir.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden), entriesBefore);
        if (failure == Failure::DiskFull || failure == Failure::FolderIsAFile) {
            const QString oldPath = failure == Failure::DiskFull ? dir.filePath("Telvane2.ini") : root;
            QCOMPARE(readBytes(oldPath), old);
        }
        QCOMPARE(store.ReadIniKey("A", "k", "default"), QString(failure == Failure::DiskFull ? "1" : "default"));
    }

    void unchangedValueIsNotRewritten()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath("Telvane2.ini");
        writeBytes(path, "[A]\r\nk=1\r\n");
        const QDateTime old(QDate(2020, 3, 1), QTime(12, 0));
        setModified(path, old);
        IniStore store{ProgramFolder(dir.path())};
        QVERIFY(store.WriteIniKey("a", "K", "1"));
        QCOMPARE(modified(path), old);
        QVERIFY(store.WriteIniKey("A", "k", "2"));
        QCOMPARE(readBytes(path), QByteArray("[A]\r\nk=2\r\n"));
    }

    void readIniKeyFromNamedFiles()
    {
        QTemporaryDir dir;
        QVERIFY(QDir(dir.path()).mkdir("Ricetta"));
        writeBytes(dir.filePath("Ricetta/Estate.prg"), "[Zona 01]\r\nSP=\"22.5\"\r\n");
        IniStore store{ProgramFolder(dir.path())};
        QCOMPARE(store.ReadIniKeyFrom("Zona 01", "SP", "", "Ricetta/Estate.prg"), QStringLiteral("22.5"));
        QCOMPARE(store.ReadIniKeyFrom("zona 01", "sp", "", dir.filePath("Ricetta/Estate.prg")), QStringLiteral("22.5"));
        QCOMPARE(store.ReadIniKeyFrom("Zona 01", "SP", "none", "Ricetta/Inverno.prg"), QStringLiteral("none"));
    }

    void ensureFolder_data()
    {
        QTest::addColumn<QString>("existing"); // "folder", "file" or "" (nothing)
        QTest::addColumn<bool>("rootExists");
        QTest::addColumn<bool>("result");
        QTest::newRow("missing folder is created") << "" << true << true;
        QTest::newRow("existing folder is left alone") << "folder" << true << true;
        QTest::newRow("a file has the name") << "file" << true << false;
        QTest::newRow("program folder missing") << "" << false << false;
    }
    void ensureFolder()
    {
        QFETCH(QString, existing);
        QFETCH(bool, rootExists);
        QFETCH(bool, result);
        QTemporaryDir dir;
        const QString root = rootExists ? dir.path() : dir.filePath("missing");
        const QString path = root + "/Dati";
        if (existing == "folder") {
            QVERIFY(QDir(root).mkdir("Dati"));
            writeBytes(path + "/2026_01_05.csv", "05/01/2026 08:00:00;20.5;\r\n");
        } else if (existing == "file") {
            writeBytes(path, "not a folder");
        }
        IniStore store{ProgramFolder(root)};
        if (!result)
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression("Cannot create folder"));
        QCOMPARE(store.EnsureFolder("Dati"), result);
        QCOMPARE(QFileInfo(path).isDir(), result);
        if (existing == "folder")
            QCOMPARE(readBytes(path + "/2026_01_05.csv"), QByteArray("05/01/2026 08:00:00;20.5;\r\n"));
        if (existing == "file")
            QCOMPARE(readBytes(path), QByteArray("not a folder"));
    }
};

QTEST_GUILESS_MAIN(TestIniStore)
#include "tst_inistore.moc"
