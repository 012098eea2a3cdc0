#include "TFFramework/ControlBase/XmlReader.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "TFFramework/Utilities/Storage/StringT.h"

namespace TF {
namespace {

std::span<const unsigned char> BytesOf(std::string_view text) {
  return {reinterpret_cast<const unsigned char*>(text.data()), text.size()};
}

// Writes the events down, texts in one piece, and can be told to fail at an element.
class Recorder : public XmlHandler {
 public:
  void OnStartElement(std::u16string_view name, const XmlAttributes& attributes) override {
    mEvents += '<' + ToUtf8(name);
    for (const char16_t* key : {u"a", u"b", u"c"}) {
      if (const auto value = attributes.Find(key)) mEvents += ' ' + ToUtf8(key) + '=' + ToUtf8(*value);
    }
    mEvents += '>';
    ++mStarted;
    if (name == mFailAt) throw std::runtime_error("handler");
  }
  void OnEndElement(std::u16string_view name) override { mEvents += "</" + ToUtf8(name) + '>'; }
  void OnCharacterData(std::u16string_view text) override {
    mEvents += ToUtf8(text);
    mUnits += text.size();
  }

  std::u16string mFailAt;
  std::string mEvents;
  std::size_t mStarted = 0;
  std::size_t mUnits = 0;
};

std::string EventsOf(std::string_view document, TFRESULT expected = kSuccess) {
  Recorder recorder;
  XmlReader reader(recorder);
  EXPECT_EQ(reader.Parse(BytesOf(document)), expected) << document;
  return recorder.mEvents;
}

std::string InUtf16(const std::u16string& text) {
  return "\xFF\xFE" + std::string(reinterpret_cast<const char*>(text.data()), text.size() * 2);
}

TEST(XmlReaderTest, HandsOnElementsAttributesAndTexts) {
  EXPECT_EQ(EventsOf("<r><x b=\"2\" zz=\"9\" a=\" 1 \" c=\"\"/>t &amp; u\r\nv<!-- no --></r>"),
            "<r><x a= 1  b=2 c=></x>t & u\nv</r>");
}

TEST(XmlReaderTest, ReadsEveryEncodingThatTheParserDetects) {
  EXPECT_EQ(EventsOf("<r a=\"\u00E4\">\u65E5\U0001D11E</r>"), "<r a=\u00E4>\u65E5\U0001D11E</r>");
  EXPECT_EQ(EventsOf("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><r a=\"\xE4\">\xFC</r>"),
            "<r a=\u00E4>\u00FC</r>");
  EXPECT_EQ(EventsOf(InUtf16(u"<?xml version=\"1.0\" encoding=\"UTF-16\"?><r>\u65E5\U0001D11E</r>")),
            "<r>\u65E5\U0001D11E</r>");
}

TEST(XmlReaderTest, RefusesDocumentsThatDoNotParse) {
  const std::string documents[] = {"",
                                   "text",
                                   "<r>",
                                   "<r></s>",
                                   "<r a='1' a='2'/>",
                                   "<r>\xFF</r>",
                                   "<r/><r/>",
                                   "<?xml version=\"1.0\" encoding=\"Shift_JIS\"?><r/>",
                                   InUtf16(u"<?xml version=\"1.0\" encoding=\"UTF-8\"?><r/>"),
                                   "<r>&undefined;</r>",
                                   std::string("<r>\0</r>", 8)};
  for (const std::string& document : documents) EventsOf(document, kFailure);
}

TEST(XmlReaderTest, TellsWhatIsWrongAndWhereAndForgetsItWithTheNextDocument) {
  Recorder recorder;
  XmlReader reader(recorder);
  ASSERT_EQ(reader.Parse(BytesOf("<r>\n\n<x></y></r>")), kFailure);
  EXPECT_EQ(reader.GetErrorText(), "mismatched tag");
  EXPECT_EQ(reader.GetErrorLine(), 3U);
  EXPECT_EQ(recorder.mEvents, "<r>\n\n<x>");
  ASSERT_EQ(reader.Parse(BytesOf("<r/>")), kSuccess);
  EXPECT_EQ(reader.GetErrorText(), "");
  EXPECT_EQ(reader.GetErrorLine(), 0U);
}

TEST(XmlReaderTest, AHandlersExceptionComesOutAndEndsTheReading) {
  Recorder recorder;
  recorder.mFailAt = u"x";
  XmlReader reader(recorder);
  for (const char* document : {"<r><x/>text<y/></r>", "<r><x>text</x><y/></r>"}) {
    recorder.mEvents.clear();
    EXPECT_THROW(reader.Parse(BytesOf(document)), std::runtime_error);
    EXPECT_EQ(recorder.mEvents, "<r><x>");
  }
  recorder.mFailAt.clear();
  EXPECT_EQ(reader.Parse(BytesOf("<r><x/></r>")), kSuccess);
}

std::string Nested(std::uint32_t depth) {
  std::string document;
  for (std::uint32_t i = 0; i < depth; ++i) document += "<e>";
  for (std::uint32_t i = 0; i < depth; ++i) document += "</e>";
  return document;
}

TEST(XmlReaderTest, NestingHasALimit) {
  EventsOf(Nested(XmlReader::kDeepestNesting));
  Recorder recorder;
  XmlReader reader(recorder);
  EXPECT_EQ(reader.Parse(BytesOf(Nested(1'000'000))), kFailure);
  EXPECT_EQ(recorder.mStarted, XmlReader::kDeepestNesting);
  EXPECT_EQ(reader.GetErrorText(), "the elements nest too deeply");
}

// Each entity holds the one before it so many times.
std::string EntityChain(int entities, int repeats) {
  std::string document = "<!DOCTYPE r [<!ENTITY e0 \"0123456789\">";
  for (int i = 1; i < entities; ++i) {
    document += "<!ENTITY e" + std::to_string(i) + " \"";
    for (int k = 0; k < repeats; ++k) document += "&e" + std::to_string(i - 1) + ';';
    document += "\">";
  }
  return document + "]><r>&e" + std::to_string(entities - 1) + ";</r>";
}

TEST(XmlReaderTest, EntitiesAreReplacedWithinLimits) {
  constexpr auto kMost = static_cast<int>(XmlReader::kMostEntities);
  EXPECT_EQ(EventsOf(EntityChain(kMost, 1)), "<r>0123456789</r>");
  EventsOf(EntityChain(kMost + 1, 1), kFailure);
  EventsOf(EntityChain(100'000, 1), kFailure);

  Recorder recorder;
  XmlReader reader(recorder);
  EXPECT_EQ(reader.Parse(BytesOf(EntityChain(10, 10))), kFailure);
  EXPECT_LT(recorder.mUnits, 16U << 20);
}

TEST(XmlReaderTest, ExternalEntitiesAreNotRead) {
  EXPECT_EQ(EventsOf("<!DOCTYPE r [<!ENTITY f SYSTEM \"/etc/passwd\">]><r>&f;</r>"), "<r></r>");
}

TEST(XmlReaderTest, HugeAttributesAndTextsArriveWhole) {
  const std::string huge(10 << 20, 'x');
  Recorder recorder;
  XmlReader reader(recorder);
  ASSERT_EQ(reader.Parse(BytesOf("<r a=\"" + huge + "\">" + huge + "</r>")), kSuccess);
  EXPECT_EQ(recorder.mUnits, huge.size());
  EXPECT_EQ(recorder.mEvents.size(), 2 * huge.size() + std::string("<r a=></r>").size());
}

TEST(XmlReaderTest, ADocumentCutAnywhereFailsAndKeepsWhatCameBefore) {
  const std::string whole = "<r><x a=\"\u00E4\">text &lt; \u65E5</x><y/>\n</r>";
  const std::string events = EventsOf(whole);
  for (std::size_t size = 0; size < whole.size(); ++size) {
    const std::string part = EventsOf(whole.substr(0, size), kFailure);
    EXPECT_EQ(part, events.substr(0, part.size())) << size;
  }
}

}  // namespace
}  // namespace TF
