#pragma once

#include <QString>

#include <optional>

namespace telvane {

// An instrument register as a register key of the settings holds it: the Modbus function
// code, a comma and the register number, both decimal ("6,40010").
struct RegisterKey
{
    int functionCode = -1;
    int registerNumber = -1;

    bool operator==(const RegisterKey &other) const = default;
};

enum class RegisterKeyProblem {
    None,
    Empty,     // the register is simply not used
    Malformed, // not "function,register" with a function code 1..127 and a register 0..65535
};

// The trimmed key text as a register; `problem` (if given) tells why there is none.
std::optional<RegisterKey> parseRegisterKey(const QString &text, RegisterKeyProblem *problem = nullptr);

} // namespace telvane
