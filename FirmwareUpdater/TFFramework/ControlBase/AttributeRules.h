#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "TFFramework/ControlBase/AttributeValues.h"
#include "TFFramework/ControlBase/XmlReader.h"
#include "TFFramework/Utilities/Storage/StringT.h"

// Tables that say which attribute of an element goes where.
namespace TF {

// Takes the text of one attribute into an object.
template <class Owner>
struct AttributeRule {
  std::u16string_view mName;
  void (*mStore)(Owner& owner, std::u16string_view text);
};

inline void ParseInto(bool& field, std::u16string_view text) {
  field = ParseBool(text);
}
inline void ParseInto(std::int32_t& field, std::u16string_view text) {
  field = ParseInt(text);
}
inline void ParseInto(float& field, std::u16string_view text) {
  field = ParseFloat(text);
}
// The skin writes whole numbers for what the layout keeps as a double.
inline void ParseInto(double& field, std::u16string_view text) {
  field = ParseInt(text);
}
inline void ParseInto(LColor& field, std::u16string_view text) {
  field = ParseColor(text);
}
inline void ParseInto(String& field, std::u16string_view text) {
  field = text;
}
// A number that counts above 0 alone.
inline void ParseInto(std::optional<std::int32_t>& field, std::u16string_view text) {
  if (const std::int32_t value = ParseInt(text); value > 0) field = value;
}

// A rule's action for the field at the end of a path of members.
template <class Owner, auto... Path>
void StoreAt(Owner& owner, std::u16string_view text) {
  ParseInto((owner.*....*Path), text);
}

// The first attribute of the table that the element does not have.
template <class Owner, std::size_t Count>
std::optional<std::u16string_view> FindMissing(const XmlAttributes& attributes,
                                               const AttributeRule<Owner> (&rules)[Count]) {
  for (const AttributeRule<Owner>& rule : rules) {
    if (!attributes.Find(rule.mName)) return rule.mName;
  }
  return std::nullopt;
}

// Takes what is there.
template <class Owner, std::size_t Count>
void ReadPresent(const XmlAttributes& attributes, const AttributeRule<Owner> (&rules)[Count], Owner& owner) {
  for (const AttributeRule<Owner>& rule : rules) {
    if (const auto text = attributes.Find(rule.mName)) rule.mStore(owner, *text);
  }
}

}  // namespace TF
