#pragma once

#include <QString>
#include <QStringList>

namespace telvane {

// What a settings key of an editor page holds, which decides how the page shows it
// and what it accepts.
enum class FieldKind {
    Text,          // free text
    Choice,        // one of `choices`, stored as the matching `choiceValues` entry
    Flag,          // a check box, stored "1" / "0"
    Count,         // a whole number from `minimum` to `maximum`
    Address,       // an instrument address 1..255; empty leaves the instrument out
    ReadRegister,  // "function,register" read with code 1..4; empty: not used
    WriteRegister, // "function,register" written with code 5, 6 or 8; empty: not used
    ClockRegister, // "function,register" of an instrument clock, code 6 or 8; empty: not used
    Value,         // a decimal number ("," or ".") that must fit the item's register
    Colour,        // "&H" and hexadecimal digits; empty: the program's own colour
};

// How a flag's stored text reads as ticked.
enum class FlagReading {
    NotZeroText,    // anything but the text "0", as the program reads its options ("AutoAvvio", "Remoto", ...)
    PositiveNumber, // a number above 0, as the plant's items are counted present ("Apriporta", "Webcam")
};

struct FieldSpec
{
    QString section;
    QString key;
    QString defaultValue;
    FieldKind kind = FieldKind::Text;
    QString label;   // the caption beside the control
    QString control; // the control's name
    QStringList choices;      // Choice: the texts offered
    QStringList choiceValues; // Choice: the texts stored, parallel to choices; empty: the same texts
    bool editableChoice = false; // Choice: other texts may be typed (and are checked by range)
    int minimum = 0;
    int maximum = 0;
    FlagReading flagReading = FlagReading::NotZeroText;
};

// Why `text` cannot be saved in a field of this kind, as one line for the technician,
// or an empty text when it can. `decimals` are the item's, for values that go into its
// registers. Whatever a hand-edited file may hold, the editor only saves values that the
// program will use as the technician meant them: nothing it would silently leave out,
// clamp or read as 0.
QString fieldProblem(const FieldSpec &definition, const QString &text, int decimals = 0);

// A flag's stored text as a tick.
bool flagTicked(const FieldSpec &definition, const QString &text);

// The text a choice shows for a stored value; the stored text itself when it is none of
// the values.
QString choiceShown(const FieldSpec &definition, const QString &stored);
// The text stored for a shown choice; the shown text itself when it is none of them.
QString choiceStored(const FieldSpec &definition, const QString &shown);

} // namespace telvane
