#include "TFFramework/Midi/MidiPortNames.h"

#include "TFFramework/Utilities/Storage/CaseTable.h"

namespace TF {

namespace {

constexpr char16_t kOpen = u'(';
constexpr char16_t kClose = u')';

std::int32_t CountEqual(const StringArray& names, const String& name, std::int32_t end) {
  std::int32_t count = 0;
  for (std::int32_t i = 0; i < end; ++i) {
    if (names.GetAt(i) == name) ++count;
  }
  return count;
}

void AddNumbered(StringArray& names, const String& name, std::int32_t count) {
  for (std::int32_t number = 1; number <= count; ++number) {
    names.Add(name + String::Format(u" (%d)", number));
  }
}

// The number that digits stand for, counted from 0 as ordinals are.
std::int32_t OrdinalOf(std::u16string_view digits) {
  std::int32_t number = 0;
  for (const char16_t digit : digits) {
    if (digit < u'0' || digit > u'9') return kNoSuchOrdinal;
    number = number * 10 + (digit - u'0');
  }
  return number - 1;
}

// A blank or any other character, then digits of the given count in parentheses.
bool HasOrdinal(std::u16string_view name, std::size_t digits) {
  const std::size_t end = digits + 3;
  return name.size() >= end && name[name.size() - end + 1] == kOpen && name.back() == kClose;
}

// The ordinal-th of the devices that fit.
template <class Fits>
std::int32_t FindNth(const StringArray& deviceNames, std::int32_t ordinal, const Fits& fits) {
  std::int32_t matches = 0;
  for (std::int32_t i = 0; i < deviceNames.GetCount(); ++i) {
    if (!fits(deviceNames.GetAt(i))) continue;
    if (matches == ordinal) return i;
    ++matches;
  }
  return -1;
}

std::int32_t ChooseByWholeName(const StringArray& deviceNames, const String& name) {
  const std::int32_t index = FindNth(deviceNames, 0, [&](const String& device) { return device == name; });
  if (index >= 0) return index;
  String base;
  std::int32_t ordinal = 0;
  ParsePortName(name, base, ordinal);
  return FindNth(deviceNames, ordinal, [&](const String& device) { return device == base; });
}

std::int32_t ChooseByPart(const StringArray& deviceNames, const String& name) {
  String base;
  std::int32_t ordinal = 0;
  ParsePortName(name, base, ordinal);
  const String part = base.ToLower();
  return FindNth(deviceNames, ordinal,
                 [&](const String& device) { return device.ToLower().Find(part) >= 0; });
}

}  // namespace

StringArray MakeUniquePortNames(const StringArray& deviceNames) {
  StringArray names;
  for (std::int32_t i = 0; i < deviceNames.GetCount(); ++i) {
    const String& name = deviceNames.GetAt(i);
    if (CountEqual(deviceNames, name, i) > 0) continue;
    const std::int32_t count = CountEqual(deviceNames, name, deviceNames.GetCount());
    if (count > 1) {
      AddNumbered(names, name, count);
    } else {
      names.Add(name);
    }
  }
  return names;
}

std::int32_t FindPortName(const StringArray& names, const String& requested, std::int32_t& index) {
  const String part = requested.ToLower();
  std::int32_t count = 0;
  index = -1;
  for (std::int32_t i = 0; i < names.GetCount(); ++i) {
    const String name = names.GetAt(i).ToLower();
    if (name == part) {
      index = i;
      return 1;
    }
    if (name.Find(part) < 0) continue;
    if (index < 0) index = i;
    ++count;
  }
  return count;
}

void ParsePortName(const String& name, String& base, std::int32_t& ordinal) {
  constexpr std::int32_t kLongestOrdinal = 2;
  const std::u16string_view text = name.View();
  for (std::int32_t digits = 1; digits <= kLongestOrdinal; ++digits) {
    if (!HasOrdinal(text, static_cast<std::size_t>(digits))) continue;
    ordinal = OrdinalOf(text.substr(text.size() - 1 - static_cast<std::size_t>(digits), digits));
    base = name.Left(name.Length() - digits - 3);
    return;
  }
  base = name;
  ordinal = 0;
}

std::int32_t ChooseDevice(const StringArray& deviceNames, const MidiPortRequest& request) {
  return request.mWholeName ? ChooseByWholeName(deviceNames, request.mName)
                            : ChooseByPart(deviceNames, request.mName);
}

}  // namespace TF
