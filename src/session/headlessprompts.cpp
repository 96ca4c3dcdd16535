#include "session/headlessprompts.h"

#include <QRegularExpression>
#include <QTextStream>

namespace telvane {

HeadlessPrompts::HeadlessPrompts(QTextStream &out)
    : m_out(out)
{
}

bool HeadlessPrompts::question(const QString &title, const QString &text)
{
    print("Domanda", title, text, "No");
    return false;
}

void HeadlessPrompts::warning(const QString &title, const QString &text)
{
    print("Avviso", title, text);
}

void HeadlessPrompts::information(const QString &title, const QString &text)
{
    print("Informazione", title, text);
}

std::optional<QString> HeadlessPrompts::textInput(const QString &title, const QString &prompt, const QString &)
{
    print("Richiesta", title, prompt, "Annulla");
    return std::nullopt;
}

void HeadlessPrompts::print(const char *kind, const QString &title, const QString &text, const char *answer)
{
    // A box's text may run over several lines; a log reader wants one line per box.
    static const QRegularExpression lineBreaks(QStringLiteral("\\s*[\\r\\n]+\\s*"));
    const QString oneLine = QString(text).replace(lineBreaks, QStringLiteral(" ")).trimmed();
    m_out << kind << " (" << title << "): " << oneLine;
    if (answer)
        m_out << " -> " << answer;
    m_out << Qt::endl;
}

} // namespace telvane
