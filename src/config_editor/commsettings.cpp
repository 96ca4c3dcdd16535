#include "config_editor/commsettings.h"

#include "fieldbus/modbusmaster.h"
#include "fieldbus/serialformat.h"
#include "fieldbus/serialline.h"
#include "storage/inistore.h"
#include "storage/numberkeys.h"

namespace telvane {

namespace {

const QString Section = QStringLiteral("COM");

constexpr int LongestMeasurementPeriod = 300;
constexpr int LongestRemotePeriod = 30;

// A period outside 0..longest is taken as the longest: a typing error then polls
// slowly instead of hammering the line.
int period(const IniStore &store, const QString &key, int defaultValue, int longest)
{
    const int value = readIntegerKey(store, Section, key, defaultValue);
    return value < 0 || value > longest ? longest : value;
}

} // namespace

void LoadLineOptions(const IniStore &store, CommSettings &settings)
{
    settings.remoteEnabled = readFlagKey(store, Section, QStringLiteral("Remoto"));
    settings.lineActivity = readFlagKey(store, Section, QStringLiteral("Attivita"));
}

void LoadCommSettings(const IniStore &store, ModbusMaster &master, SerialLine &line, CommSettings &settings)
{
    settings.port = store.ReadIniKey(Section, QStringLiteral("Porta"), QStringLiteral("1")).trimmed();
    settings.format = store.ReadIniKey(Section, QStringLiteral("Formato"), QStringLiteral("9600,N,8,1")).trimmed();
    settings.retries = readIntegerKey(store, Section, QStringLiteral("Retry"), 1);
    // The editor page offers 400 when the key is missing; running without it means 500.
    settings.timeoutSeconds = readSingleKey(store, Section, QStringLiteral("TimeOut"), 500.0f) / 1000.0f;
    settings.measurementPeriod = period(store, QStringLiteral("Base Misura"), 60, LongestMeasurementPeriod);
    settings.remotePeriod = period(store, QStringLiteral("Base Remoto"), 3, LongestRemotePeriod);
    settings.ledPeriod = period(store, QStringLiteral("Base LED"), 3, LongestRemotePeriod);

    master.setAttempts(settings.retries);
    master.setReplyTimeout(settings.timeoutSeconds);

    settings.portAvailable = false;
    settings.statusText = CommSettings::NoPortText;

    QString whyNot;
    if (!parseSerialFormat(settings.format, &whyNot)) {
        logBadSetting(Section, QStringLiteral("Formato"), settings.format,
                      QStringLiteral("cannot be used (%1); no serial port in use").arg(whyNot));
        return;
    }
    // Fails, with the reason in the log, for a missing or busy port, and while a
    // transaction is waiting for its reply (a settings page confirmed during a poll).
    if (!master.testPort(settings.port))
        return;

    line.close();
    line.setPort(settings.port);
    line.setFormat(settings.format);
    settings.portAvailable = true;
    settings.statusText = QStringLiteral("COM%1:%2").arg(settings.port, settings.format);
}

} // namespace telvane
