#include "Platform/Files.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <memory>

namespace Platform {

namespace {

constexpr mode_t kNewFileMode = S_IRUSR | S_IWUSR;
constexpr mode_t kNewFolderMode = S_IRWXU | S_IRWXG | S_IRWXO;  // Less what the user's mask takes.

std::error_code LastError() {
  return {errno, std::generic_category()};
}

// Cutting at the zero would silently name another file.
std::error_code NativeOf(std::u16string_view path, std::string& native) {
  if (path.find(u'\0') != path.npos) return std::make_error_code(std::errc::invalid_argument);
  native = ToNativePath(path);
  return {};
}

int OpenFlags(const FileAccess& access) {
  int flags = (access.write ? O_RDWR : O_RDONLY) | O_CLOEXEC | O_NOCTTY;
  // A pipe without a writer must not hold up the caller; regular files do not care.
  flags |= O_NONBLOCK;
  if (access.create) flags |= O_CREAT | (access.exclusive ? O_EXCL : 0);
  return flags;
}

std::error_code CheckRegular(FileDescriptor file) {
  struct stat status;
  if (fstat(file, &status) != 0) return LastError();
  if (S_ISREG(status.st_mode)) return {};
  return std::make_error_code(S_ISDIR(status.st_mode) ? std::errc::is_a_directory
                                                      : std::errc::operation_not_supported);
}

int OpenRetrying(const std::string& native, int flags) {
  int file;
  do file = open(native.c_str(), flags, kNewFileMode);
  while (file == -1 && errno == EINTR);
  return file;
}

bool IsDotEntry(std::string_view name) {
  return name == "." || name == "..";
}

bool IsFolder(DIR* folder, const dirent& entry) {
  if (entry.d_type != DT_LNK && entry.d_type != DT_UNKNOWN) return entry.d_type == DT_DIR;
  struct stat status;
  return fstatat(dirfd(folder), entry.d_name, &status, 0) == 0 && S_ISDIR(status.st_mode);
}

}  // namespace

std::error_code OpenFile(std::u16string_view path, const FileAccess& access, FileDescriptor& file) {
  file = kNoFile;
  std::string native;
  if (const auto error = NativeOf(path, native)) return error;
  const FileDescriptor opened = OpenRetrying(native, OpenFlags(access));
  if (opened == -1) return LastError();
  if (const auto error = CheckRegular(opened)) {
    close(opened);
    return error;
  }
  file = opened;
  return {};
}

std::error_code CloseFile(FileDescriptor file) {
  // Linux frees the descriptor even when the call was interrupted: trying again could close
  // another thread's file.
  return close(file) == 0 || errno == EINTR ? std::error_code() : LastError();
}

std::error_code ReadFile(FileDescriptor file, void* bytes, std::size_t size, std::size_t& count) {
  count = 0;
  while (count < size) {
    const ssize_t got = read(file, static_cast<char*>(bytes) + count, size - count);
    if (got == 0) break;
    if (got > 0)
      count += static_cast<std::size_t>(got);
    else if (errno != EINTR)
      return LastError();
  }
  return {};
}

std::error_code WriteFile(FileDescriptor file, const void* bytes, std::size_t size) {
  std::size_t count = 0;
  while (count < size) {
    const ssize_t put = write(file, static_cast<const char*>(bytes) + count, size - count);
    if (put >= 0)
      count += static_cast<std::size_t>(put);
    else if (errno != EINTR)
      return LastError();
  }
  return {};
}

std::error_code SeekFile(FileDescriptor file, std::int64_t offset, SeekOrigin origin,
                         std::int64_t& position) {
  const int whence = origin == SeekOrigin::kStart ? SEEK_SET
                     : origin == SeekOrigin::kEnd ? SEEK_END
                                                  : SEEK_CUR;
  position = lseek(file, offset, whence);
  return position == -1 ? LastError() : std::error_code();
}

std::error_code GetFileSize(FileDescriptor file, std::uint64_t& size) {
  struct stat status;
  if (fstat(file, &status) != 0) return LastError();
  size = static_cast<std::uint64_t>(status.st_size);
  return {};
}

std::error_code RemoveFile(std::u16string_view path) {
  std::string native;
  if (const auto error = NativeOf(path, native)) return error;
  return unlink(native.c_str()) == 0 ? std::error_code() : LastError();
}

PathKind GetPathKind(std::u16string_view path) {
  std::string native;
  struct stat status;
  if (NativeOf(path, native) || stat(native.c_str(), &status) != 0) return PathKind::kNothing;
  return S_ISDIR(status.st_mode) ? PathKind::kFolder : PathKind::kFile;
}

bool IsAccessible(std::u16string_view path) {
  std::string native;
  return !NativeOf(path, native) && access(native.c_str(), F_OK) == 0;
}

std::error_code CreateFolder(std::u16string_view path) {
  std::string native;
  if (const auto error = NativeOf(path, native)) return error;
  return mkdir(native.c_str(), kNewFolderMode) == 0 ? std::error_code() : LastError();
}

std::error_code ListFolder(std::u16string_view path, std::vector<FolderEntry>& entries) {
  std::string native;
  if (const auto error = NativeOf(path, native)) return error;
  const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir(native.c_str()), closedir);
  if (!folder) return LastError();
  for (;;) {
    errno = 0;
    const dirent* entry = readdir(folder.get());
    if (entry == nullptr) return errno == 0 ? std::error_code() : LastError();
    if (IsDotEntry(entry->d_name)) continue;
    entries.push_back({FromNativeName(entry->d_name), IsFolder(folder.get(), *entry)});
  }
}

}  // namespace Platform
