#pragma once

#include "TFFramework/Utilities/Storage/Array.h"
#include "TFFramework/Utilities/Storage/CaseTable.h"
#include "TFFramework/Utilities/Storage/StringT.h"

namespace TF {

template <class C, class Other>
class StringArrayT : public Array<StringT<C, Other>> {
 public:
  using Array<StringT<C, Other>>::Array;

  // Index of the first equal element from start on, or -1. A null text equals the empty
  // string. Case is compared the same way in every locale.
  std::int32_t Find(const C* text, bool caseSensitive = true, std::int32_t start = 0) const {
    const View wanted = text ? View(text) : View();
    for (std::int32_t i = std::max(start, 0); i < this->GetCount(); ++i) {
      const StringT<C, Other>& element = this->GetAt(i);
      if (element.GetText() == text || IsEqual(element.View(), wanted, caseSensitive)) return i;
    }
    return -1;
  }
  std::int32_t Find(const StringT<C, Other>& text, bool caseSensitive = true, std::int32_t start = 0) const {
    return Find(text.GetText(), caseSensitive, start);
  }

 private:
  using View = std::basic_string_view<C>;

  static bool IsEqual(View left, View right, bool caseSensitive) {
    if (caseSensitive) return left == right;
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](C a, C b) { return ToLowerCase(a) == ToLowerCase(b); });
  }
};

using StringArray = StringArrayT<char16_t, char>;

}  // namespace TF
