#pragma once

#include <QString>

namespace telvane {

class IniStore;

// Number settings read through the current settings file. Text that is not wholly a
// number is logged, so a hand-edited value that went wrong can be found.

// The leading integer of the value ("12abc" is 12); the default when the value holds
// no number at all.
int readIntegerKey(const IniStore &store, const QString &section, const QString &key, int defaultValue);

// A single-precision value; the default when the value is not a number.
float readSingleKey(const IniStore &store, const QString &section, const QString &key, float defaultValue);

// A check-box setting: on unless its text is "0", so "1", "-1" and "si" are all on; an
// absent key reads "0". The editor's pages tick their boxes by the same rule.
bool flagTextOn(const QString &text);
bool readFlagKey(const IniStore &store, const QString &section, const QString &key);

// One warning for a value that could not be used as it stands:
// [section] key = "text" `problem`.
void logBadSetting(const QString &section, const QString &key, const QString &text, const QString &problem);

} // namespace telvane
