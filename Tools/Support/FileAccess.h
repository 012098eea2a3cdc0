#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

// Whole files. Failures are std::runtime_error with a sentence that names the file.
namespace Tools {

// Size of a regular file in bytes.
std::uint64_t FileSize(const std::string& path);

// The bytes of a regular file; one of more than limit bytes is refused before any memory is taken.
std::vector<std::uint8_t> ReadFile(const std::string& path, std::uint64_t limit);

// Puts a file with these bytes in place at once: a reader sees the old file or the new one.
void ReplaceFile(const std::string& path, std::span<const std::uint8_t> bytes);

}  // namespace Tools
