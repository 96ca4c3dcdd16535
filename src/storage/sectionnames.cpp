#include "storage/sectionnames.h"

namespace telvane {

namespace {

QString numberedSection(QLatin1String word, int index)
{
    return word + QLatin1Char(' ') + QStringLiteral("%1").arg(index + 1, 2, 10, QLatin1Char('0'));
}

} // namespace

QString zoneSection(int index)
{
    return numberedSection(QLatin1String("Zona"), index);
}

QString switchSection(int index)
{
    return numberedSection(QLatin1String("Interruttore"), index);
}

QString ledSection(int index)
{
    return numberedSection(QLatin1String("LED"), index);
}

} // namespace telvane
