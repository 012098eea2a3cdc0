#pragma once

#include "TFFramework/ObjectBase/Result.h"

namespace TF {

class LControlFactory;

// Makes the framework's control classes known under the names that skins call them by. A skin that uses a
// class which is known by name alone ends in an exception that names it.
//
// Returns the factory's first failure. Threads: main thread.
TFRESULT RegisterFrameworkControls(LControlFactory& factory);

}  // namespace TF
