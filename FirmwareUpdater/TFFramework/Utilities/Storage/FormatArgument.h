#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>

namespace TF {

std::string ToUtf8(std::u16string_view text);

// One argument of a printf-style format, so that formatting stands in a source of its own.
class FormatArgument {
 public:
  using Value = std::variant<std::int32_t, std::uint32_t, std::int64_t, std::uint64_t, double, std::string,
                             const void*>;

  template <class T>
  requires std::is_integral_v<T> FormatArgument(T value) : mValue(static_cast<Integer<T>>(value)) {}
  FormatArgument(double value) : mValue(value) {}
  FormatArgument(const char* text) : mValue(std::string(text)) {}
  FormatArgument(const char16_t* text) : mValue(ToUtf8(text)) {}
  template <class T>
  requires std::is_convertible_v<T, std::string_view> FormatArgument(const T& text)
      : mValue(std::string(std::string_view(text))) {}
  template <class T>
  requires(!std::is_convertible_v<T, std::string_view> && std::is_convertible_v<T, std::u16string_view>)
      FormatArgument(const T& text)
      : mValue(ToUtf8(std::u16string_view(text))) {}
  FormatArgument(const void* pointer) : mValue(pointer) {}

  const Value& GetValue() const { return mValue; }

 private:
  template <class T>
  using Integer = std::conditional_t<(sizeof(T) < 8),
                                     std::conditional_t<std::is_signed_v<T>, std::int32_t, std::uint32_t>,
                                     std::conditional_t<std::is_signed_v<T>, std::int64_t, std::uint64_t>>;

  Value mValue;
};

}  // namespace TF
