#include <benchmark/benchmark.h>
#include <zlib.h>

#include <cstdint>
#include <vector>

#include "Engine/Crc32.h"

// Over one packet and over a whole section, beside zlib.

namespace {

std::vector<unsigned char> MakeBytes(std::int64_t size) {
  std::vector<unsigned char> bytes(static_cast<std::size_t>(size));
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<unsigned char>(i * 31);
  return bytes;
}

void OwnCrc32(benchmark::State& state) {
  const auto bytes = MakeBytes(state.range(0));
  for (auto _ : state) benchmark::DoNotOptimize(Crc32(bytes.data(), bytes.size()));
  state.SetBytesProcessed(state.iterations() * state.range(0));
}
BENCHMARK(OwnCrc32)->Arg(240)->Arg(262144);

void ZlibCrc32(benchmark::State& state) {
  const auto bytes = MakeBytes(state.range(0));
  for (auto _ : state) benchmark::DoNotOptimize(crc32(0, bytes.data(), static_cast<uInt>(bytes.size())));
  state.SetBytesProcessed(state.iterations() * state.range(0));
}
BENCHMARK(ZlibCrc32)->Arg(240)->Arg(262144);

}  // namespace
