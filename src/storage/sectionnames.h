#pragma once

#include <QString>

namespace telvane {

// Settings sections of numbered items: the item word, a blank and the 1-based item
// number as two digits. `index` is 0-based: zoneSection(0) is "Zona 01".
QString zoneSection(int index);
QString switchSection(int index);
QString ledSection(int index);

} // namespace telvane
