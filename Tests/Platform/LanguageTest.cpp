#include "Platform/Language.h"

#include <gtest/gtest.h>

#include "Tests/Support/ProcessState.h"

namespace Platform {
namespace {

using TestSupport::ScopedEnvironment;

TEST(Language, LocaleNamesHaveFullLanguageNumbers) {
  const struct {
    const char* locale;
    std::uint32_t number;
  } cases[] = {
      {"de_DE", 0x0407},   {"de_DE.UTF-8", 0x0407}, {"de_AT@euro", 0x0C07}, {"de", 0x0407},
      {"de_XX", 0x0407},   {"DE-at", 0x0C07},       {"zh_TW", 0x0404},      {"zh_HK.utf8", 0x0C04},
      {"zh_MO", 0x1404},   {"zh_CN", 0x0804},       {"zh_SG", 0x1004},      {"zh", 0x0804},
      {"en_GB", 0x0809},   {"sv_SE", 0x041D},       {"pt_BR", 0x0416},      {"C", 0x0409},
      {"C.UTF-8", 0x0409}, {"POSIX", 0x0409},       {"", 0x0409},           {"xx_YY", 0x0409},
      {"dex", 0x0409},     {"d", 0x0409},           {"_", 0x0409},          {".UTF-8", 0x0409},
  };
  for (const auto& test : cases) EXPECT_EQ(LanguageOfLocale(test.locale), test.number) << test.locale;
}

TEST(Language, FirstVariableThatIsSetDecides) {
  const struct {
    const char* all;
    const char* messages;
    const char* lang;
    std::uint32_t number;
  } cases[] = {
      {"fr_FR", "de_DE", "it_IT", 0x040C},
      {nullptr, "de_DE", "it_IT", 0x0407},
      {"", "", "it_IT", 0x0410},
      {nullptr, nullptr, nullptr, 0x0409},
      {"C", "de_DE", "it_IT", kEnglishUnitedStates},
  };
  for (const auto& test : cases) {
    const ScopedEnvironment all("LC_ALL", test.all);
    const ScopedEnvironment messages("LC_MESSAGES", test.messages);
    const ScopedEnvironment lang("LANG", test.lang);
    EXPECT_EQ(UserLanguage(), test.number);
  }
}

}  // namespace
}  // namespace Platform
