#pragma once

#include <QString>
#include <QtGlobal>

namespace telvane {

// Every read or write that got no valid answer gives this, everywhere in the program.
inline constexpr qint32 InvalidRegisterValue = -99999;

// How one read or write on the bus ended. The reason travels with the failure into the
// alarm and error bookkeeping, so nobody has to ask the master afterwards what its last
// transaction was (by then it may have been another item's).
enum class BusResult {
    Value,         // a full reply with a good CRC
    Exception,     // a short reply: the slave refused, with its exception code
    BadCrc,        // a full reply that fails its CRC
    TimeOut,       // an addressed slave sent nothing
    Broadcast,     // slave 0: nobody answers, by design
    NoPort,        // the port would not open; the wait was spent all the same
    LineBusy,      // another transaction was waiting for its reply: nothing was sent
    NotConfigured, // no usable slave, function code or register: nothing was sent
    Stopped,       // the operator or the system stopped the work under way: nothing was sent
};

struct BusOutcome
{
    BusResult result = BusResult::NotConfigured;
    // What ReadRegister and WriteRegister return: the value read or echoed, the
    // exception code of a refused read (callers have always taken it as a reading), or
    // -99999.
    qint32 value = InvalidRegisterValue;
    int exceptionCode = 0;

    static BusOutcome of(qint32 value) { return {BusResult::Value, value, 0}; }
    static BusOutcome failure(BusResult result) { return {result, InvalidRegisterValue, 0}; }

    bool answered() const { return value != InvalidRegisterValue; }
    // A refusal for a busy line, an exchange that is not configured or one not sent
    // because of a stop says nothing of the instrument: none counts toward its alarm.
    bool instrumentFailed() const
    {
        return !answered() && result != BusResult::LineBusy && result != BusResult::NotConfigured
            && result != BusResult::Stopped;
    }
    // For the log and the communication-error view: "Time out", "(Exception)",
    // "Broadcast" as the line has always described them, and our own for the rest.
    // Empty for a value.
    QString reason() const;
};

} // namespace telvane
