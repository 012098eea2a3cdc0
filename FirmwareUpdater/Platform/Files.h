#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "Platform/NativePath.h"

// Files and folders by inner path. An inner path that holds a zero character names nothing
// and is refused with invalid_argument. Any thread may call any operation.
namespace Platform {

using FileDescriptor = int;
inline constexpr FileDescriptor kNoFile = -1;

struct FileAccess {
  bool write = false;      // Read access is always given.
  bool create = false;     // A new file is readable and writable by its owner alone.
  bool exclusive = false;  // With create: fails when the file exists.
};

enum class SeekOrigin { kStart, kCurrent, kEnd };

// Opens a regular file; a folder gives is_a_directory, a pipe, device or socket
// operation_not_supported, neither of them ever waits.
std::error_code OpenFile(std::u16string_view path, const FileAccess& access, FileDescriptor& file);
std::error_code CloseFile(FileDescriptor file);

// Transfers size bytes at the current position; count falls short only at the end of the file.
std::error_code ReadFile(FileDescriptor file, void* bytes, std::size_t size, std::size_t& count);
std::error_code WriteFile(FileDescriptor file, const void* bytes, std::size_t size);
std::error_code SeekFile(FileDescriptor file, std::int64_t offset, SeekOrigin origin, std::int64_t& position);
std::error_code GetFileSize(FileDescriptor file, std::uint64_t& size);

std::error_code RemoveFile(std::u16string_view path);

enum class PathKind { kNothing, kFolder, kFile };

// What stands at the end of the path, links followed. Everything but a folder is a file;
// what cannot be asked is nothing.
PathKind GetPathKind(std::u16string_view path);
bool IsAccessible(std::u16string_view path);

std::error_code CreateFolder(std::u16string_view path);

struct FolderEntry {
  std::u16string name;
  bool folder = false;  // Links followed.
};

// Appends the entries in the order the system gives, without "." and "..". After an error
// entries holds what was read before it.
std::error_code ListFolder(std::u16string_view path, std::vector<FolderEntry>& entries);

}  // namespace Platform
