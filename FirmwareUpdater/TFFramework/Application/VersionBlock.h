#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "TFFramework/Utilities/Storage/StringT.h"

namespace TF {

// A language and code page that a version block has texts for.
struct Translation {
  std::uint32_t mLanguage = 0;  // Primary language in the low 10 bits, region above; 0 for any.
  std::uint32_t mCodePage = 0;
  std::vector<std::pair<String, String>> mStrings;  // By key, in the order of the block.
};

// Reads the block of texts in which a program says who made it and what it is. The block is UTF-8
// text; every line ends with a line feed:
//
//   version block
//   translation 0407 04b0
//   ProductName=Name
//   end
//
// A translation has the two numbers in four hexadecimal digits, and its texts follow it.
class VersionBlock {
 public:
  // Nothing when the bytes are no such block, from its first line to its last, or more than 64 KiB.
  static std::optional<VersionBlock> Parse(std::span<const unsigned char> bytes);

  const std::vector<Translation>& GetTranslations() const { return mTranslations; }

 private:
  bool ParseLine(std::string_view line);
  bool ParseTranslation(std::string_view numbers);

  std::vector<Translation> mTranslations;
};

}  // namespace TF
