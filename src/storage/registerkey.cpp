#include "storage/registerkey.h"

#include "storage/numbertext.h"


namespace telvane {


std::optional<RegisterKey> parseRegisterKey(const QString &text, RegisterKeyProblem *problem)
{
    const auto fail = [problem](RegisterKeyProblem why) -> std::optional<RegisterKey> {
        if (problem)
            *problem = why;
        return std::nullopt;
    };
    const QString trimmed = text.trimmed();
    if (trimmed.isEmpty())
        return fail(RegisterKeyProblem::Empty);
    const qsizetype comma = trimmed.indexOf(QLatin1Char(','));
    if (comma < 0)
        return fail(RegisterKeyProblem::Malformed);
    // Function codes from 128 up are exception replies, never requests.
    const std::optional<int> functionCode = wholeNumberIn(trimmed.left(comma), 1, 127);
    const std::optional<int> registerNumber = wholeNumberIn(trimmed.mid(comma + 1), 0, 65535);
    if (!functionCode || !registerNumber)
        return fail(RegisterKeyProblem::Malformed);
    if (problem)
        *problem = RegisterKeyProblem::None;
    return RegisterKey{*functionCode, *registerNumber};
}

} // namespace telvane
