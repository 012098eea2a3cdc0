#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace TestSupport {

// A new folder below the system's temporary folder, removed with all it holds at the end.
class TemporaryFolder {
 public:
  // Throws filesystem_error when no folder can be made.
  TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder();

  const std::filesystem::path& Path() const { return mPath; }
  // The path of an entry, existing or not.
  std::filesystem::path Entry(std::string_view name) const { return mPath / name; }
  // The same as the program writes paths, with `\`.
  std::u16string InnerPath() const;
  std::u16string InnerEntry(std::string_view name) const;

  // Writes a file of this folder anew and returns its path.
  std::filesystem::path WriteFile(std::string_view name, std::string_view contents) const;

 private:
  std::filesystem::path mPath;
};

// The whole contents of a file; the test fails when it cannot be read.
std::string ReadWholeFile(const std::filesystem::path& path);

}  // namespace TestSupport
