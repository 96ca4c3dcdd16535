#pragma once

#include "base/prompts.h"

class QTextStream;

namespace telvane {

// The message boxes of a supervisor that nobody watches: each box becomes one line on
// the output, and nobody answers, so a question is answered No and an input box
// Cancel. Nothing a command asks for is then done on a guess.
//
//   Avviso (Gestione Interruttore): <text>
//   Informazione (<title>): <text>
//   Domanda (<title>): <text> -> No
//   Richiesta (<title>): <prompt> -> Annulla
class HeadlessPrompts final : public Prompts
{
public:
    explicit HeadlessPrompts(QTextStream &out);

    bool question(const QString &title, const QString &text) override;
    void warning(const QString &title, const QString &text) override;
    void information(const QString &title, const QString &text) override;
    std::optional<QString> textInput(const QString &title, const QString &prompt, const QString &initialText) override;

private:
    void print(const char *kind, const QString &title, const QString &text, const char *answer = nullptr);

    QTextStream &m_out;
};

} // namespace telvane
