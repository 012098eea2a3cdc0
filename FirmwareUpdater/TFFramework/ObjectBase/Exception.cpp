#include "TFFramework/ObjectBase/Exception.h"

#include <cxxabi.h>
#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <memory>

namespace TF {

namespace {

std::string_view AfterLast(std::string_view path, std::string_view folder) {
  const auto at = path.rfind(folder);
  return at == std::string_view::npos ? path : path.substr(at + folder.size());
}

// The source path as developers know it: from the room on, with backslashes, no extension.
std::string SourceName(std::string_view file) {
  std::string_view name = AfterLast(AfterLast(file, "FirmwareUpdater/"), "TFFramework/");
  const auto dot = name.rfind('.');
  const auto slash = name.rfind('/');
  if (dot != std::string_view::npos && (slash == std::string_view::npos || dot > slash)) {
    name = name.substr(0, dot);
  }
  std::string result(name);
  std::replace(result.begin(), result.end(), '/', '\\');
  return result;
}

}  // namespace

const char* ExceptionBase::What() const {
  const auto* standard = dynamic_cast<const std::exception*>(this);
  return standard ? standard->what() : "";
}

std::string ComposeExceptionText(std::string_view prefix, std::string_view text, std::string_view function,
                                 std::string_view file, int line) {
  const std::string_view separator = text.empty() ? "" : " : ";
  return fmt::format("{}{}{}{} : {} : Line {}", prefix, text, separator, function, SourceName(file), line);
}

std::string ResultText(TFRESULT result) {
  return fmt::format("TFRESULT = {:X}", static_cast<std::uint32_t>(result));
}

std::string DemangledName(const char* mangled) {
  int status = 0;
  const std::unique_ptr<char, void (*)(void*)> name(abi::__cxa_demangle(mangled, nullptr, nullptr, &status),
                                                    std::free);
  return status == 0 && name ? name.get() : mangled;
}

}  // namespace TF
