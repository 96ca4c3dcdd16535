#pragma once

namespace telvane {

struct Runtime;

// Commands on the plant need a technician, service or administrator user. Without one,
// "Privilegi insufficienti" stands in the message panel for a second (the program waits
// meanwhile, as it always has) and the answer is false.
bool checkCommandRights(Runtime &rt);

} // namespace telvane
