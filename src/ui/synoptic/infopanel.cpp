#include "ui/synoptic/infopanel.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace telvane {

InfoPanel::InfoPanel(QWidget *parent)
    : QFrame(parent)
    , m_name(new QLabel(this))
    , m_fields(new QGridLayout)
{
    setObjectName(QStringLiteral("Pic_Info"));
    setFrameStyle(QFrame::Panel | QFrame::Raised);
    setAutoFillBackground(true);
    m_name->setObjectName(QStringLiteral("Lab_Nome"));
    QFont bold = m_name->font();
    bold.setBold(true);
    bold.setPointSizeF(bold.pointSizeF() * 1.2);
    m_name->setFont(bold);

    auto *close = new QPushButton(QStringLiteral("Chiudi"), this);
    close->setObjectName(QStringLiteral("Cmd_Chiudi"));
    connect(close, &QPushButton::clicked, this, &InfoPanel::closeClicked);

    m_cr = picture(QStringLiteral("Img_CR"), QStringLiteral("COM"), QStringLiteral("Comunicazione interrotta: la zona è nell'elenco allarmi"), QStringLiteral("#d01010"));
    m_ms = picture(QStringLiteral("Img_MS"), QStringLiteral("?"), QStringLiteral("Stato remoto/locale non noto"), QStringLiteral("#8a8f94"));
    m_msM = picture(QStringLiteral("Img_MS_M"), QStringLiteral("MAN"), QStringLiteral("Locale: regolata sullo strumento"), QStringLiteral("#e08a10"));
    m_msS = picture(QStringLiteral("Img_MS_S"), QStringLiteral("REM"), QStringLiteral("Remoto: regolata dal supervisore"), QStringLiteral("#2e8b4a"));
    m_master = picture(QStringLiteral("Img_Master"), QStringLiteral("M"), QStringLiteral("Zona master"), QStringLiteral("#1f5f8b"));
    m_slave = picture(QStringLiteral("Img_Slave"), QStringLiteral("S"), QStringLiteral("Zona slave"), QStringLiteral("#5f7f9b"));
    m_cro = picture(QStringLiteral("Img_Cro"), QStringLiteral("CRONO"), QStringLiteral("Segue il cronotermostato"), QStringLiteral("#7040a0"));

    auto *pictures = new QHBoxLayout;
    for (QLabel *label : {m_cr, m_ms, m_msM, m_msS, m_master, m_slave, m_cro})
        pictures->addWidget(label);
    pictures->addStretch();

    auto *top = new QHBoxLayout;
    top->addWidget(m_name, 1);
    top->addWidget(close);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(8, 6, 8, 8);
    layout->addLayout(top);
    layout->addLayout(m_fields);
    layout->addLayout(pictures);
}

QLabel *InfoPanel::picture(const QString &name, const QString &text, const QString &tip, const QString &colour)
{
    auto *label = new QLabel(text, this);
    label->setObjectName(name);
    label->setToolTip(tip);
    label->setStyleSheet(QStringLiteral("QLabel { color: white; background: %1; border-radius: 3px; padding: 1px 4px;"
                                        " font-weight: bold; }")
                             .arg(colour));
    label->hide();
    return label;
}

void InfoPanel::fill(const ZoneInfo &info)
{
    m_name->setText(info.name);
    qDeleteAll(m_fieldLabels);
    m_fieldLabels.clear();
    int row = 0;
    for (const auto &[caption, value] : info.fields) {
        auto *captionLabel = new QLabel(caption + QLatin1Char(':'), this);
        captionLabel->setObjectName(QStringLiteral("Campo_%1_nome").arg(row + 1));
        auto *valueLabel = new QLabel(value, this);
        valueLabel->setObjectName(QStringLiteral("Campo_%1").arg(row + 1));
        m_fields->addWidget(captionLabel, row, 0);
        m_fields->addWidget(valueLabel, row, 1);
        m_fieldLabels << captionLabel << valueLabel;
        ++row;
    }
    m_cr->setVisible(info.imgCR);
    m_ms->setVisible(info.imgMS);
    m_msM->setVisible(info.imgMS_M);
    m_msS->setVisible(info.imgMS_S);
    m_master->setVisible(info.imgMaster);
    m_slave->setVisible(info.imgSlave);
    m_cro->setVisible(info.imgCro);
    adjustSize();
}

} // namespace telvane
