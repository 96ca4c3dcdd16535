#include "ui/about.h"

#include "base/productinfo.h"
#include "ui/productheader.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace telvane {

About::About(QWidget *parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("About"));
    setWindowTitle(QStringLiteral("Informazioni su %1").arg(QLatin1String(ProductName)));

    auto *details = new QLabel(QStringLiteral("Master Modbus RTU su una linea seriale: zone, interruttori, LED, "
                                              "apriporta e webcam.\nRealizzato con Qt %1.")
                                   .arg(QLatin1String(qVersion())),
                               this);
    details->setObjectName(QStringLiteral("lblDetails"));
    details->setWordWrap(true);

    auto *ok = new QPushButton(QStringLiteral("OK"), this);
    ok->setObjectName(QStringLiteral("cmdOK"));
    ok->setDefault(true);
    auto *buttons = new QDialogButtonBox(this);
    buttons->addButton(ok, QDialogButtonBox::AcceptRole);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(24, 24, 24, 18);
    layout->addWidget(new ProductHeader(this));
    layout->addSpacing(12);
    layout->addWidget(details);
    layout->addWidget(buttons);
    setMinimumWidth(440);

    connect(ok, &QPushButton::clicked, this, &QDialog::accept);
}

} // namespace telvane
