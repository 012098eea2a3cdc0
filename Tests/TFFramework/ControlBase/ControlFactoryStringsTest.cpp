#include <gtest/gtest.h>

#include <cstdint>
#include <span>
#include <string>

#include "TFFramework/ControlBase/ControlFactory.h"
#include "TFFramework/Utilities/Storage/Resources.h"
#include "Tests/Support/LogCapture.h"
#include "Tests/Support/TemporaryFolder.h"

namespace TF {
namespace {

// What a table has for a key, told apart from having nothing.
const char* const kAbsent = "(absent)";

std::string TextOf(const RCPtr<LStringTable>& table, const char16_t* key) {
  String text;
  return table && table->GetString(key, text) ? ToUtf8(text) : kAbsent;
}

std::string Locale(const char* lcid, const std::string& text) {
  return std::string("<Locale LCID=\"") + lcid + "\">" + text + "</Locale>";
}

// A document whose one section has one key with these translations.
std::string Document(const char* section, const std::string& locales) {
  return std::string("<R><StringTable ID=\"") + section + "\"><String ID=\"K\">" + locales +
         "</String></StringTable></R>";
}

class ControlFactoryStringsTest : public testing::Test {
 protected:
  void TearDown() override { SetResources({}); }

  TFRESULT Load(const std::string& framework, const std::string& application, std::uint32_t language) {
    mFolder.WriteFile("framework.xml", framework);
    mFolder.WriteFile("application.xml", application);
    return mFactory->LoadStrings(String(mFolder.InnerEntry("framework.xml")),
                                 String(mFolder.InnerEntry("application.xml")), language);
  }

  // The text of "K" after a document of the framework alone, in English.
  std::string LoadOne(const std::string& framework) {
    mFactory = MakeRC<LControlFactory>(u"Tessel");
    EXPECT_EQ(Load(framework, "<R/>", 0x0009), kSuccess);
    return FrameworkText();
  }

  std::string FrameworkText(const char16_t* key = u"K") {
    return TextOf(mFactory->GetFrameworkStrings(), key);
  }
  std::string ApplicationText(const char16_t* key = u"K") {
    return TextOf(mFactory->GetApplicationStrings(), key);
  }

  TestSupport::TemporaryFolder mFolder;
  RCPtr<LControlFactory> mFactory = MakeRC<LControlFactory>(u"Tessel");
};

TEST_F(ControlFactoryStringsTest, EachDocumentFallsBackFromTheLanguageToEnglish) {
  const std::string german = Locale("0x0007", "de"), english = Locale("0x0009", "en");
  const std::string swiss = Locale("0x0807", "ch");
  const std::string traditional = Locale("0x7C04", "hant"), simplified = Locale("0x0004", "hans");
  const struct {
    std::uint32_t mLanguage;
    std::string mFramework, mApplication;
    const char *mFrameworkText, *mApplicationText;
  } cases[] = {
      {0x0407, german + english, english, "de", "en"},
      {0x0407, german + english, german + english, "de", "de"},
      {0x0407, english, german + english, "en", "en"},
      {0x0407, english, german, "en", kAbsent},
      {0x0807, german + swiss + english, german + swiss + english, "ch", "ch"},
      {0x0807, german + swiss + english, german + english, "ch", "en"},
      {0x0409, english, english, "en", "en"},
      {0x0009, english, english, "en", "en"},
      {0x041D, german + english, german + english, "en", "en"},
      {0x0804, traditional + simplified + english, simplified, "hans", "hans"},
      {0x0404, traditional + simplified + english, traditional, "hant", "hant"},
      {0x0C04, traditional + simplified + english, english, "hant", "en"},
      {0x1404, traditional + simplified + english, english, "hant", "en"},
      {0x1404, simplified + english, simplified, "en", kAbsent},
      {0x0407, "", german + english, kAbsent, "en"},
  };
  for (const auto& item : cases) {
    mFactory = MakeRC<LControlFactory>(u"Tessel");
    ASSERT_EQ(
        Load(Document("Framework", item.mFramework), Document("|Tessel", item.mApplication), item.mLanguage),
        kSuccess);
    EXPECT_EQ(FrameworkText(), item.mFrameworkText) << item.mLanguage << item.mFramework;
    EXPECT_EQ(ApplicationText(), item.mApplicationText) << item.mLanguage << item.mApplication;
  }
}

TEST_F(ControlFactoryStringsTest, OneMatchMakesAPassGoodAndNothingIsFilledIn) {
  ASSERT_EQ(Load("<R><StringTable ID='Framework'><String ID='K'>" + Locale("0x0009", "en") +
                     "</String><String ID='L'>" + Locale("0x0007", "de") + Locale("0x0009", "en") +
                     "</String></StringTable></R>",
                 "<R/>", 0x0407),
            kSuccess);
  EXPECT_EQ(FrameworkText(u"L"), "de");
  EXPECT_EQ(FrameworkText(u"K"), kAbsent);
}

TEST_F(ControlFactoryStringsTest, TextsAreKeptAndCollectedAsTheyStand) {
  const std::string en = "<Locale LCID='0x0009'>";
  const struct {
    std::string mLocales;
    const char* mText;
  } cases[] = {
      {Locale("0x0009", "  two  "), "  two  "},
      {Locale("0x0009", "  "), "  "},
      {Locale("0x0009", "a\r\n\n b &amp;&#x20;\"<![CDATA[<c>]]>"), "a\n\n b & \"<c>"},
      {Locale("0x0009", ""), ""},
      {"<Locale LCID='0x0009'/>", ""},
      {"", kAbsent},
      {Locale("0x0007", "de"), kAbsent},
      {Locale("9", "decimal"), "decimal"},
      {Locale("0X0009", "capital"), kAbsent},
      {Locale("0x00099", "fifth digit"), "fifth digit"},
      {"<Locale>no number</Locale>", kAbsent},
      {Locale("0x0009", "a") + Locale("0x0007", "-") + Locale("0x0009", "b"), "ab"},
      {"before" + Locale("0x0009", "a") + "behind", "a"},
      {en + "a<x/>b</Locale>", "a"},
      {en + "a<x>b</x>c</Locale>", "ab"},
      {en + "a<Locale LCID='0x0007'>b</Locale>c</Locale>", "ab"},
      {"<Locale LCID='0x0007'>a" + en + "b</Locale>c</Locale>", "b"},
      {en + "a<!-- b -->c</Locale>", "ac"},
      {"<locale LCID='0x0009'>a</locale>", kAbsent},
  };
  for (const auto& [locales, text] : cases) {
    EXPECT_EQ(LoadOne(Document("Framework", locales)), text) << locales;
  }
}

TEST_F(ControlFactoryStringsTest, ElementsAreTakenByNameAndTheRootIsSkipped) {
  const std::string string = "<String ID='K'>" + Locale("9", "a") + "</String>";
  const struct {
    std::string mDocument;
    const char* mText;
  } cases[] = {
      {"<StringTable ID='Framework'>" + string + "</StringTable>", kAbsent},
      {"<R><x><StringTable ID='Framework'><y>" + string + "</y></StringTable></x></R>", "a"},
      {"<R><StringTable ID='Framework'/>" + string + "</R>", "a"},
      {"<R><stringtable ID='Framework'>" + string + "</stringtable></R>", kAbsent},
      {"<R><StringTable id='Framework'>" + string + "</StringTable></R>", kAbsent},
      {"<R>" + string + "</R>", kAbsent},
      {"<R>" + Locale("9", "a") + "</R>", kAbsent},
      {"<R><StringTable ID='Framework'><String>" + Locale("9", "a") + "</String></StringTable></R>", kAbsent},
  };
  for (const auto& [document, text] : cases) EXPECT_EQ(LoadOne(document), text) << document;
}

TEST_F(ControlFactoryStringsTest, ASectionWithoutTextsIsNotAnAbsentOne) {
  ASSERT_EQ(Load("<R><StringTable ID='Framework'/><StringTable ID='P|c'><String ID='K'/></StringTable></R>",
                 "<R/>", 9),
            kSuccess);
  ASSERT_TRUE(mFactory->GetFrameworkStrings());
  EXPECT_TRUE(mFactory->GetFrameworkStrings()->GetStrings().empty());
  ASSERT_TRUE(mFactory->GetControlStrings(u"P", u"c"));
  EXPECT_FALSE(mFactory->GetControlStrings(u"P", u"c")->HasString(u"K"));
  EXPECT_FALSE(mFactory->GetApplicationStrings());
  EXPECT_FALSE(mFactory->GetControlStrings(u"P", u"d"));
}

TEST_F(ControlFactoryStringsTest, TheSecondDocumentAddsToTheSectionsOfTheFirst) {
  ASSERT_EQ(Load(Document("Framework", Locale("9", "a")),
                 "<R><StringTable ID='Framework'><String ID='K'>" + Locale("9", "b") +
                     "</String><String ID='L'>" + Locale("9", "c") + "</String></StringTable></R>",
                 9),
            kSuccess);
  EXPECT_EQ(FrameworkText(u"K"), "ab");
  EXPECT_EQ(FrameworkText(u"L"), "c");
}

TEST_F(ControlFactoryStringsTest, ControlsFindTheirSectionByTheParentsClassAndTheirName) {
  const std::string application =
      "<R><Application Name='App'>"
      "<StringTable ID='Class|c'><String ID='K'><Locale LCID='9'>below</Locale></String></StringTable>"
      "<StringTable ID='App|c'><String ID='K'><Locale LCID='9'>top</Locale></String></StringTable>"
      "<StringTable ID='|App'><String ID='K'><Locale LCID='9'>app</Locale></String></StringTable>"
      "</Application></R>";
  ASSERT_EQ(Load("<R/>", application, 9), kSuccess);
  EXPECT_EQ(mFactory->GetApplicationName(), u"App");
  EXPECT_EQ(TextOf(mFactory->GetControlStrings(u"Class", u"c"), u"K"), "below");
  EXPECT_EQ(TextOf(mFactory->GetControlStrings(u"", u"c"), u"K"), "top");
  EXPECT_EQ(TextOf(mFactory->GetControlStrings(u"class", u"c"), u"K"), kAbsent);
  EXPECT_EQ(ApplicationText(), "app");
}

TEST_F(ControlFactoryStringsTest, TheNameHoldsUntilADocumentNamesTheApplication) {
  ASSERT_EQ(Load("<R/>", "<R><Application/></R>", 9), kSuccess);
  EXPECT_EQ(mFactory->GetApplicationName(), u"Tessel");
  ASSERT_EQ(Load("<Application Name='Root'/>", "<R/>", 9), kSuccess);
  EXPECT_EQ(mFactory->GetApplicationName(), u"Tessel");
  // A document in no language that is asked for still names it.
  ASSERT_EQ(Load("<R/>", "<R><Application Name='App'/></R>", 0x0407), kSuccess);
  EXPECT_EQ(mFactory->GetApplicationName(), u"App");
}

TEST_F(ControlFactoryStringsTest, AMissingKeyLeavesTheTextAndATableOutlivesItsFactory) {
  LoadOne(Document("Framework", Locale("9", "a")));
  const auto table = mFactory->GetFrameworkStrings();
  mFactory = nullptr;
  String text(u"default");
  EXPECT_FALSE(table->GetString(u"k", text));
  EXPECT_EQ(text, u"default");
  EXPECT_TRUE(table->HasString(u"K"));
  EXPECT_EQ(TextOf(table, u"K"), "a");
}

TEST_F(ControlFactoryStringsTest, ResourcesAreNamedInUpperCaseWithoutDots) {
  const std::string framework = Document("Framework", Locale("9", "f"));
  const std::string application = Document("|Tessel", Locale("9", "a"));
  const auto bytes = [](const std::string& text) {
    return std::span(reinterpret_cast<const unsigned char*>(text.data()), text.size());
  };
  const Resource resources[] = {{u"TFXML", u"MY_FILE_XML", bytes(framework)},
                                {u"OTHER", u"APP", bytes(framework)},
                                {u"TFXML", u"APP", bytes(application)}};
  SetResources(resources);
  EXPECT_EQ(mFactory->LoadStrings(u"::My.file_xml", u"::app", 9), kSuccess);
  EXPECT_EQ(FrameworkText(), "f");
  EXPECT_EQ(ApplicationText(), "a");
}

TEST_F(ControlFactoryStringsTest, AResourceThatIsNotThereIsNoFailure) {
  mFolder.WriteFile("application.xml", Document("|Tessel", Locale("7", "de") + Locale("9", "en")));
  EXPECT_EQ(mFactory->LoadStrings(u"::NONE", String(mFolder.InnerEntry("application.xml")), 0x0407),
            kSuccess);
  EXPECT_FALSE(mFactory->GetFrameworkStrings());
  EXPECT_EQ(ApplicationText(), "en");
  EXPECT_EQ(mFactory->LoadStrings(u"::", u"::/etc/passwd", 9), kSuccess);
}

TEST_F(ControlFactoryStringsTest, AFileThatCannotBeReadIsAFailure) {
  const String good(mFolder.InnerPath() + u"\\good.xml");
  const String missing(mFolder.InnerPath() + u"\\missing.xml");
  mFolder.WriteFile("good.xml", Document("Framework", Locale("9", "a")));
  EXPECT_EQ(mFactory->LoadStrings(good, missing, 9), kFailure);
  EXPECT_EQ(FrameworkText(), "a");
  EXPECT_EQ(mFactory->LoadStrings(missing, good, 9), kFailure);
  EXPECT_EQ(mFactory->LoadStrings(u"", good, 9), kFailure);
  EXPECT_EQ(mFactory->LoadStrings(String(mFolder.InnerPath()), good, 9), kFailure);
  EXPECT_EQ(FrameworkText(), "a");
}

TEST_F(ControlFactoryStringsTest, AFaultIsRecordedWithItsLineAndKeepsWhatCameBefore) {
  TestSupport::LogCapture log;
  const std::string broken = "<R>\n<StringTable ID='Framework'><String ID='K'>" + Locale("9", "a") +
                             "</String>\n<String ID='L'>" + Locale("9", "b") + "</Bad></StringTable></R>";
  EXPECT_EQ(LoadOne(broken), "a");
  EXPECT_EQ(FrameworkText(u"L"), "b");
  EXPECT_TRUE(log.Contains("mismatched tag in line 3"));
}

TEST_F(ControlFactoryStringsTest, AFaultBehindTheFirstMatchDoesNotChooseAnotherLanguage) {
  const std::string broken =
      "<R><StringTable ID='Framework'><String ID='K'>" + Locale("7", "de") + Locale("9", "en") + "</String><";
  ASSERT_EQ(Load(broken, "<R/>", 0x0407), kSuccess);
  EXPECT_EQ(FrameworkText(), "de");
}

TEST_F(ControlFactoryStringsTest, ADocumentCutAtEachKilobyteKeepsATrueBeginning) {
  const std::string start = "<Locale LCID=\"9\">";
  std::string document = "<R><StringTable ID='Framework'>";
  for (int i = 0; i < 400; ++i) {
    document += "<String ID='K" + std::to_string(i) + "'>" + start + "text \u65E5 " + std::to_string(i) +
                "</Locale>" + Locale("7", "other") + "</String>\n";
  }
  document += "</StringTable></R>";
  LoadOne(document);
  const auto whole = mFactory->GetFrameworkStrings()->GetStrings();
  ASSERT_EQ(whole.size(), 400U);
  for (std::size_t size = 1024; size < document.size(); size += 1024) {
    const std::string part = document.substr(0, size);
    LoadOne(part);
    const auto texts = mFactory->GetFrameworkStrings()->GetStrings();
    std::size_t started = 0, cut = 0;
    for (std::size_t at = part.find(start); at != part.npos; at = part.find(start, at + 1)) ++started;
    for (const auto& [key, text] : texts) {
      EXPECT_TRUE(whole.at(key).View().starts_with(text.View())) << size;
      if (!(whole.at(key) == text)) ++cut;
    }
    EXPECT_EQ(texts.size(), started) << size;
    EXPECT_LE(cut, 1U) << size;
  }
}

TEST_F(ControlFactoryStringsTest, HugeTextsAndNamesAreTaken) {
  const std::string huge(10 << 20, 'x');
  EXPECT_EQ(LoadOne(Document("Framework", Locale("9", huge))), huge);
  LoadOne("<R><StringTable ID='" + huge + "'/><StringTable ID='Framework'><String ID='K' other='" + huge +
          "'>" + Locale("9", "a") + "</String></StringTable></R>");
  EXPECT_EQ(FrameworkText(), "a");
}

}  // namespace
}  // namespace TF
