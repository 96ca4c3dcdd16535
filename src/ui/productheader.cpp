#include "ui/productheader.h"

#include "base/productinfo.h"

#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QVBoxLayout>

namespace telvane {

ProductHeader::ProductHeader(QWidget *parent)
    : QWidget(parent)
{
    auto *mark = new QLabel(this);
    mark->setObjectName(QStringLiteral("imgLogo"));
    mark->setPixmap(QIcon(QStringLiteral(":/icons/telvane.svg")).pixmap(72, 72));

    auto *name = new QLabel(QLatin1String(ProductName), this);
    name->setObjectName(QStringLiteral("lblProductName"));
    QFont nameFont = name->font();
    nameFont.setPointSizeF(nameFont.pointSizeF() * 2.2);
    nameFont.setBold(true);
    name->setFont(nameFont);

    auto *version = new QLabel(QStringLiteral("Versione %1").arg(QLatin1String(ProductVersion)), this);
    version->setObjectName(QStringLiteral("lblVersion"));
    auto *description = new QLabel(QLatin1String(ProductDescription), this);
    description->setObjectName(QStringLiteral("lblDescription"));

    auto *texts = new QVBoxLayout;
    texts->addWidget(name);
    texts->addWidget(version);
    texts->addWidget(description);
    texts->addStretch();

    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(mark, 0, Qt::AlignTop);
    layout->addSpacing(12);
    layout->addLayout(texts, 1);
}

} // namespace telvane
