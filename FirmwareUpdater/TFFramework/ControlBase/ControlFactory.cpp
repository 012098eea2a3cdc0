#include "TFFramework/ControlBase/ControlFactory.h"

namespace TF {

LControlFactory::LControlFactory(const String& applicationName) : mApplicationName(applicationName) {}

}  // namespace TF
