#pragma once

#include "synoptic/zoneinfo.h"

#include <QFrame>

class QGridLayout;
class QLabel;
class QPushButton;

namespace telvane {

// The zone information panel (`Pic_Info`): the zone's name (`Lab_Nome`), its named
// fields, and the state pictures `Img_CR`, `Img_MS`, `Img_MS_M`, `Img_MS_S`,
// `Img_Master`, `Img_Slave` and `Img_Cro`; `Cmd_Chiudi` closes it.
class InfoPanel final : public QFrame
{
    Q_OBJECT

public:
    explicit InfoPanel(QWidget *parent = nullptr);

    void fill(const ZoneInfo &info);

signals:
    void closeClicked();

private:
    QLabel *picture(const QString &name, const QString &text, const QString &tip, const QString &colour);

    QLabel *m_name;
    QGridLayout *m_fields;
    QList<QLabel *> m_fieldLabels;
    QLabel *m_cr;
    QLabel *m_ms;
    QLabel *m_msM;
    QLabel *m_msS;
    QLabel *m_master;
    QLabel *m_slave;
    QLabel *m_cro;
};

} // namespace telvane
