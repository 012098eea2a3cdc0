#include "Platform/Folders.h"

#include <pwd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <vector>

#include "Platform/NativePath.h"

namespace Platform {

namespace {

constexpr std::string_view kCommonFolder = "/var/lib";
constexpr std::string_view kDocumentsKey = "XDG_DOCUMENTS_DIR=\"";
constexpr std::string_view kHomeVariable = "$HOME";

// The rules for these variables let only absolute paths count.
std::string AbsoluteVariable(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr && value[0] == '/' ? value : "";
}

std::string HomeOfUserEntry() {
  std::vector<char> buffer(1024);
  passwd entry{};
  passwd* found = nullptr;
  int error;
  while ((error = getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found)) == ERANGE) {
    buffer.resize(buffer.size() * 2);
  }
  return error == 0 && found != nullptr && found->pw_dir[0] == '/' ? found->pw_dir : "";
}

std::string HomeFolder() {
  std::string home = AbsoluteVariable("HOME");
  return home.empty() ? HomeOfUserEntry() : home;
}

std::string ConfigFolder() {
  std::string folder = AbsoluteVariable("XDG_CONFIG_HOME");
  if (!folder.empty()) return folder;
  const std::string home = HomeFolder();
  return home.empty() ? home : home + "/.config";
}

// The inner form without the separators at its end.
std::u16string FolderPath(std::string_view native) {
  while (native.size() > 1 && native.back() == '/') native.remove_suffix(1);
  return FromNativePath(native);
}

// Takes the value up to its closing quote, in which `\` keeps the next character as it is.
std::string QuotedValue(std::string_view text) {
  std::string value;
  for (std::size_t i = 0; i < text.size() && text[i] != '"'; ++i) {
    if (text[i] == '\\' && i + 1 < text.size()) ++i;
    value += text[i];
  }
  return value;
}

std::string_view TrimmedLine(std::string_view& text) {
  const auto end = text.find('\n');
  std::string_view line = text.substr(0, end);
  text.remove_prefix(end == text.npos ? text.size() : end + 1);
  const auto start = line.find_first_not_of(" \t");
  return start == line.npos ? std::string_view() : line.substr(start);
}

std::string ExpandHome(const std::string& value, std::string_view home) {
  if (value.starts_with('/')) return value;
  if (!value.starts_with(kHomeVariable)) return {};
  const std::string rest = value.substr(kHomeVariable.size());
  // Someone without such a folder has the bare home folder written here.
  if (rest.empty() || rest == "/") return std::string(home);
  return rest[0] == '/' ? std::string(home) + rest : std::string();
}

}  // namespace

std::u16string ProgramPath() {
  std::vector<char> buffer(256);
  for (;;) {
    const ssize_t length = readlink("/proc/self/exe", buffer.data(), buffer.size());
    if (length < 0) return {};
    if (static_cast<std::size_t>(length) < buffer.size()) {
      return FromNativePath({buffer.data(), static_cast<std::size_t>(length)});
    }
    buffer.resize(buffer.size() * 2);
  }
}

std::u16string ProgramFolder() {
  const std::u16string path = ProgramPath();
  const auto separator = path.rfind(u'\\');
  return separator == path.npos ? std::u16string() : path.substr(0, separator);
}

std::u16string CommonFolder() {
  return FolderPath(kCommonFolder);
}

std::u16string LocalFolder() {
  return FolderPath(ConfigFolder());
}

std::u16string DocumentsFolder() {
  const std::string home = HomeFolder();
  std::ifstream file(ConfigFolder() + "/user-dirs.dirs", std::ios::binary);
  const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  const std::string documents = DocumentsFolderIn(text, home);
  return FolderPath(documents.empty() ? home : documents);
}

std::string DocumentsFolderIn(std::string_view userDirs, std::string_view home) {
  std::string folder;
  while (!userDirs.empty()) {
    const std::string_view line = TrimmedLine(userDirs);
    if (!line.starts_with(kDocumentsKey)) continue;
    // A shell reads this file, so the last assignment holds.
    folder = ExpandHome(QuotedValue(line.substr(kDocumentsKey.size())), home);
  }
  return folder;
}

}  // namespace Platform
