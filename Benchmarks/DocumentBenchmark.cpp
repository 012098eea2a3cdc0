#include <benchmark/benchmark.h>
#include <expat.h>

#include <cstdlib>
#include <span>
#include <string>
#include <vector>

#include "App/Resources/ProgramResources.h"
#include "TFFramework/ControlBase/ControlFactory.h"
#include "TFFramework/Utilities/Storage/Resources.h"

// Loading the program's documents, beside a parser that goes over the same bytes and does nothing.

namespace {

using Bytes = std::span<const unsigned char>;

void Require(bool condition) {
  if (!condition) std::abort();
}

// The program's documents, as one that loads them gets them.
Bytes Document(const char16_t* name) {
  static const bool registered = (RegisterProgramResources(), true);
  benchmark::DoNotOptimize(registered);
  const auto bytes = TF::FindResource(u"TFXML", name);
  Require(bytes.has_value());
  return *bytes;
}

void XMLCALL IgnoreStart(void*, const XML_Char*, const XML_Char**) {}
void XMLCALL IgnoreEnd(void*, const XML_Char*) {}
void XMLCALL IgnoreText(void*, const XML_Char*, int) {}

void ParseBare(Bytes document) {
  XML_Parser parser = XML_ParserCreate(nullptr);
  XML_SetElementHandler(parser, IgnoreStart, IgnoreEnd);
  XML_SetCharacterDataHandler(parser, IgnoreText);
  const XML_Status status = XML_Parse(parser, reinterpret_cast<const char*>(document.data()),
                                      static_cast<int>(document.size()), XML_TRUE);
  XML_ParserFree(parser);
  Require(status == XML_STATUS_OK);
}

constexpr const char16_t* kStrings[] = {u"FRAMEWORK_STRINGS", u"APP_STRINGS"};
constexpr const char16_t* kSkin = u"APP_SKINS";
constexpr std::uint32_t kEnglish = 0x0409;

void LoadStringDocuments(benchmark::State& state) {
  Document(kStrings[0]);
  for (auto _ : state) {
    const auto factory = TF::MakeRC<TF::LControlFactory>(u"Tessel");
    Require(factory->LoadStrings(u"::FRAMEWORK_STRINGS", u"::APP_STRINGS", kEnglish) == TF::kSuccess);
  }
}
BENCHMARK(LoadStringDocuments);

void ParseStringDocuments(benchmark::State& state) {
  for (auto _ : state) {
    for (const char16_t* name : kStrings) ParseBare(Document(name));
  }
}
BENCHMARK(ParseStringDocuments);

void LoadSkin(benchmark::State& state) {
  Document(kSkin);
  for (auto _ : state) {
    const auto factory = TF::MakeRC<TF::LControlFactory>(u"Tessel");
    Require(factory->LoadSkins(u"::APP_SKINS") == TF::kSuccess);
  }
}
BENCHMARK(LoadSkin);

void ParseSkin(benchmark::State& state) {
  for (auto _ : state) ParseBare(Document(kSkin));
}
BENCHMARK(ParseSkin);

void LoadAllDocuments(benchmark::State& state) {
  Document(kSkin);
  for (auto _ : state) {
    const auto factory = TF::MakeRC<TF::LControlFactory>(u"Tessel");
    Require(factory->LoadResources(u"::", kEnglish) == TF::kSuccess);
  }
}
BENCHMARK(LoadAllDocuments);

void ParseAllDocuments(benchmark::State& state) {
  for (auto _ : state) {
    for (const char16_t* name : kStrings) ParseBare(Document(name));
    ParseBare(Document(kSkin));
  }
}
BENCHMARK(ParseAllDocuments);

}  // namespace
