#pragma once

#include <QDialog>

namespace telvane {

// The window that opens the program: the product, its version, and the one question
// asked before anything else, whether to talk to the instruments or simulate them.
// Only a "No" simulates; "Sì", Enter, Esc or closing the window all communicate, so a
// plant is never left unsupervised by a stray key.
class Splash final : public QDialog
{
    Q_OBJECT

public:
    explicit Splash(QWidget *parent = nullptr);

    // The answer, once the window has closed.
    bool communicate() const { return !m_answeredNo; }

private:
    bool m_answeredNo = false;
};

} // namespace telvane
