#include "ui/splash.h"

#include "base/productinfo.h"
#include "ui/productheader.h"

#include <QDialogButtonBox>
#include <QFrame>
#include <QIcon>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace telvane {

Splash::Splash(QWidget *parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("Splash"));
    setWindowTitle(QLatin1String(ProductName));
    setWindowIcon(QIcon(QStringLiteral(":/icons/telvane.svg")));

    auto *rule = new QFrame(this);
    rule->setFrameShape(QFrame::HLine);
    rule->setFrameShadow(QFrame::Sunken);

    auto *question = new QLabel(QStringLiteral("Comunicare con gli strumenti?"), this);
    question->setObjectName(QStringLiteral("lblQuestion"));
    QFont questionFont = question->font();
    questionFont.setBold(true);
    question->setFont(questionFont);
    auto *hint = new QLabel(QStringLiteral("Rispondendo No gli strumenti vengono simulati e la porta seriale non "
                                           "viene usata."),
                            this);
    hint->setObjectName(QStringLiteral("lblHint"));
    hint->setWordWrap(true);

    auto *yes = new QPushButton(QStringLiteral("&Sì"), this);
    yes->setObjectName(QStringLiteral("cmdSi"));
    yes->setDefault(true);
    auto *no = new QPushButton(QStringLiteral("&No"), this);
    no->setObjectName(QStringLiteral("cmdNo"));
    auto *buttons = new QDialogButtonBox(this);
    buttons->addButton(yes, QDialogButtonBox::YesRole);
    buttons->addButton(no, QDialogButtonBox::NoRole);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(24, 24, 24, 18);
    layout->addWidget(new ProductHeader(this));
    layout->addSpacing(8);
    layout->addWidget(rule);
    layout->addSpacing(8);
    layout->addWidget(question);
    layout->addWidget(hint);
    layout->addSpacing(8);
    layout->addWidget(buttons);
    setMinimumWidth(460);

    connect(yes, &QPushButton::clicked, this, &QDialog::accept);
    connect(no, &QPushButton::clicked, this, [this] {
        m_answeredNo = true;
        accept();
    });
}

} // namespace telvane
