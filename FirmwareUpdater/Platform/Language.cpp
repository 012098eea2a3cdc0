#include "Platform/Language.h"

#include <array>
#include <cstdlib>
#include <string>

namespace Platform {

namespace {

struct LanguageEntry {
  std::string_view locale;  // Language, "_", region.
  std::uint32_t number;
};

// The first entry of a language is its main region.
constexpr std::array kLanguages{
    LanguageEntry{"ar_SA", 0x0401}, LanguageEntry{"ar_EG", 0x0C01}, LanguageEntry{"bg_BG", 0x0402},
    LanguageEntry{"ca_ES", 0x0403}, LanguageEntry{"cs_CZ", 0x0405}, LanguageEntry{"da_DK", 0x0406},
    LanguageEntry{"de_DE", 0x0407}, LanguageEntry{"de_CH", 0x0807}, LanguageEntry{"de_AT", 0x0C07},
    LanguageEntry{"de_LU", 0x1007}, LanguageEntry{"de_LI", 0x1407}, LanguageEntry{"el_GR", 0x0408},
    LanguageEntry{"en_US", 0x0409}, LanguageEntry{"en_GB", 0x0809}, LanguageEntry{"en_AU", 0x0C09},
    LanguageEntry{"en_CA", 0x1009}, LanguageEntry{"en_NZ", 0x1409}, LanguageEntry{"en_IE", 0x1809},
    LanguageEntry{"en_ZA", 0x1C09}, LanguageEntry{"en_IN", 0x4009}, LanguageEntry{"es_ES", 0x0C0A},
    LanguageEntry{"es_MX", 0x080A}, LanguageEntry{"es_GT", 0x100A}, LanguageEntry{"es_CR", 0x140A},
    LanguageEntry{"es_PA", 0x180A}, LanguageEntry{"es_VE", 0x200A}, LanguageEntry{"es_CO", 0x240A},
    LanguageEntry{"es_PE", 0x280A}, LanguageEntry{"es_AR", 0x2C0A}, LanguageEntry{"es_EC", 0x300A},
    LanguageEntry{"es_CL", 0x340A}, LanguageEntry{"es_UY", 0x380A}, LanguageEntry{"es_US", 0x540A},
    LanguageEntry{"et_EE", 0x0425}, LanguageEntry{"fi_FI", 0x040B}, LanguageEntry{"fr_FR", 0x040C},
    LanguageEntry{"fr_BE", 0x080C}, LanguageEntry{"fr_CA", 0x0C0C}, LanguageEntry{"fr_CH", 0x100C},
    LanguageEntry{"fr_LU", 0x140C}, LanguageEntry{"he_IL", 0x040D}, LanguageEntry{"hr_HR", 0x041A},
    LanguageEntry{"hu_HU", 0x040E}, LanguageEntry{"id_ID", 0x0421}, LanguageEntry{"is_IS", 0x040F},
    LanguageEntry{"it_IT", 0x0410}, LanguageEntry{"it_CH", 0x0810}, LanguageEntry{"ja_JP", 0x0411},
    LanguageEntry{"ko_KR", 0x0412}, LanguageEntry{"lt_LT", 0x0427}, LanguageEntry{"lv_LV", 0x0426},
    LanguageEntry{"nb_NO", 0x0414}, LanguageEntry{"nl_NL", 0x0413}, LanguageEntry{"nl_BE", 0x0813},
    LanguageEntry{"nn_NO", 0x0814}, LanguageEntry{"no_NO", 0x0414}, LanguageEntry{"pl_PL", 0x0415},
    LanguageEntry{"pt_PT", 0x0816}, LanguageEntry{"pt_BR", 0x0416}, LanguageEntry{"ro_RO", 0x0418},
    LanguageEntry{"ru_RU", 0x0419}, LanguageEntry{"sk_SK", 0x041B}, LanguageEntry{"sl_SI", 0x0424},
    LanguageEntry{"sv_SE", 0x041D}, LanguageEntry{"sv_FI", 0x081D}, LanguageEntry{"th_TH", 0x041E},
    LanguageEntry{"tr_TR", 0x041F}, LanguageEntry{"uk_UA", 0x0422}, LanguageEntry{"vi_VN", 0x042A},
    LanguageEntry{"zh_CN", 0x0804}, LanguageEntry{"zh_TW", 0x0404}, LanguageEntry{"zh_HK", 0x0C04},
    LanguageEntry{"zh_SG", 0x1004}, LanguageEntry{"zh_MO", 0x1404},
};

constexpr std::size_t kLanguageLetters = 2;

char AsciiCase(char character, char first, char target) {
  const auto offset = static_cast<unsigned char>(character - first);
  return offset < 26 ? static_cast<char>(target + offset) : character;
}

// "DE-at.UTF-8@euro" becomes "de_AT".
std::string PlainLocale(std::string_view locale) {
  std::string plain(locale.substr(0, locale.find_first_of(".@")));
  for (std::size_t i = 0; i < plain.size(); ++i) {
    if (plain[i] == '-') plain[i] = '_';
    plain[i] = i < kLanguageLetters ? AsciiCase(plain[i], 'A', 'a') : AsciiCase(plain[i], 'a', 'A');
  }
  return plain;
}

}  // namespace

std::uint32_t LanguageOfLocale(std::string_view locale) {
  const std::string plain = PlainLocale(locale);
  for (const auto& entry : kLanguages) {
    if (entry.locale == plain) return entry.number;
  }
  const std::string language = plain.substr(0, plain.find('_'));
  for (const auto& entry : kLanguages) {
    if (entry.locale.substr(0, kLanguageLetters) == language) return entry.number;
  }
  return kEnglishUnitedStates;
}

std::uint32_t UserLanguage() {
  for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    const char* value = std::getenv(name);
    if (value != nullptr && value[0] != '\0') return LanguageOfLocale(value);
  }
  return kEnglishUnitedStates;
}

}  // namespace Platform
