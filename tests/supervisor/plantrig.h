#pragma once

#include "support/runtimefixture.h"

namespace telvane {

// The window tests' name for the shared runtime fixture.
using PlantRig = RuntimeFixture;

} // namespace telvane
