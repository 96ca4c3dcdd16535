#include "config_editor/pagefield.h"

#include "fieldbus/serialformat.h"
#include "storage/colortext.h"
#include "storage/numberkeys.h"
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
QString numberChoiceProblem(const FieldSpec &definition, const QString &text)
{
    bool allNumbers = !definition.choices.isEmpty();
    int low = INT_MAX;
    int high = INT_MIN;
    for (const QString &item : definition.choices) {
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

QString fieldProblem(const FieldSpec &definition, const QString &text, int decimals)
{
    const QString trimmed = text.trimmed();
    switch (definition.kind) {
    case FieldKind::Text:
    case FieldKind::Flag:
        return {};
    case FieldKind::Choice:
        if (definition.choices.contains(text) || definition.choiceValues.contains(text))
            return {};
        if (!definition.editableChoice)
            return QStringLiteral("Scegliere uno dei valori dell'elenco");
        if (definition.key.compare(QLatin1String("Formato"), Qt::CaseInsensitive) == 0) {
            QString why;
            return parseSerialFormat(trimmed, &why) ? QString()
                                                    : QStringLiteral("Formato non valido (es. 9600,N,8,1)");
        }
        if (definition.key.compare(QLatin1String("Porta"), Qt::CaseInsensitive) == 0)
            return resolveSerialPort(trimmed) ? QString()
                                              : QStringLiteral("Porta non valida: un numero da 1 a 255 o il nome del dispositivo");
        return numberChoiceProblem(definition, trimmed);
    case FieldKind::Count:
        return wholeNumberIn(trimmed, definition.minimum, definition.maximum) ? QString()
                                                                  : rangeProblem(definition.minimum, definition.maximum);
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

bool flagTicked(const FieldSpec &definition, const QString &text)
{
    if (definition.flagReading == FlagReading::PositiveNumber)
        return leadingInteger(text, 0) > 0;
    return flagTextOn(text);
}

QString choiceShown(const FieldSpec &definition, const QString &stored)
{
    if (definition.choiceValues.isEmpty())
        return stored;
    const qsizetype at = definition.choiceValues.indexOf(stored.trimmed());
    return at >= 0 && at < definition.choices.size() ? definition.choices[at] : stored;
}

QString choiceStored(const FieldSpec &definition, const QString &shown)
{
    if (definition.choiceValues.isEmpty())
        return shown;
    const qsizetype at = definition.choices.indexOf(shown);
    return at >= 0 && at < definition.choiceValues.size() ? definition.choiceValues[at] : shown;
}

} // namespace telvane
