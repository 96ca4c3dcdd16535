#pragma once

// A full plant for the synoptic's benchmarks: 30 zones, 10 switches and 10 LEDs on a
// 1200 x 800 plan, every item configured as a technician would.

#include <QByteArray>
#include <QImage>
#include <QString>

namespace telvane {

inline QByteArray fullSynopticPlant()
{
    QByteArray text = "[Generale]\r\nZone=30\r\nZone Testo=1\r\nInterruttori=10\r\nLED=10\r\nApriporta=1\r\n"
                      "Webcam=1\r\n[COM]\r\nBase Misura=1\r\nBase Remoto=1\r\nBase LED=1\r\nRemoto=1\r\n"
                      "[Sinottico]\r\nImmagine=plan.png\r\n";
    for (int zone = 0; zone < 30; ++zone)
        text += QStringLiteral("[Zona %1]\r\nNome=Zona %1\r\nIndirizzo=%2\r\nDecimali=1\r\nPV_r=3,1\r\nSP_r=3,2\r\n"
                               "AL1_r=3,3\r\nAL2_r=3,4\r\nAL3_r=3,5\r\nREM_r=1,1\r\nX=%3\r\nY=%4\r\n")
                    .arg(zone + 1, 2, 10, QLatin1Char('0'))
                    .arg(zone + 1)
                    .arg(300 + (zone % 6) * 2850)
                    .arg(300 + (zone / 6) * 2250)
                    .toUtf8();
    for (int sw = 0; sw < 10; ++sw)
        text += QStringLiteral("[Interruttore %1]\r\nNome=Carico %1\r\nIndirizzo=%2\r\nOn_r=1,1\r\nOff_r=1,2\r\n"
                               "X=%3\r\nY=11200\r\n")
                    .arg(sw + 1, 2, 10, QLatin1Char('0'))
                    .arg(40 + sw)
                    .arg(300 + sw * 1500)
                    .toUtf8();
    for (int led = 0; led < 10; ++led)
        text += QStringLiteral("[LED %1]\r\nNome=Spia %1\r\nIndirizzo=%2\r\nP1_r=3,1\r\nVal=1\r\nCol=%3\r\n"
                               "X=%4\r\nY=10500\r\n")
                    .arg(led + 1, 2, 10, QLatin1Char('0'))
                    .arg(60 + led)
                    .arg(led % 7)
                    .arg(300 + led * 1500)
                    .toUtf8();
    text += "[Apriporta]\r\nNome=Cancello\r\nX=16000\r\nY=300\r\n[Webcam]\r\nNome=Ingresso\r\nX=16000\r\nY=900\r\n";
    return text;
}

inline bool writeSynopticPlan(const QString &path)
{
    QImage plan(1200, 800, QImage::Format_RGB32);
    plan.fill(QColor(0xf0, 0xee, 0xe8));
    return plan.save(path);
}

} // namespace telvane
