#pragma once

#include <QPointF>
#include <QSizeF>

namespace telvane {

// The plan and every position on it are kept in twips, the unit of the settings files
// (1440 to the inch). This is the one place where twips meet screen pixels: at the
// usual 96 dots per inch a pixel is 15 twips.
class PlanUnits
{
public:
    static constexpr double TwipsPerInch = 1440.0;
    static constexpr double StandardDpi = 96.0;

    explicit PlanUnits(double logicalDpi = StandardDpi);

    double twipsPerPixel() const { return m_twipsPerPixel; }
    double toPixels(double twips) const { return twips / m_twipsPerPixel; }
    double toTwips(double pixels) const { return pixels * m_twipsPerPixel; }
    QSizeF toPixels(QSizeF twips) const { return twips / m_twipsPerPixel; }
    QSizeF toTwips(QSizeF pixels) const { return pixels * m_twipsPerPixel; }

private:
    double m_twipsPerPixel;
};

} // namespace telvane
