#include "TFFramework/ControlBase/MenuBuilder.h"

#include <algorithm>
#include <map>
#include <set>
#include <string_view>

namespace TF {

namespace {

constexpr std::u16string_view kContextMenu = u"CONTEXT_MENU";
constexpr std::u16string_view kOneMenu = u"CONTEXT_MENU.";
constexpr std::u16string_view kMenuLabel = u"MENU_LABEL.";
// A control with more menus is a mistake.
constexpr std::int32_t kMostMenus = 1000;
// Submenus below one another.
constexpr int kDeepest = 64;
// Items of a menu with all that is below it, which may name one list many times.
constexpr int kMostItems = 10000;

struct Entry {
  String mIdentifier;  // With a final point it names a list.
  String mText;
};
using Lists = std::map<String, std::vector<Entry>>;

bool IsDigit(char16_t character) {
  return character >= u'0' && character <= u'9';
}

// The number at the start of a text; so large that it is none of a list for a longer one.
std::int32_t ParseNumber(std::u16string_view text) {
  std::int32_t number = 0;
  for (const char16_t character : text) {
    if (!IsDigit(character)) break;
    number = std::min(number * 10 + (character - u'0'), 100000000);
  }
  return number;
}

std::vector<std::u16string_view> Split(std::u16string_view key) {
  std::vector<std::u16string_view> parts;
  for (;;) {
    const std::size_t point = key.find(u'.');
    parts.push_back(key.substr(0, point));
    if (point == std::u16string_view::npos) return parts;
    key.remove_prefix(point + 1);
  }
}

void AddEntry(Lists& lists, const String& key, const String& text) {
  std::vector<std::u16string_view> parts = Split(key.View());
  const bool leadsOn = parts.size() > 1 && parts.back().empty();
  if (leadsOn) parts.pop_back();
  const bool hasParent = !parts.front().empty() && !IsDigit(parts.front()[0]);
  const std::size_t at = hasParent ? 1 : 0;
  if (parts.size() < at + 2 || parts[at].empty() || parts[at + 1].empty() || parts.front().empty()) return;
  std::vector<Entry>& list = lists[hasParent ? String(parts.front()) : String()];
  if (!IsDigit(parts[at][0]) || ParseNumber(parts[at]) != static_cast<std::int32_t>(list.size())) return;
  list.push_back({String(parts[at + 1]) + (leadsOn ? u"." : u""), text});
}

class Builder {
 public:
  explicit Builder(const Lists& lists) : mLists(lists) {}

  void Fill(LMenuDescriptor& menu, const String& listName) {
    const auto list = mLists.find(listName);
    if (list == mLists.end()) return;
    mOpen.insert(listName);
    for (const Entry& entry : list->second) AddTo(menu, entry);
    mOpen.erase(listName);
  }

 private:
  void AddTo(LMenuDescriptor& menu, const Entry& entry) {
    if (mItemCount >= kMostItems) return;
    const std::u16string_view text = entry.mText.View();
    const std::size_t bar = text.find(u'|');
    const String label(text.substr(0, bar));
    if (entry.mIdentifier.View().back() == u'.') return AddSubmenu(menu, entry, label);
    if (label == u"-") {
      menu.AddSeparator(-1);
    } else {
      menu.AddItem(-1, label, entry.mIdentifier, true, false);
    }
    TakeKeyText(menu, text, bar);
    ++mItemCount;
  }
  // A list that leads to itself has no end.
  void AddSubmenu(LMenuDescriptor& menu, const Entry& entry, const String& label) {
    const String name = entry.mIdentifier.Left(entry.mIdentifier.Length() - 1);
    if (mLists.count(name) == 0 || mOpen.count(name) > 0 || mOpen.size() > kDeepest) return;
    menu.AddItem(-1, label, String(), true, false);
    const RCPtr<LMenuItemDescriptor> item = menu.GetItem(menu.GetItemCount() - 1);
    TakeKeyText(menu, entry.mText.View(), entry.mText.View().find(u'|'));
    ++mItemCount;
    Fill(*item, name);
  }
  static void TakeKeyText(LMenuDescriptor& menu, std::u16string_view text, std::size_t bar) {
    if (bar == std::u16string_view::npos) return;
    menu.GetItem(menu.GetItemCount() - 1)->mHotKeyText = String(text.substr(bar + 1));
  }

  const Lists& mLists;
  std::set<String> mOpen;
  int mItemCount = 0;
};

}  // namespace

RCPtr<LMenuDescriptor> CreateMenu(const MenuTexts& texts) {
  Lists lists;
  for (const auto& [key, text] : texts) AddEntry(lists, key, text);
  auto menu = MakeRC<LMenuDescriptor>();
  Builder(lists).Fill(*menu, String());
  return menu->GetItemCount() > 0 ? menu : RCPtr<LMenuDescriptor>();
}

RCPtr<LMenuDescriptor> ReadContextMenu(const LStringTable& section) {
  MenuTexts texts;
  for (const auto& [identifier, text] : section.GetStrings()) {
    const std::u16string_view key = identifier.View();
    if (key.substr(0, kOneMenu.size()) == kOneMenu)
      texts.emplace_back(String(key.substr(kOneMenu.size())), text);
  }
  return CreateMenu(texts);
}

std::vector<RCPtr<LMenuDescriptor>> ReadContextMenus(const LStringTable& section) {
  if (const RCPtr<LMenuDescriptor> one = ReadContextMenu(section)) return {one};
  std::map<std::int32_t, MenuTexts> numbered;
  for (const auto& [identifier, text] : section.GetStrings()) {
    std::u16string_view key = identifier.View();
    if (key.substr(0, kContextMenu.size()) != kContextMenu) continue;
    key.remove_prefix(kContextMenu.size());
    const std::size_t point = key.find(u'.');
    if (point == std::u16string_view::npos || point == 0) continue;
    if (!std::all_of(key.begin(), key.begin() + static_cast<std::ptrdiff_t>(point), IsDigit)) continue;
    numbered[ParseNumber(key)].emplace_back(String(key.substr(point + 1)), text);
  }
  std::vector<RCPtr<LMenuDescriptor>> menus;
  for (const auto& [number, texts] : numbered) {
    if (number >= kMostMenus) break;
    menus.resize(static_cast<std::size_t>(number) + 1);
    menus.back() = CreateMenu(texts);
  }
  return menus;
}

std::vector<String> ReadMenuLabels(const LStringTable& section) {
  std::vector<String> labels;
  for (const auto& [identifier, text] : section.GetStrings()) {
    const std::u16string_view key = identifier.View();
    if (key.substr(0, kMenuLabel.size()) != kMenuLabel) continue;
    const auto place = static_cast<std::size_t>(ParseNumber(key.substr(kMenuLabel.size())));
    if (place >= kMostMenus) return {};
    labels.resize(std::max(labels.size(), place + 1));
    labels[place] = text;
  }
  return labels;
}

}  // namespace TF
