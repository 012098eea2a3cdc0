#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "TFFramework/ControlBase/MenuDescriptor.h"
#include "TFFramework/ObjectBase/RCPtr.h"
#include "TFFramework/Utilities/Storage/StringT.h"
#include "TFFramework/Utilities/Storage/StringTable.h"

namespace TF {

// A key and its text, such as "00.NID_OPEN" and "Open...|Ctrl+O".
using MenuTexts = std::vector<std::pair<String, String>>;

// The menu that texts give, which come in the order of their keys; null when no item comes of them.
//
// A key is an index and a notification, for an item of the menu itself; or before these the name of a
// submenu whose item it is. A notification that ends with a point is the name of a submenu that the item
// opens. An index counts when it is the next of its list. A text is what the item shows and, behind "|", the
// text of its key; "-" is a separator.
RCPtr<LMenuDescriptor> CreateMenu(const MenuTexts& texts);

// The context menus in the texts of a control: the one below "CONTEXT_MENU.", or else those below
// "CONTEXT_MENU0.", "CONTEXT_MENU1." and so on, by their numbers; null for a number without a menu.
std::vector<RCPtr<LMenuDescriptor>> ReadContextMenus(const LStringTable& section);

// What stands on a bar for menus of these numbers: "MENU_LABEL.00" and so on; empty where one is left out.
// None at all when a number is beyond that of any menu.
std::vector<String> ReadMenuLabels(const LStringTable& section);

// The one below "CONTEXT_MENU."; null without it.
RCPtr<LMenuDescriptor> ReadContextMenu(const LStringTable& section);

}  // namespace TF
