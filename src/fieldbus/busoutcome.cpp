#include "fieldbus/busoutcome.h"

namespace telvane {

QString BusOutcome::reason() const
{
    switch (result) {
    case BusResult::Value:
        return {};
    case BusResult::Exception:
        return QStringLiteral("(Exception)");
    case BusResult::BadCrc:
        return QStringLiteral("Risposta non valida");
    case BusResult::TimeOut:
        return QStringLiteral("Time out");
    case BusResult::Broadcast:
        return QStringLiteral("Broadcast");
    case BusResult::NoPort:
        return QStringLiteral("Porta non aperta");
    case BusResult::LineBusy:
        return QStringLiteral("Linea occupata");
    case BusResult::NotConfigured:
        return QStringLiteral("Non configurato");
    case BusResult::Stopped:
        return QStringLiteral("Interrotto");
    }
    return {};
}

} // namespace telvane
