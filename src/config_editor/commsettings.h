#pragma once

#include <QString>

namespace telvane {

class IniStore;
class ModbusMaster;
class SerialLine;

// The serial settings of section "COM" as the program runs with them.
struct CommSettings
{
    // The first status-bar panel when no port can be used.
    static inline const QString NoPortText = QStringLiteral("Nessuna COM");

    QString port = QStringLiteral("1");                 // Porta
    QString format = QStringLiteral("9600,N,8,1");      // Formato
    int retries = 1;                                    // Retry
    float timeoutSeconds = 0.5f;                        // TimeOut / 1000
    int measurementPeriod = 60;                         // Base Misura, 0..300 s
    int remotePeriod = 3;                               // Base Remoto, 0..30 s
    int ledPeriod = 3;                                  // Base LED, 0..30 s
    bool remoteEnabled = false;                         // Remoto
    bool lineActivity = false;                          // Attivita
    bool portAvailable = false;
    // The first status-bar panel: "COM" + port + ":" + format, or "Nessuna COM".
    QString statusText = NoPortText;
};

// "Remoto" and "Attivita": each flag is on unless its value is "0" (absent reads "0").
void LoadLineOptions(const IniStore &store, CommSettings &settings);

// Reads the serial settings (the line-activity and remote flags are left as they are),
// hands attempts and time-out to the master, and tests the port. When the port opens,
// the line is pointed at it with "Formato" and the status text names both; when it
// does not, or "Formato" cannot be understood, the status text is "Nessuna COM" and
// the line keeps its previous format.
void LoadCommSettings(const IniStore &store, ModbusMaster &master, SerialLine &line, CommSettings &settings);

} // namespace telvane
