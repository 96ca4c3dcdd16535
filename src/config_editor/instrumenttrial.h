#pragma once

#include <QStringList>

namespace telvane {

class ModbusMaster;
class PageModel;

// Reads once every register of one item that its page reads, as the page holds them
// now (saved or not), through the master or its simulation: commissioning an instrument
// without starting acquisition. One line per register, with the value as the item's
// decimals show it or why there is none; one line only when the address is unusable.
QStringList runInstrumentTrial(ModbusMaster &master, const PageModel &page, const QString &section);

} // namespace telvane
