#include <fmt/args.h>
#include <fmt/printf.h>

#include "TFFramework/Utilities/Storage/StringT.h"
#include "TFFramework/Utilities/Storage/UtfConversion.h"

namespace TF {

namespace {

std::string PrintToUtf8(const std::string& format, std::initializer_list<FormatArgument> arguments) {
  fmt::dynamic_format_arg_store<fmt::printf_context> store;
  for (const FormatArgument& argument : arguments) {
    std::visit([&store](const auto& value) { store.push_back(value); }, argument.GetValue());
  }
  try {
    return fmt::vsprintf(fmt::string_view(format), fmt::basic_format_args<fmt::printf_context>(store));
  } catch (const fmt::format_error& error) {
    Throw<std::invalid_argument>(error.what(), "TF::StringT::Format");
  }
}

}  // namespace

// The libraries' printf prints into memory that grows, so that no text is ever cut.
template <class C, class Other>
StringT<C, Other> StringT<C, Other>::FormatList(const C* format,
                                                std::initializer_list<FormatArgument> arguments) {
  if constexpr (sizeof(C) == 1)
    return StringT(PrintToUtf8(format, arguments));
  else
    return FromUtf8(PrintToUtf8(ToUtf8(format), arguments));
}

template <class C, class Other>
StringT<C, Other> StringT<C, Other>::FormatFixedPoint(std::int32_t value, std::int32_t decimals) {
  static constexpr C kFormat[] = {'%', 'd', 0};
  StringT text = Format(kFormat, value);
  if (decimals < 1) return text;
  while (text.Length() < decimals) text.Insert(0, StringT(C{'0'}));
  const std::int32_t whole = text.Length() - decimals;
  StringT result = text.Left(whole);
  result.Append(C{'.'});
  result.Append(text.Mid(whole));
  return result;
}

template <class C, class Other>
StringT<C, Other> StringT<C, Other>::FormatFloat(double value, std::int32_t decimals) {
  static constexpr C kPlain[] = {'%', 'l', 'f', 0};
  static constexpr C kOfFormat[] = {'%', '%', '.', '%', 'd', 'l', 'f', 0};
  if (decimals < 0) return Format(kPlain, value);
  return Format(Format(kOfFormat, decimals).GetText(), value);
}

template String StringT<char16_t, char>::FormatList(const char16_t*, std::initializer_list<FormatArgument>);
template NarrowString StringT<char, char16_t>::FormatList(const char*, std::initializer_list<FormatArgument>);
template String StringT<char16_t, char>::FormatFixedPoint(std::int32_t, std::int32_t);
template String StringT<char16_t, char>::FormatFloat(double, std::int32_t);
template NarrowString StringT<char, char16_t>::FormatFixedPoint(std::int32_t, std::int32_t);
template NarrowString StringT<char, char16_t>::FormatFloat(double, std::int32_t);

}  // namespace TF
