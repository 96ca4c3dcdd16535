#include "base/prompts.h"

namespace telvane {

bool Prompts::acknowledge(const QString &title, const QString &text, Icon, bool cancellable)
{
    if (cancellable)
        return question(title, text);
    information(title, text);
    return true;
}

bool RecordingPrompts::question(const QString &title, const QString &text)
{
    m_asked.append({Kind::Question, title, text});
    return m_questionAnswers.isEmpty() ? false : m_questionAnswers.takeFirst();
}

void RecordingPrompts::warning(const QString &title, const QString &text)
{
    m_asked.append({Kind::Warning, title, text});
}

void RecordingPrompts::information(const QString &title, const QString &text)
{
    m_asked.append({Kind::Information, title, text});
}

std::optional<QString> RecordingPrompts::textInput(const QString &title, const QString &prompt, const QString &)
{
    m_asked.append({Kind::TextInput, title, prompt});
    return m_textAnswers.isEmpty() ? std::nullopt : m_textAnswers.takeFirst();
}

bool RecordingPrompts::acknowledge(const QString &title, const QString &text, Icon, bool cancellable)
{
    m_asked.append({Kind::Acknowledge, title, text});
    if (!cancellable)
        return true;
    return m_acknowledgeAnswers.isEmpty() ? false : m_acknowledgeAnswers.takeFirst();
}

} // namespace telvane
