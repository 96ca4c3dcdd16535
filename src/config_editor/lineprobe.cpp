#include "config_editor/lineprobe.h"

#include "config_editor/editorlog.h"
#include "storage/numbertext.h"

#include <cmath>
#include <optional>

namespace telvane {

namespace {

std::optional<qint32> integerOf(const QString &text)
{
    const std::optional<double> number = parseNumber(text);
    if (!number || *number != std::floor(*number) || std::fabs(*number) > 2147483647.0)
        return std::nullopt;
    return static_cast<qint32>(*number);
}

} // namespace

LineProbe ParseLineProbe(bool &lineActivity, const QStringList &readingList)
{
    if (!lineActivity)
        return {};
    if (readingList.isEmpty()) {
        lineActivity = false;
        return {};
    }

    // "code>address:function,register[ @ value] [decimals]"
    const QString &line = readingList.first();
    QString rest = line.mid(line.indexOf(QLatin1Char('>')) + 1).trimmed();
    if (const qsizetype bracket = rest.indexOf(QLatin1Char('[')); bracket >= 0)
        rest = rest.left(bracket).trimmed();
    if (const qsizetype at = rest.indexOf(QLatin1Char('@')); at >= 0)
        rest = rest.left(at).trimmed();

    const qsizetype colon = rest.indexOf(QLatin1Char(':'));
    const QString registerText = rest.mid(colon + 1).trimmed();
    const qsizetype comma = registerText.indexOf(QLatin1Char(','));
    const std::optional<qint32> address = colon >= 0 ? integerOf(rest.left(colon)) : std::nullopt;
    const std::optional<qint32> function = comma >= 0 ? integerOf(registerText.left(comma)) : std::nullopt;
    const std::optional<qint32> number = comma >= 0 ? integerOf(registerText.mid(comma + 1)) : std::nullopt;
    if (!address || !function || !number) {
        qCWarning(lcConfigEditor).noquote() << "No line probe in reading line" << line;
        return {};
    }
    return {*address, *function, *number};
}

} // namespace telvane
