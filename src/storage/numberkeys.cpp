#include "storage/numberkeys.h"

#include "storage/inistore.h"
#include "storage/numbertext.h"
#include "storage/storagelog.h"

namespace telvane {

int readIntegerKey(const IniStore &store, const QString &section, const QString &key, int defaultValue)
{
    const QString text = store.ReadIniKey(section, key, QString::number(defaultValue));
    const int value = leadingInteger(text, defaultValue);
    if (!parseNumber(text))
        logBadSetting(section, key, text, QStringLiteral("is not a number; using %1").arg(value));
    return value;
}

float readSingleKey(const IniStore &store, const QString &section, const QString &key, float defaultValue)
{
    const QString text = store.ReadIniKey(section, key, QString::number(defaultValue));
    if (const auto parsed = parseNumber(text))
        return static_cast<float>(*parsed);
    logBadSetting(section, key, text, QStringLiteral("is not a number; using %1").arg(defaultValue));
    return defaultValue;
}

bool flagTextOn(const QString &text)
{
    return text.trimmed() != QLatin1String("0");
}

bool readFlagKey(const IniStore &store, const QString &section, const QString &key)
{
    return flagTextOn(store.ReadIniKey(section, key, QStringLiteral("0")));
}

void logBadSetting(const QString &section, const QString &key, const QString &text, const QString &problem)
{
    qCWarning(lcStorage).noquote().nospace() << "[" << section << "] " << key << " = \"" << text << "\" " << problem;
}

} // namespace telvane
