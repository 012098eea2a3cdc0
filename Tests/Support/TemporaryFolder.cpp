#include "Tests/Support/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <cerrno>
#include <fstream>
#include <iterator>
#include <system_error>

#include "Platform/Files.h"

namespace TestSupport {

namespace {

std::filesystem::path MakeFolder() {
  std::string name = (std::filesystem::temp_directory_path() / "tessel-test-XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) {
    throw std::filesystem::filesystem_error("mkdtemp", name, std::error_code(errno, std::generic_category()));
  }
  return name;
}

}  // namespace

TemporaryFolder::TemporaryFolder() : mPath(MakeFolder()) {}

TemporaryFolder::~TemporaryFolder() {
  std::error_code error;
  std::filesystem::remove_all(mPath, error);
  if (error) ADD_FAILURE() << mPath << " stays behind: " << error.message();
}

std::u16string TemporaryFolder::InnerPath() const {
  return Platform::FromNativePath(mPath.native());
}

std::u16string TemporaryFolder::InnerEntry(std::string_view name) const {
  return Platform::FromNativePath(Entry(name).native());
}

std::filesystem::path TemporaryFolder::WriteFile(std::string_view name, std::string_view contents) const {
  const auto path = Entry(name);
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file.write(contents.data(), static_cast<std::streamsize>(contents.size()));
  file.close();
  if (!file) ADD_FAILURE() << path << " cannot be written";
  return path;
}

std::string ReadWholeFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) ADD_FAILURE() << path << " cannot be read";
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

}  // namespace TestSupport
