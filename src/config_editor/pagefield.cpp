#include "config_editor/pagefield.h"

#include "fieldbus/serialformat.h"
#include "storage/colortext.h"
#include "storage/numbertext.h"
#include "storage/registerkey.h"
#include "storage/valueconversion.h"

#include <algorithm>
#include <climits>

namespace telvane {

namespace {

QString rangeProblem(int minimum, int maximum)
{
    return QStringLiteral("Valore ammesso: un numero intero da %1 a %2").arg(minimum).arg(maximum);
}

QString registerProblem(const QString &text, std::initializer_list<int> codes, const QString &codeText)
{
    RegisterKeyProblem problem = RegisterKeyProblem::None;
    const std::optional<RegisterKey> key = parseRegisterKey(text, &problem);
    if (problem == RegisterKeyProblem::Empty)
        return {};
    if (!key) {
        if (!text.contains(QLatin1Char(',')))
            return QStringLiteral("Manca il registro: scrivere codice funzione, virgola e registro (es. 3,40001)");
        return QStringLiteral("Registro non valido: scrivere codice funzione, virgola e registro (0..65535)");
    }
    if (std::find(codes.begin(), codes.end(), key->functionCode) == codes.end())
        return QStringLiteral("Codice funzione %1 non ammesso qui: usare %2").arg(key->functionCode).arg(codeText);
    return {};
}

// The numbers an editable choice of numbers accepts: the range of its items.
QString numberChoiceProblem(const FieldSpec &spec, const QString &text)
{
    bool allNumbers = !spec.choices.isEmpty();
    int low = INT_MAX;
    int high = INT_MIN;
    for (const QString &item : spec.choices) {
        bool ok = false;
        const int value = item.toInt(&ok);
        allNumbers = allNumbers && ok;
        low = std::min(low, value);
        high = std::max(high, value);
    }
    if (!allNumbers)
        return {};
    return wholeNumberIn(text, low, high) ? QString() : rangeProblem(low, high);
}

} // namespace

QString fieldProblem(const FieldSpec &spec, const QString &text, int decimals)
{
    const QString trimmed = text.trimmed();
    switch (spec.kind) {
    case FieldKind::Text:
    case FieldKind::Flag:
        return {};
    case FieldKind::Choice:
        if (spec.choices.contains(text) || spec.choiceValues.contains(text))
            return {};
        if (!spec.editableChoice)
            return QStringLiteral("Scegliere uno dei valori dell'elenco");
        if (spec.key.compare(QLatin1String("Formato"), Qt::CaseInsensitive) == 0) {
            QString why;
            return parseSerialFormat(trimmed, &why) ? QString()
                                                    : QStringLiteral("Formato non valido (es. 9600,N,8,1)");
        }
        if (spec.key.compare(QLatin1String("Porta"), Qt::CaseInsensitive) == 0)
            return resolveSerialPort(trimmed) ? QString()
                                              : QStringLiteral("Porta non valida: un numero da 1 a 255 o il nome del dispositivo");
        return numberChoiceProblem(spec, trimmed);
    case FieldKind::Count:
        return wholeNumberIn(trimmed, spec.minimum, spec.maximum) ? QString()
                                                                  : rangeProblem(spec.minimum, spec.maximum);
    case FieldKind::Address:
        if (trimmed.isEmpty() || wholeNumberIn(trimmed, 1, 255))
            return {};
        return QStringLiteral("Indirizzo ammesso da 1 a 255 (vuoto: strumento escluso)");
    case FieldKind::ReadRegister:
        return registerProblem(trimmed, {1, 2, 3, 4}, QStringLiteral("1, 2, 3 o 4 per leggere"));
    case FieldKind::WriteRegister:
        return registerProblem(trimmed, {5, 6, 8}, QStringLiteral("5, 6 o 8 per scrivere"));
    case FieldKind::ClockRegister:
        return registerProblem(trimmed, {6, 8}, QStringLiteral("6 o 8 per l'orologio"));
    case FieldKind::Value:
        if (!parseNumber(trimmed))
            return QStringLiteral("Non è un numero (es. 21,5)");
        if (!registerFromText(trimmed, decimals))
            return QStringLiteral("Valore troppo grande per il registro dello strumento");
        return {};
    case FieldKind::Colour:
        if (trimmed.isEmpty() || parseColorText(trimmed))
            return {};
        return QStringLiteral("Colore non valido: &H seguito da cifre esadecimali (es. &H0080FF)");
    }
    return {};
}

bool flagTicked(const FieldSpec &spec, const QString &text)
{
    if (spec.flagReading == FlagReading::NotZeroText)
        return text.trimmed() != QLatin1String("0");
    return leadingInteger(text, 0) != 0;
}

QString choiceShown(const FieldSpec &spec, const QString &stored)
{
    if (spec.choiceValues.isEmpty())
        return stored;
    const qsizetype at = spec.choiceValues.indexOf(stored.trimmed());
    return at >= 0 && at < spec.choices.size() ? spec.choices[at] : stored;
}

QString choiceStored(const FieldSpec &spec, const QString &shown)
{
    if (spec.choiceValues.isEmpty())
        return shown;
    const qsizetype at = spec.choices.indexOf(shown);
    return at >= 0 && at < spec.choiceValues.size() ? spec.choiceValues[at] : shown;
}

} // namespace telvane
