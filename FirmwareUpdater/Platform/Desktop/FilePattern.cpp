#include "Platform/Desktop/FilePattern.h"

#include "Platform/Desktop/CleanUtf8.h"

namespace Platform {

namespace {

constexpr char kCaseBit = 'a' ^ 'A';

bool IsLetter(char character) {
  const char lower = static_cast<char>(character | kCaseBit);
  return lower >= 'a' && lower <= 'z';
}

}  // namespace

std::string AnyCasePattern(std::u16string_view pattern) {
  std::string result;
  for (const char character : CleanUtf8(pattern)) {
    if (IsLetter(character)) {
      const char lower = static_cast<char>(character | kCaseBit);
      result += {'[', lower, static_cast<char>(lower ^ kCaseBit), ']'};
    } else {
      result += character;
    }
  }
  return result;
}

}  // namespace Platform
