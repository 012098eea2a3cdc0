#pragma once

#include <cstdint>

#include "TFFramework/Utilities/Storage/StringArray.h"

namespace TF {

// The rules by which clients name ports: without regard to case, by a part of the device's
// name, and with " (n)" to tell devices of equal names apart.

// An ordinal that no device has.
inline constexpr std::int32_t kNoSuchOrdinal = -1;

// The names that clients may ask for, made from the names of the devices in their order.
// Devices of equal names (by case too) become "name (1)", "name (2)" and so on and stand
// together at the place of the first.
StringArray MakeUniquePortNames(const StringArray& deviceNames);

// Counts the names that contain requested and gives the index of the first one, or -1. A
// name that equals requested in full wins: its index and 1.
std::int32_t FindPortName(const StringArray& names, const String& requested, std::int32_t& index);

// Takes " (n)" or " (nn)" off a name; ordinal counts from 0. Without such an end, base is
// the whole name and ordinal 0. What is no number gives kNoSuchOrdinal.
void ParsePortName(const String& name, String& base, std::int32_t& ordinal);

// Which device a request means.
struct MidiPortRequest {
  String mName;
  // The name was found in full among the unique names: a device must bear the whole name, so
  // that "Tessel" never opens "Tessel 2".
  bool mWholeName = false;
};

// Index of the device that request means, or -1.
std::int32_t ChooseDevice(const StringArray& deviceNames, const MidiPortRequest& request);

}  // namespace TF
