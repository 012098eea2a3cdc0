#include "TFFramework/ControlBase/MenuItemUpdater.h"

#include "TFFramework/ControlBase/Control.h"

namespace TF {

TFRESULT LMenuItemUpdater::Update(const RCPtr<LMenuDescriptor>& menu, std::int32_t index,
                                  const String& identifier, LMenuItemState& state) {
  const RCPtr<LControl> control(mControl);
  return control ? control->OnMenuItemText(menu, index, identifier, state) : kNothingDone;
}

}  // namespace TF
