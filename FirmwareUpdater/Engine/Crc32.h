#pragma once

#include <cstddef>
#include <cstdint>

// The standard CRC-32: reflected polynomial 0xEDB88320, start value 0xFFFFFFFF, inverted at
// the end. The checksum of image sections and of acknowledged packets. Any thread.
std::uint32_t Crc32(const unsigned char* data, std::size_t size);
