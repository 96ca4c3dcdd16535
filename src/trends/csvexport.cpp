#include "trends/csvexport.h"

#include "base/datetimetext.h"
#include "storage/atomicfile.h"

#include <QDateTime>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace telvane {

namespace {

QString quoted(const QString &field, QChar separator)
{
    if (!field.contains(separator) && !field.contains(QLatin1Char('"')) && !field.contains(QLatin1Char('\n')))
        return field;
    QString escaped = field;
    escaped.replace(QLatin1Char('"'), QLatin1String("\"\""));
    return QLatin1Char('"') + escaped + QLatin1Char('"');
}

// Three decimals are the most an instrument gives; rounding to them first keeps the
// float's noise out of the text (21.3, not 21.299999237).
QString valueText(float value, const QLocale &locale)
{
    const double rounded = std::round(static_cast<double>(value) * 1000.0) / 1000.0;
    return locale.toString(rounded, 'f', QLocale::FloatingPointShortest);
}

} // namespace

QStringList csvExportLines(const TrendSet &set, const QStringList &zoneNames, int traceCount, qint64 from,
                           qint64 to, const QLocale &locale)
{
    QLocale numbers = locale;
    numbers.setNumberOptions(QLocale::OmitGroupSeparator);
    const QChar separator = numbers.decimalPoint() == QLatin1String(",") ? QLatin1Char(';') : QLatin1Char(',');
    traceCount = std::clamp(traceCount, 0, TrendSet::Traces);

    QStringList header{QStringLiteral("Data e ora")};
    for (int trace = 1; trace <= traceCount; ++trace) {
        const QString name = trace <= zoneNames.size() ? zoneNames[trace - 1].trimmed() : QString();
        header.append(quoted(name.isEmpty() ? QStringLiteral("Zona %1").arg(trace) : name, separator));
    }
    QStringList lines{header.join(separator)};

    // Merge the traces by time: each line is one instant, whichever traces have it.
    std::vector<std::span<const TrendPoint>> rest;
    for (int trace = 1; trace <= traceCount; ++trace) {
        const auto points = set.trace(trace).points();
        auto first = firstAtOrAfter(points, from);
        rest.emplace_back(first, points.end());
    }
    for (;;) {
        qint64 instant = std::numeric_limits<qint64>::max();
        for (const auto &points : rest) {
            if (!points.empty())
                instant = std::min(instant, points.front().ms);
        }
        if (instant == std::numeric_limits<qint64>::max() || instant > to)
            break;
        QString line = QDateTime::fromMSecsSinceEpoch(instant).toString(QLatin1String(DateTimeTextFormat));
        for (auto &points : rest) {
            line += separator;
            if (!points.empty() && points.front().ms == instant) {
                if (!points.front().isGap())
                    line += valueText(points.front().value, numbers);
                points = points.subspan(1);
            }
        }
        lines.append(line);
    }
    return lines;
}

bool writeCsvFile(const QString &path, const QStringList &lines)
{
    QByteArray bytes = QByteArrayLiteral("\xEF\xBB\xBF");
    for (const QString &line : lines)
        bytes += line.toUtf8() + QByteArrayLiteral("\r\n");
    return writeFileAtomically(path, bytes);
}

} // namespace telvane
