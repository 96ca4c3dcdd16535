#pragma once

#include <QList>
#include <QString>

#include <optional>

namespace telvane {

// The message boxes and input boxes the core shows to the operator. The window shows
// them as modal boxes brought to the foreground; each call returns when the operator
// closed its box. Tests answer from a script and record what was asked.
class Prompts
{
public:
    virtual ~Prompts() = default;

    // Yes and No buttons, question icon: true for Yes.
    virtual bool question(const QString &title, const QString &text) = 0;
    // Exclamation icon.
    virtual void warning(const QString &title, const QString &text) = 0;
    // Information icon.
    virtual void information(const QString &title, const QString &text) = 0;
    // An input box: the text typed (untrimmed), or nothing on Cancel.
    virtual std::optional<QString> textInput(const QString &title, const QString &prompt,
                                             const QString &initialText = QString()) = 0;

    enum class Icon { Information, Question, Exclamation, Critical };
    // A box the operator must close before the work goes on: OK, and Cancel when
    // `cancellable`. True for OK. Where nobody can answer, a cancellable box is asked as
    // a question (so it ends No, i.e. Cancel) and any other one is shown as information.
    virtual bool acknowledge(const QString &title, const QString &text, Icon icon, bool cancellable);
};

// Records every box and answers questions and input boxes from a script, in order. A
// question asked beyond the script is answered No and an input box Cancel, so that a
// test that forgot an answer sends nothing rather than something.
class RecordingPrompts final : public Prompts
{
public:
    enum class Kind { Question, Warning, Information, TextInput, Acknowledge };

    struct Prompt
    {
        Kind kind;
        QString title;
        QString text;

        bool operator==(const Prompt &other) const = default;
    };

    void scriptQuestion(bool yes) { m_questionAnswers.append(yes); }
    void scriptTextInput(std::optional<QString> answer) { m_textAnswers.append(std::move(answer)); }
    // OK (true) or Cancel for the next cancellable box; beyond the script: Cancel.
    void scriptAcknowledge(bool ok) { m_acknowledgeAnswers.append(ok); }

    bool question(const QString &title, const QString &text) override;
    void warning(const QString &title, const QString &text) override;
    void information(const QString &title, const QString &text) override;
    std::optional<QString> textInput(const QString &title, const QString &prompt, const QString &initialText) override;
    bool acknowledge(const QString &title, const QString &text, Icon icon, bool cancellable) override;

    const QList<Prompt> &asked() const { return m_asked; }
    void clear() { m_asked.clear(); }

private:
    QList<Prompt> m_asked;
    QList<bool> m_questionAnswers;
    QList<std::optional<QString>> m_textAnswers;
    QList<bool> m_acknowledgeAnswers;
};

} // namespace telvane
