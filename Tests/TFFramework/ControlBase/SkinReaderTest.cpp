#include "TFFramework/ControlBase/SkinReader.h"

#include <fmt/format.h>

#include "Tests/TFFramework/ControlBase/SkinDocumentFixture.h"

namespace TF {
namespace {

using SkinReaderTest = SkinDocumentFixture;

const char* const kDropped = "(dropped)";
const char* const kNoRecord = nullptr;

const std::string kRedPart =
    "<Colorizers><Colorizer Name='red' ColorType='SolidFill' Color='FFFF0000'/></Colorizers>";
const std::string kPart = kRedPart +
                          "<Parts><Part Name='p' Width='1' Height='2' ResizeType='Stretch' "
                          "ColorizerName='red'/></Parts>";

std::string Describe(const RCPtr<LColorizer>& colorizer) {
  return fmt::format("{} {:08X} {:08X} {:g},{:g} {:g},{:g}", static_cast<int>(colorizer->mType),
                     colorizer->mColor.ToPacked(), colorizer->mEndColor.ToPacked(), colorizer->mStartX,
                     colorizer->mStartY, colorizer->mEndX, colorizer->mEndY);
}

TEST_F(SkinReaderTest, ColorizersAreSolidUnlessTheirGradientIsComplete) {
  const struct {
    const char *mAttributes, *mColorizer, *mRecord;
  } cases[] = {
      {"ColorType='SolidFill' Color='0xFF006991'", "0 FF006991 00000000 0,0 0,0", kNoRecord},
      {"ColorType='LinearGradient' Color='FF010203' GradientEndColor='80FFFFFF' GradientStartX='0.5' "
       "GradientStartY='-1' GradientEndX='2' GradientEndY='.25'",
       "1 FF010203 80FFFFFF 0.5,-1 2,0.25", kNoRecord},
      {"ColorType='RadialGradient' Color='11' GradientEndColor='22' GradientStartX='1' GradientStartY='x' "
       "GradientEndX='3' GradientEndY='4'",
       "2 11000000 22000000 1,0 3,4", kNoRecord},
      {"ColorType='LinearGradient' Color='FF010203' GradientEndColor='80FFFFFF' GradientStartX='0.5' "
       "GradientStartY='-1' GradientEndX='2'",
       "0 FF010203 00000000 0,0 0,0", "the gradient is dropped"},
      {"ColorType='anything' Color='abc'", "0 00000000 00000000 0,0 0,0", kNoRecord},
      {"ColorType='SolidFill'", kDropped, "it has no attribute \"Color\""},
      {"Color='FF010203'", kDropped, "it has no attribute \"ColorType\""},
  };
  for (const auto& [attributes, colorizer, record] : cases) {
    TestSupport::LogCapture log;
    ASSERT_EQ(Load(SkinDocument(std::string("<Colorizer Name='c' ") + attributes + "/>")), kSuccess);
    const auto found = Contents().mColorizers.find(u"c");
    EXPECT_EQ(found == Contents().mColorizers.end() ? kDropped : Describe(found->second), colorizer);
    EXPECT_TRUE(record ? log.Contains(record) : log.Text().empty()) << attributes << log.Text();
  }
}

std::string Describe(const RectT<std::int32_t>& rect) {
  return fmt::format("{},{} {}x{}", rect.mX, rect.mY, rect.mWidth, rect.mHeight);
}

std::string Describe(const LVisualPartDescriptor& part) {
  return fmt::format("{}x{} {} image '{}' {} color '{}' {:g} mask '{}' {}", part.mSize.mWidth,
                     part.mSize.mHeight, static_cast<int>(part.mResizeType), ToUtf8(part.mImageFile),
                     Describe(part.mImageRect), part.mColorizer ? ToUtf8(part.mColorizer->mName) : "",
                     part.mColorizerAlphaMod, ToUtf8(part.mMaskFile), Describe(part.mMaskRect));
}

TEST_F(SkinReaderTest, APartIsAPictureOrAColourAndElseDropped) {
  const std::string size = "Width='10' Height='20' ";
  const std::string base = size + "ResizeType='Tile' ";
  const std::string none = "image '' 0,0 0x0 ", noMask = " mask '' 0,0 0x0";
  const struct {
    std::string mAttributes, mPart;
    const char* mRecord;
  } cases[] = {
      {base + "ImageFile='Sheet.PNG' ImageLocX='3' ImageLocY='0x10'",
       "10x20 1 image 'sheet.png' 3,16 10x20 color '' 1" + noMask, kNoRecord},
      {base + "ColorizerName='red' ColorizerAlphaMod='0.5'", "10x20 1 " + none + "color 'red' 0.5" + noMask,
       kNoRecord},
      {size +
           "ResizeType='Center' ColorizerName='red' ColorizerMaskFile='Mask.PNG' MaskLocX='1' MaskLocY='2'",
       "10x20 2 " + none + "color 'red' 1 mask 'Mask.PNG' 1,2 10x20", kNoRecord},
      {size + "ResizeType='tile' ColorizerName='red' ImageFile='a' ImageLocX='1'",
       "10x20 0 " + none + "color 'red' 1" + noMask, "the picture is dropped: its place is not complete"},
      {base + "ColorizerName='red' ColorizerMaskFile='m' MaskLocY='1'",
       "10x20 1 " + none + "color 'red' 1" + noMask, "the mask is dropped: its place is not complete"},
      {base + "ColorizerName='blue' ImageFile='a' ImageLocX='1' ImageLocY='2'",
       "10x20 1 image 'a' 1,2 10x20 color '' 1" + noMask, "there is no colorizer \"blue\" before it"},
      {base + "ImageFile='a' ImageLocX='1'", kDropped, "neither a colorizer nor a picture"},
      {base + "ImageFile='' ImageLocX='1' ImageLocY='1'", kDropped, "neither a colorizer nor a picture"},
      {base + "ColorizerName='Red'", kDropped, "neither a colorizer nor a picture"},
      {size + "ColorizerName='red'", kDropped, "it has no attribute \"ResizeType\""},
      {"Width='1' ResizeType='Tile' ColorizerName='red'", kDropped, "it has no attribute \"Height\""},
      {"Width='x' Height='-1' ResizeType='' ColorizerName='red'", "0x-1 0 " + none + "color 'red' 1" + noMask,
       kNoRecord},
  };
  for (const auto& [attributes, part, record] : cases) {
    TestSupport::LogCapture log;
    ASSERT_EQ(Load(SkinDocument(kRedPart + "\n<Part Name='p' " + attributes + "/>")), kSuccess);
    const auto found = Contents().mParts.find(u"p");
    EXPECT_EQ(found == Contents().mParts.end() ? kDropped : Describe(*found->second), part) << attributes;
    EXPECT_TRUE(record ? log.Contains(record) && log.Contains("skin: line 2: Part \"p\": ")
                       : log.Text().empty())
        << attributes << log.Text();
  }
}

std::string Describe(const RCPtr<LDockedPart>& part) {
  if (!part) return "-";
  return fmt::format("{} {}{}{}{} {},{},{},{} {}x{}", ToUtf8(part->mPart->mName), part->mHasLeft ? "L" : "",
                     part->mHasTop ? "T" : "", part->mHasRight ? "R" : "", part->mHasBottom ? "B" : "",
                     part->OffsetLeft, part->OffsetTop, part->OffsetRight, part->OffsetBottom,
                     part->Width.value_or(-1), part->Height.value_or(-1));
}

std::string Describe(const LLookDescriptor& look) {
  std::string text = "client " + Describe(look.mClientPart);
  for (const auto& part : look.mNonClientParts) text += "; " + Describe(part);
  if (!look.mHasText) return text;
  return text + fmt::format("; text {} {:g}{:+} {:g}{:+} {:g} {:g}{:+} {:g}{:+} {:g}",
                            ToUtf8(look.TextForegroundPart->mName), look.TextLeftRel, look.TextLeftAbs,
                            look.TextRightRel, look.TextRightAbs, look.TextHAlign, look.TextTopRel,
                            look.TextTopAbs, look.TextBottomRel, look.TextBottomAbs, look.TextVAlign);
}

TEST_F(SkinReaderTest, LooksTakeTheirPartsAndTheirText) {
  const std::string edges = "OffsetLeft='1' OffsetTop='2' OffsetRight='-3' OffsetBottom='-4'";
  const std::string text =
      "TextLeftRel='0.1' TextLeftAbs='1' TextRightRel='0.2' TextRightAbs='-2' TextHAlign='0.5' "
      "TextTopRel='0.3' TextTopAbs='3' TextBottomRel='0.4' TextBottomAbs='-4' TextVAlign='1'";
  const struct {
    std::string mElements, mLook;
    const char* mRecord;
  } cases[] = {
      {"", "client -", kNoRecord},
      {"<ClientPart Name='p' " + edges + "/>", "client p LTRB 1,2,-3,-4 -1x-1", kNoRecord},
      {"<ClientPart Name='p' OffsetLeft='1' OffsetTop='1' OffsetRight='1'/>", "client -",
       "no attribute \"OffsetBottom\""},
      {"<ClientPart Name='q' " + edges + "/>", "client -",
       "ClientPart \"q\": dropped: there is no part \"q\""},
      {"<ClientPart " + edges + "/>", "client -", "no attribute \"Name\""},
      {"<ClientPart Name='p' " + edges +
           "/><ClientPart Name='p' OffsetLeft='0' OffsetTop='0' OffsetRight='0' OffsetBottom='0'/>",
       "client p LTRB 0,0,0,0 -1x-1", "the earlier one of this look is dropped"},
      {"<NonClientParts Name='n'><NonClientPart Name='p' OffsetLeft='5' OffsetBottom='0' Width='7' "
       "Height='0'/>"
       "<NonClientPart Name='q'/><NonClientPart Name='p' " +
           edges + " Width='-1' Height='8'/></NonClientParts>",
       "client -; p LB 5,0,0,0 7x-1; p LTRB 1,2,-3,-4 -1x8",
       "NonClientPart \"q\": dropped: there is no part"},
      {"<NonClientPart Name='p'/>", "client -; p  0,0,0,0 -1x-1", kNoRecord},
      {"<TextProperties TextForegroundPart='p' " + text + "/>",
       "client -; text p 0.1+1 0.2-2 0.5 0.3+3 0.4-4 1", kNoRecord},
      {"<TextProperties TextForegroundPart='q' " + text + "/>", "client -",
       "there is no part \"q\" before it"},
      {"<TextProperties " + text + "/>", "client -", "no attribute \"TextForegroundPart\""},
      {"<TextProperties TextForegroundPart='p' " + text.substr(0, text.rfind(' ')) + "/>", "client -",
       "no attribute \"TextVAlign\""},
      {"<Look/><ClientPart Name='p' " + edges + "/>", "client p LTRB 1,2,-3,-4 -1x-1",
       "no attribute \"Name\""},
      {"<Look Name='m'/><NonClientPart Name='p'/>", "client -", kNoRecord},
  };
  for (const auto& [elements, look, record] : cases) {
    TestSupport::LogCapture log;
    ASSERT_EQ(Load(SkinDocument(kPart + "<Looks><Look Name='l'>" + elements + "</Look></Looks>")), kSuccess);
    EXPECT_EQ(Describe(*Contents().mLooks.find(u"l")->second), look) << elements;
    EXPECT_TRUE(record ? log.Contains(record) : log.Text().empty()) << elements << log.Text();
  }
}

std::string Slots(const NameMap<LLookList>& lists) {
  std::string text;
  for (const auto& [name, list] : lists) {
    text += ToUtf8(name) + ":";
    for (const auto& look : *list) text += " " + (look ? ToUtf8(look->mName) : "-");
    text += ";";
  }
  return text;
}

TEST_F(SkinReaderTest, LookListsFillTheirSlots) {
  const std::string list = "<LookList Name='L' NumLooks='3'>", end = "</LookList>";
  const struct {
    std::string mElements, mSlots;
    const char* mRecord;
  } cases[] = {
      {list + "<Look Name='b' Index='1'/><Look Name='a' Index='0'/>" + end, "L: a b -;", kNoRecord},
      {list + "<Look Name='a' Index='0'/><Look Name='a' Index='2'/><Look Name='b' Index='0'/>" + end,
       "L: b - a;", kNoRecord},
      {list + "<Look Name='a' Index='0'/><Look Name='c' Index='0'/>" + end, "L: a - -;",
       "Look \"c\": dropped: there is no such look"},
      {list + "<Look Name='a' Index='3'/><Look Name='b' Index='-1'/>" + end, "L: - - -;",
       "slot 3 is none of 3"},
      {list + "<Look Name='a' Index='99999999999'/>" + end, "L: - - -;", "slot 2147483647"},
      {list + "<Look Name='a'/><Look Index='0'/>" + end, "L: - - -;", "no attribute \"Index\""},
      {list + end + "<LookList Name='L'><Look Name='a' Index='2'/>" + end, "L: - - a;", kNoRecord},
      {list + end +
           "<LookList Name='M' NumLooks='1'/><LookList Name='L' NumLooks='-1'><Look Name='a' Index='0'/>" +
           end,
       "L: a - -;M: -;", kNoRecord},
      {list + end + "<LookList Name='M'><Look Name='a' Index='0'/>" + end, "L: a - -;",
       "no attribute \"NumLooks\""},
      {list + end + "<LookList NumLooks='1'><Look Name='a' Index='0'/>" + end, "L: a - -;",
       "no attribute \"Name\""},
      {list + end + "<LookList Name='M' NumLooks='-1'><Look Name='a' Index='1'/>" + end, "L: - a -;",
       "it cannot have -1 looks"},
      {"<LookList Name='M' NumLooks='2147483647'><Look Name='a' Index='1'/>" + end, "",
       "cannot have 2147483647 looks"},
      {"<LookList Name='M' NumLooks='many'><Look Name='a' Index='0'/>" + end, "M:;", "slot 0 is none of 0"},
      {list + end + "<LookLists/><Look Name='a' Index='0'/>", "L: - - -;", "it stands in no look list"},
  };
  for (const auto& [elements, slots, record] : cases) {
    TestSupport::LogCapture log;
    ASSERT_EQ(Load(SkinDocument("<Looks><Look Name='a'/><Look Name='b'/></Looks>" + elements)), kSuccess);
    EXPECT_EQ(Slots(Contents().mLookLists), slots) << elements;
    EXPECT_TRUE(record ? log.Contains(record) : log.Text().empty()) << elements << log.Text();
  }
}

TEST_F(SkinReaderTest, OfTwoThingsOfOneNameOneStays) {
  ASSERT_EQ(Load(SkinDocument(
                kPart + "<Colorizer Name='red' ColorType='' Color='FF00FF00'/>"
                        "<Part Name='p' Width='9' Height='9' ResizeType='' ColorizerName='red'/>"
                        "<Looks><Look Name='l'><NonClientPart Name='p'/></Look><Look Name='l'/></Looks>")),
            kSuccess);
  EXPECT_EQ(Contents().mColorizers.find(u"red")->second->mColor.ToPacked(), 0xFFFF0000U);
  EXPECT_EQ(Contents().mParts.find(u"p")->second->mSize.mWidth, 9);
  EXPECT_EQ(Describe(*Contents().mLooks.find(u"l")->second), "client -");
  EXPECT_TRUE(mLog.Contains("Colorizer \"red\": dropped: the name is taken"));
  EXPECT_TRUE(mLog.Contains("Look \"l\": the earlier one of this name is dropped"));
}

std::string Describe(const RCPtr<LSkinDescriptor>& skin) {
  if (!skin) return "-";
  return fmt::format("{} {} '{}' {:g} {} {}{}", ToUtf8(skin->mName), skin->mLookList ? "looks" : "no looks",
                     ToUtf8(skin->mFontName), skin->mFontSize, skin->mFontStyle,
                     skin->mFontInherits ? "i" : "", skin->mFontSizeRelative ? "r" : "");
}

TEST_F(SkinReaderTest, TheFontOfAControlComesThroughItsNestedSkin) {
  const struct {
    const char *mAttributes, *mNested, *mSkin;
  } cases[] = {
      {"FontName='Arial' FontSize='8.25' FontStyle='3'", "<Skin Name='s' LookList='L'/>",
       "s looks 'Arial' 8.25 3 "},
      {"FontName='Arial'", "", "-"},
      {"", "<Skin/>", " no looks '' 0 -1 "},
      {"FontSizeIsRelative='True' FontSize='0.5' FontInheritsFromParent='True'", "<Skin LookList='M'/>",
       " no looks '' 0.5 -1 ir"},
      {"FontSizeIsRelative='True'", "<Skin/>", " no looks '' 0 -1 "},
      {"FontName='Old'", "<Skin/>", " no looks 'New' 0 -1 "},
      {"FontName='Other'", "<Skin/>", " no looks 'Other' 0 -1 "},
  };
  for (const auto& [attributes, nested, skin] : cases) {
    ASSERT_EQ(
        Load(SkinDocument(
            std::string(
                "<LookList Name='L' NumLooks='1'/><Skin><FontLocale LCID='7'><FontXLat Name='Other' "
                "XLat='No'/></FontLocale><FontLocale LCID='0'><FontXLat Name='Old' XLat='New'/></FontLocale>"
                "<SubControl Class='C' Name='n' FontStyle='9' FontName='Before'/>"
                "<SubControl Class='C' Name='n' ") +
            attributes + ">" + nested + "</SubControl></Skin>")),
        kSuccess);
    EXPECT_EQ(Describe(Skin()->mSubControls[1]->mSkin), skin) << attributes;
  }
  EXPECT_TRUE(mLog.Contains("the look list is dropped: there is no look list \"M\" before it"));
}

TEST_F(SkinReaderTest, TheFontOfASkinIsTranslatedUntilTheNextSkin) {
  ASSERT_EQ(
      Load(SkinDocument("<Skin Name='a' FontName='Old' FontSize='9' FontStyle='1'><FontLocale LCID='0'>"
                        "<FontXLat Name='Old' XLat='New'/></FontLocale></Skin>"
                        "<Skin Name='b' FontName='Old'><SubControl Class='C' Name='n' FontName='Old'><Skin/>"
                        "</SubControl></Skin>")),
      kSuccess);
  EXPECT_EQ(Describe(Skin(0)->mSkin), "a no looks 'New' 9 1 ");
  EXPECT_EQ(Describe(Skin(1)->mSkin), "b no looks 'Old' 0 -1 ");
  EXPECT_EQ(Describe(Skin(1)->mSubControls[0]->mSkin), " no looks 'Old' 0 -1 ");
}

TEST_F(SkinReaderTest, ParametersKeepTheLastPieceOfTheirText) {
  const std::string open = "<Skin><SubControl Class='C' Name='n'><CreateParamList>",
                    close = "</SubControl></Skin>";
  const std::string end = "</CreateParamList>" + close;
  const struct {
    std::string mElements;
    std::map<std::string, std::string> mParams;
  } cases[] = {
      {open + "<CreateParam ID='A'> a </CreateParam><CreateParam ID='B'>b</CreateParam>" + end,
       {{"A", " a "}, {"B", "b"}}},
      {open + "<CreateParam ID='A'>a&amp;b</CreateParam>" + end, {{"A", "b"}}},
      {open + "<CreateParam ID='A'>a</CreateParam><CreateParam ID='A'>b</CreateParam>" + end, {{"A", "b"}}},
      {open +
           "<CreateParam ID='A'>a</CreateParam>between<CreateParam "
           "ID=''>b</CreateParam><CreateParam>c</CreateParam>" +
           end,
       {{"A", "a"}}},
      {open + "<CreateParam ID='A'/>" + end, {}},
  };
  for (const auto& [elements, params] : cases) {
    ASSERT_EQ(Load(SkinDocument(elements)), kSuccess);
    const auto table = Skin()->mSubControls[0]->mCreateParams;
    ASSERT_TRUE(table) << elements;
    std::map<std::string, std::string> found;
    for (const auto& [key, text] : table->GetStrings()) found[ToUtf8(key)] = ToUtf8(text);
    EXPECT_EQ(found, params) << elements;
  }
  EXPECT_TRUE(mLog.Contains("its identifier is empty"));
}

std::string Tree(const RCPtr<LControlDescriptor>& control) {
  std::string text = ToUtf8(control->mName);
  if (control->mSubControls.GetCount() == 0) return text;
  text += "(";
  for (const auto& child : control->mSubControls) {
    EXPECT_EQ(child->mParent, control.Get());
    text += (text.back() == '(' ? "" : " ") + Tree(child);
  }
  return text + ")";
}

std::string Child(const char* name, int order, const std::string& children = "") {
  return fmt::format("<SubControl Class='C' Name='{}' LayoutOrder='{}'><Skin>{}</Skin></SubControl>", name,
                     order, children);
}

TEST_F(SkinReaderTest, ChildrenStandInTheirLayoutOrderAndTopLevelControlsInTheDocuments) {
  ASSERT_EQ(Load(SkinDocument("<Skin>" +
                              Child("b", 2,
                                    Child("z", 1) + Child("y", 0, Child("q", 1) + Child("p", -1)) +
                                        Child("x", 1) + Child("w", 0)) +
                              Child("a", 1) + "</Skin><Skin>" + Child("c", 0) + "</Skin>")),
            kSuccess);
  EXPECT_EQ(Tree(Skin(0)), "App(b(y(p q) w z x) a)");
  EXPECT_EQ(Tree(Skin(1)), "App(c)");
  EXPECT_EQ(Skin(0)->mClass, u"Application");
  EXPECT_EQ(mLog.Text(), "");
}

TEST_F(SkinReaderTest, ElementsOutOfPlaceAreDroppedWithARecord) {
  const struct {
    std::string mElements;
    const char *mTrees, *mRecord;
  } cases[] = {
      {"<SubControl Class='C' Name='n'><Skin>" + Child("a", 0) + "</Skin></SubControl><Skin>" +
           Child("b", 0) + "</Skin>",
       "App(b)", "SubControl \"n\": dropped: it stands in no skin"},
      {"<Skin Name='s'><Skin Name='t'>" + Child("a", 0) + "</Skin>" + Child("b", 0) + "</Skin>" +
           Child("c", 0),
       "App(a b)", "Skin \"t\": dropped: it stands in no control"},
      {"<CreateParamList><CreateParam ID='A'>a</CreateParam></CreateParamList>", "",
       "CreateParamList \"\": dropped"},
      {"<Skin><CreateParam ID='A'>a</CreateParam></Skin>", "App",
       "CreateParam \"\": dropped: it stands in no list"},
      {"<ClientPart Name='p' OffsetLeft='0' OffsetTop='0' OffsetRight='0' OffsetBottom='0'/>", "",
       "in no look"},
      {"<NonClientPart Name='p'/>", "", "in no look"},
      {"<Look Name='l' Index='0'/>", "", "in no look list"},
      {"<FontXLat Name='A' XLat='B'/><Skin FontName='A'/>", "App", kNoRecord},
      {"<Skin><Skins>" + Child("a", 0) + "</Skins></Skin>", "App(a)", kNoRecord},
      {"<skin>" + Child("a", 0) + "</skin>", "", "skin \"\": dropped: there is no such element"},
      {"<Skin><SubControl Class='C' Name='n'><Unknown Name='u'>" + Child("a", 0) +
           "</Unknown></SubControl></Skin>",
       "App(n(a))", "Unknown \"u\": dropped: there is no such element"},
  };
  for (const auto& [elements, trees, record] : cases) {
    TestSupport::LogCapture log;
    ASSERT_EQ(Load(SkinDocument(kPart + elements)), kSuccess);
    std::string found;
    for (const auto& skin : Contents().mSkins) found += Tree(skin);
    EXPECT_EQ(found, trees) << elements;
    EXPECT_TRUE(record ? log.Contains(record) : log.Text().empty()) << elements << log.Text();
  }
  for (const char* root : {"SubControl", "Skin", "Looks", "CreateParamList", "CreateParam"}) {
    EXPECT_EQ(Load(fmt::format("<{0}><Skin>{1}</Skin></{0}>", root, Child("a", 0))), kSuccess);
    EXPECT_EQ(Tree(Skin()), "Tessel(a)") << root;
  }
}

TEST_F(SkinReaderTest, AControlWithoutClassOrNameEndsTheLoad) {
  for (const char* attributes : {"Class='C'", "Name='n'", ""}) {
    TestSupport::LogCapture log;
    try {
      Load(SkinDocument("<Skin>" + Child("a", 0) + "\n<SubControl " + attributes + "/>" + Child("b", 0) +
                        "</Skin>"));
      FAIL() << attributes;
    } catch (const std::runtime_error& error) {
      EXPECT_TRUE(
          std::string(error.what())
              .starts_with("Runtime Error : Bad Subcontrol Element : TF::LControlFactory::XMLStartElement"));
    }
    EXPECT_EQ(Tree(Skin()), "App(a)");
    EXPECT_TRUE(log.Contains("skin: line 2: SubControl"));
  }
}

// Some 100 of everything.
std::string LargeDocument() {
  std::string parts, looks, lists, controls;
  for (int i = 0; i < 100; ++i) {
    parts += fmt::format("<Part Name='p{}' Width='1' Height='1' ResizeType='' ColorizerName='red'/>\n", i);
    looks += fmt::format("<Look Name='l{}'><NonClientPart Name='p{}'/></Look>\n", i, i);
    lists += fmt::format("<LookList Name='L{}' NumLooks='1'><Look Name='l{}' Index='0'/></LookList>\n", i, i);
    controls += fmt::format(
        "<SubControl Class='C' Name='n{0}'><Skin LookList='L{0}'><SubControl Class='C' "
        "Name='m'/></Skin></SubControl>\n",
        i);
  }
  return SkinDocument(kRedPart + "<Parts>" + parts + "</Parts><Looks>" + looks + "</Looks><LookLists>" +
                      lists + "</LookLists><Skins><Skin>" + controls + "</Skin></Skins>");
}

TEST_F(SkinReaderTest, ADocumentCutAtEachKilobyteKeepsATrueBeginning) {
  const std::string document = LargeDocument();
  ASSERT_EQ(Load(document), kSuccess);
  ASSERT_EQ(Skin()->mSubControls.GetCount(), 100);
  EXPECT_EQ(mLog.Text(), "");
  std::size_t known = 0;
  for (std::size_t size = 0; size < document.size(); size += 1024) {
    ASSERT_EQ(Load(document.substr(0, size)), kFailure) << size;
    const std::size_t controls = Skin() ? static_cast<std::size_t>(Skin()->mSubControls.GetCount()) : 0;
    const std::size_t things =
        Contents().mParts.size() + Contents().mLooks.size() + Contents().mLookLists.size() + controls;
    EXPECT_GE(things, known) << size;
    known = things;
    mFactory->FindControlDescriptor(u"n5");
  }
  EXPECT_GT(known, 380U);
  EXPECT_TRUE(mLog.Contains("skin: line "));
}

TEST_F(SkinReaderTest, EveryEncodingOfTheParserIsRead) {
  const std::u16string wide = u"\xFEFF<?xml version='1.0' encoding='UTF-16'?><R><Skin Name='\u00E4'/></R>";
  const std::string documents[] = {
      "<?xml version='1.0' encoding='utf-8' standalone='yes'?><R><Skin Name='\u00E4'/></R>",
      "<?xml version='1.0' encoding='ISO-8859-1'?><R><Skin Name='\xE4'/></R>",
      std::string(reinterpret_cast<const char*>(wide.data()), wide.size() * 2)};
  for (const std::string& document : documents) {
    EXPECT_EQ(Load(document), kSuccess);
    EXPECT_EQ(Skin()->mSkin->mName, u"\u00E4");
  }
  EXPECT_EQ(Load("<?xml version='1.0' encoding='Shift_JIS'?><R><Skin/></R>"), kFailure);
}

TEST_F(SkinReaderTest, HugeAttributesAreTakenAndStayOutOfTheRecords) {
  const std::string huge(10 << 20, 'x');
  ASSERT_EQ(Load(SkinDocument("<Skin Name='" + huge + "'><SubControl Class='C' Name='n' XSizeAbs='" +
                              std::string(10 << 20, '9') + "' TextDecoration='" + huge +
                              "'/></Skin><Part Name='" + huge + "'/>")),
            kSuccess);
  EXPECT_EQ(Skin()->mSkin->mName.Length(), 10 << 20);
  EXPECT_EQ(Skin()->mSubControls[0]->mLayout->Axis(LayoutAxis::kX).mSize.mAbs, 2147483647.0);
  EXPECT_TRUE(mLog.Contains("no attribute"));
  EXPECT_LT(mLog.Text().size(), 1000U);
}

TEST_F(SkinReaderTest, ControlsNestAsDeeplyAsElementsMay) {
  const auto nested = [](std::size_t depth) {
    std::string document = "<R><Skin>";
    for (std::size_t i = 0; i < depth; ++i) document += "<SubControl Class='C' Name='n'><Skin>";
    for (std::size_t i = 0; i < depth; ++i) document += "</Skin></SubControl>";
    return document + "</Skin></R>";
  };
  const std::size_t deepest = (XmlReader::kDeepestNesting - 2) / 2;
  ASSERT_EQ(Load(nested(deepest)), kSuccess);
  EXPECT_EQ(Load(nested(deepest + 1)), kFailure);
  EXPECT_EQ(Load(nested(100'000)), kFailure);
  EXPECT_TRUE(mLog.Contains("the elements nest too deeply"));
}

}  // namespace
}  // namespace TF
