#pragma once

namespace telvane {

// The one text form of a date-time in every file and list the program writes (daily
// log, alarm entries); the readers parse exactly this form.
inline constexpr char DateTimeTextFormat[] = "dd/MM/yyyy HH:mm:ss";

} // namespace telvane
