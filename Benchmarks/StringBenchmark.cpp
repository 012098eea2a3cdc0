#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "TFFramework/Utilities/Storage/StringT.h"

// StringT beside std::u16string, on texts of the length of a file path.

namespace {

constexpr const char16_t* kText = u"\\home\\musician\\Downloads\\ProductionApp.vbin";

template <class Text>
void Copy(benchmark::State& state) {
  const Text text(kText);
  for (auto _ : state) {
    Text copy(text);
    benchmark::DoNotOptimize(copy);
  }
}
BENCHMARK(Copy<TF::String>);
BENCHMARK(Copy<std::u16string>);

template <class Text>
void Append(benchmark::State& state) {
  const Text piece(u"piece of text, ");
  for (auto _ : state) {
    Text text;
    for (int i = 0; i < 16; ++i) text += piece;
    benchmark::DoNotOptimize(text);
  }
}
BENCHMARK(Append<TF::String>);
BENCHMARK(Append<std::u16string>);

template <class Text>
void Compare(benchmark::State& state) {
  const Text left(kText);
  const Text right((std::u16string(kText)));
  for (auto _ : state) {
    bool equal = left == right;
    benchmark::DoNotOptimize(equal);
  }
}
BENCHMARK(Compare<TF::String>);
BENCHMARK(Compare<std::u16string>);

}  // namespace
