#include "TFFramework/Application/Version.h"

#include <gtest/gtest.h>

#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "App/Resources/ProgramResources.h"
#include "TFFramework/Utilities/Storage/Resources.h"

namespace {

using TF::RCPtr;
using TF::String;
using TF::Version;
using TF::VersionBlock;

constexpr std::uint32_t kGerman = 0x0407;
constexpr std::uint32_t kAustrian = 0x0C07;
constexpr std::uint32_t kFrench = 0x040C;
constexpr std::uint32_t kEnglish = 0x0409;
constexpr std::uint32_t kSwedish = 0x041D;

std::span<const unsigned char> BytesOf(const std::string& text) {
  return {reinterpret_cast<const unsigned char*>(text.data()), text.size()};
}

// Makes the text the program's version block for a while; without one there is no resource.
class ProgramBlock {
 public:
  explicit ProgramBlock(std::optional<std::string> text) : mText(std::move(text)) {
    if (mText) mResource = {u"VERSION", u"1", BytesOf(*mText)};
    TF::SetResources({&mResource, mText ? 1U : 0U});
  }
  ProgramBlock(const ProgramBlock&) = delete;
  ProgramBlock& operator=(const ProgramBlock&) = delete;
  ~ProgramBlock() { TF::SetResources({}); }

 private:
  const std::optional<std::string> mText;
  TF::Resource mResource;
};

const std::string kTwo =
    "version block\n"
    "translation 0409 04b0\nProductName=Letter\n"
    "translation 0407 04b0\nProductName=Brief \xC3\x9C\nCompanyName=A = B\nEmpty=\n"
    "end\n";

std::string ErrorOf(const std::optional<std::string>& block,
                    const RCPtr<TF::LStringTable>& strings = nullptr) {
  const ProgramBlock program(block);
  try {
    const Version version(strings);
  } catch (const std::runtime_error& error) {
    const std::string text = error.what();
    return text.substr(0, text.find(" : Application\\Version"));
  }
  return "none";
}

TEST(Version, ChoosesTheTranslationByPrimaryLanguage) {
  const std::string neutralFirst =
      "version block\ntranslation 0000 04b0\nProductName=any\ntranslation 0407 04b0\nProductName=de\nend\n";
  const std::string englishLast =
      "version block\ntranslation 0407 04b0\nProductName=de\ntranslation 0809 04b0\nProductName=en\nend\n";
  const std::string twice =
      "version block\ntranslation 0807 04b0\nProductName=ch\ntranslation 0407 04b0\nProductName=de\nend\n";
  const struct {
    const std::string& mBlock;
    std::uint32_t mUser;
    std::uint32_t mSystem;
    const char16_t* mName;
  } cases[] = {
      {kTwo, kGerman, kEnglish, u"Brief \u00DC"}, {kTwo, kAustrian, kEnglish, u"Brief \u00DC"},
      {kTwo, kEnglish, kGerman, u"Letter"},       {kTwo, kFrench, kGerman, u"Brief \u00DC"},
      {kTwo, kFrench, kSwedish, u"Letter"},       {englishLast, kFrench, kSwedish, u"en"},
      {neutralFirst, kFrench, kEnglish, u"any"},  {neutralFirst, kFrench, kAustrian, u"de"},
      {twice, kGerman, kEnglish, u"ch"},
  };
  for (const auto& test : cases) {
    const ProgramBlock program(test.mBlock);
    EXPECT_EQ(Version(nullptr, test.mUser, test.mSystem).GetProductName(), test.mName)
        << std::hex << test.mUser << " " << test.mSystem;
  }
}

TEST(Version, ATextThatTheBlockLacksIsEmpty) {
  const ProgramBlock program(kTwo);
  const Version version(nullptr, kGerman, kGerman);
  EXPECT_EQ(version.GetCompanyName(), u"A = B");
  EXPECT_EQ(version.GetString(u"Empty"), u"");
  EXPECT_EQ(version.GetString(u"companyname"), u"");
  EXPECT_EQ(version.GetProductVersion(), u"");
}

TEST(Version, EachFailureHasItsNumber) {
  const std::string before =
      "Runtime Error : The application encountered problems during startup and will now close.  (Error code "
      "= ";
  const std::string after = ") : TF::Version::Version";
  EXPECT_EQ(ErrorOf(std::nullopt), before + "903" + after);
  EXPECT_EQ(ErrorOf(""), before + "902" + after);
  EXPECT_EQ(ErrorOf("version block\n"), before + "901" + after);
  EXPECT_EQ(ErrorOf("version block\nend\n"), before + "900" + after);
  EXPECT_EQ(ErrorOf(kTwo), "none");
}

TEST(Version, TheStringTableGivesTheErrorsText) {
  using Strings = TF::LStringTable::Strings;
  const auto table = TF::MakeRC<TF::LStringTable>(Strings{{u"EXCEPTION_ID", u"Fehler %d. %s"}});
  EXPECT_EQ(ErrorOf("", table), "Runtime Error : Fehler 902. %s : TF::Version::Version");
  const auto without = TF::MakeRC<TF::LStringTable>(Strings{});
  EXPECT_EQ(ErrorOf("", without), ErrorOf(""));
}

// The block that is linked into the program: the settings' folder and the window's title hang on it.
TEST(VersionBlock, OfTheProgramTellsWhoMadeIt) {
  RegisterProgramResources();
  const auto bytes = TF::FindResource(u"VERSION", u"1");
  TF::SetResources({});
  ASSERT_TRUE(bytes);
  const auto block = VersionBlock::Parse(*bytes);
  ASSERT_TRUE(block);
  ASSERT_EQ(block->GetTranslations().size(), 1U);
  const TF::Translation& translation = block->GetTranslations().front();
  EXPECT_EQ(translation.mLanguage, 0U);
  EXPECT_EQ(translation.mCodePage, 0x04B0U);
  const std::vector<std::pair<String, String>> strings = {
      {u"CompanyName", u"Varnok"},
      {u"ProductName", u"Tessel"},
      {u"ProductVersion", u"1.0.14"},
      {u"FileVersion", u"1.0.14.43588"},
      {u"FileDescription", u"Tessel Firmware Updater"},
      {u"InternalName", u"Tessel Firmware Updater.exe"},
      {u"OriginalFilename", u"Tessel Firmware Updater.exe"}};
  EXPECT_EQ(translation.mStrings, strings);
}

TEST(VersionBlock, IsReadWholeOrNotAtAll) {
  ASSERT_TRUE(VersionBlock::Parse(BytesOf(kTwo)));
  for (std::size_t size = 0; size < kTwo.size(); ++size) {
    // Bytes of their own, so that reading past the cut is seen.
    const std::vector<unsigned char> cut(kTwo.begin(), kTwo.begin() + static_cast<std::ptrdiff_t>(size));
    EXPECT_FALSE(VersionBlock::Parse(cut)) << size;
  }
}

TEST(VersionBlock, RefusesWhatItDoesNotKnow) {
  const std::string bodies[] = {
      "ProductName=before a translation\n",
      "translation 0000 04b0\nno equals sign\n",
      "translation 0000 04b0\n=no key\n",
      "translation 0000 04b0\n\n",
      "translation 000 04b0\n",
      "translation 00000 04b0\n",
      "translation 0000\n",
      "translation 0000-04b0\n",
      "translation 0000 04bg\n",
      "translation -001 04b0\n",
      "translation 0000 04b0\nProductName=\xC3\n",
      "translation 0000 04b0\n\xFF=text\n",
      std::string("translation 0000 04b0\nProductName=a\0b\n", 38),
      "end\n",
  };
  for (const std::string& body : bodies) {
    EXPECT_FALSE(VersionBlock::Parse(BytesOf("version block\n" + body + "end\n"))) << body;
  }
  const std::string large = "version block\ntranslation 0000 04b0\nA=" + std::string(65536, 'a') + "\nend\n";
  EXPECT_FALSE(VersionBlock::Parse(BytesOf(large)));
  EXPECT_FALSE(VersionBlock::Parse(BytesOf("version blocks\ntranslation 0000 04b0\nend\n")));
}

}  // namespace
