#include "config_editor/instrumenttrial.h"

#include "config_editor/pagemodel.h"
#include "fieldbus/modbusmaster.h"
#include "storage/numbertext.h"
#include "storage/registerkey.h"
#include "storage/valueconversion.h"

#include <algorithm>

namespace telvane {

QStringList runInstrumentTrial(ModbusMaster &master, const PageModel &page, const QString &section)
{
    const int addressField = page.indexOf(section, QStringLiteral("Indirizzo"));
    const std::optional<int> address = addressField >= 0 ? wholeNumberIn(page.text(addressField), 1, 255) : std::nullopt;
    if (!address)
        return {QStringLiteral("%1: indirizzo dello strumento mancante o fuori dai limiti (1..255)").arg(section)};
    const int decimalsField = page.indexOf(section, QStringLiteral("Decimali"));
    const int decimals = decimalsField >= 0 ? std::clamp(leadingInteger(page.text(decimalsField), 0), 0, 3) : 0;

    QStringList lines;
    for (int i = 0; i < page.fieldCount(); ++i) {
        const PageModel::Field &field = page.field(i);
        if (field.definition.kind != FieldKind::ReadRegister
            || field.definition.section.compare(section, Qt::CaseInsensitive) != 0)
            continue;
        const QString label = QStringLiteral("%1 (%2)").arg(field.definition.label, field.text.trimmed());
        const std::optional<RegisterKey> key = parseRegisterKey(field.text);
        if (!key || !page.problem(i).isEmpty()) {
            if (!field.text.trimmed().isEmpty())
                lines.append(label + QStringLiteral(": registro non valido, non letto"));
            continue;
        }
        const BusOutcome outcome = master.read(key->functionCode, key->registerNumber, *address);
        if (outcome.result == BusResult::Exception) {
            lines.append(label + QStringLiteral(": lo strumento risponde con l'eccezione %1").arg(outcome.exceptionCode));
            continue;
        }
        if (!outcome.answered()) {
            const QString why = outcome.reason().trimmed();
            lines.append(label + QStringLiteral(": nessuna risposta valida") + (why.isEmpty() ? QString() : QStringLiteral(" (%1)").arg(why)));
            continue;
        }
        const int shown = key->functionCode <= 2 ? 0 : decimals;
        lines.append(label + QStringLiteral(": ") + formatDecimal(float(registerToValue(outcome.value, shown)), shown).trimmed());
    }
    if (lines.isEmpty())
        lines.append(QStringLiteral("%1: nessun registro da leggere").arg(section));
    return lines;
}

} // namespace telvane
