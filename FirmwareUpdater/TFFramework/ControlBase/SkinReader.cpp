#include "TFFramework/ControlBase/SkinReader.h"

#include <fmt/format.h>

#include <algorithm>
#include <stdexcept>

#include "TFFramework/ControlBase/AttributeRules.h"
#include "TFFramework/ControlBase/LayoutAttributes.h"
#include "TFFramework/Utilities/Storage/DiagnosticsLog.h"

namespace TF {

namespace {

constexpr std::u16string_view kApplicationClass = u"Application";
constexpr std::size_t kLongestRecordedName = 80;

std::string Quoted(std::u16string_view name) {
  return '"' + ToUtf8(name.substr(0, kLongestRecordedName)) + '"';
}

template <class T>
RCPtr<T> FindNamed(const NameMap<T>& map, std::u16string_view name) {
  const auto found = map.find(name);
  return found == map.end() ? nullptr : found->second;
}

void StoreColorizerType(LColorizer& colorizer, std::u16string_view text) {
  if (text == u"LinearGradient") colorizer.mType = ColorizerType::kLinearGradient;
  if (text == u"RadialGradient") colorizer.mType = ColorizerType::kRadialGradient;
}

void StoreResizeType(LVisualPartDescriptor& part, std::u16string_view text) {
  if (text == u"Tile") part.mResizeType = ResizeType::kTile;
  if (text == u"Center") part.mResizeType = ResizeType::kCenter;
}

template <auto Offset, auto Flag>
void StoreEdge(LDockedPart& part, std::u16string_view text) {
  part.*Offset = ParseInt(text);
  part.*Flag = true;
}

template <auto... Path>
constexpr auto InColorizer = StoreAt<LColorizer, Path...>;
template <auto... Path>
constexpr auto InPart = StoreAt<LVisualPartDescriptor, Path...>;
template <auto... Path>
constexpr auto InDocked = StoreAt<LDockedPart, Path...>;
template <auto... Path>
constexpr auto InLook = StoreAt<LLookDescriptor, Path...>;
template <auto... Path>
constexpr auto InFont = StoreAt<FontAttributes, Path...>;

constexpr AttributeRule<LColorizer> kColorizerRules[] = {
    {u"Name", InColorizer<&LColorizer::mName>},
    {u"ColorType", StoreColorizerType},
    {u"Color", InColorizer<&LColorizer::mColor>},
};

constexpr AttributeRule<LColorizer> kGradientRules[] = {
    {u"GradientEndColor", InColorizer<&LColorizer::mEndColor>},
    {u"GradientStartX", InColorizer<&LColorizer::mStartX>},
    {u"GradientStartY", InColorizer<&LColorizer::mStartY>},
    {u"GradientEndX", InColorizer<&LColorizer::mEndX>},
    {u"GradientEndY", InColorizer<&LColorizer::mEndY>},
};

constexpr auto kPartSize = &LVisualPartDescriptor::mSize;
constexpr auto kImageRect = &LVisualPartDescriptor::mImageRect;
constexpr auto kMaskRect = &LVisualPartDescriptor::mMaskRect;
using Rect = RectT<std::int32_t>;
using Size = SizeT<std::int32_t>;

constexpr AttributeRule<LVisualPartDescriptor> kPartRules[] = {
    {u"Name", InPart<&LVisualPartDescriptor::mName>},
    {u"Width", InPart<kPartSize, &Size::mWidth>},
    {u"Height", InPart<kPartSize, &Size::mHeight>},
    {u"ResizeType", StoreResizeType},
};

constexpr AttributeRule<LVisualPartDescriptor> kAlphaModRules[] = {
    {u"ColorizerAlphaMod", InPart<&LVisualPartDescriptor::mColorizerAlphaMod>},
};

constexpr AttributeRule<LVisualPartDescriptor> kImagePlaceRules[] = {
    {u"ImageLocX", InPart<kImageRect, &Rect::mX>},
    {u"ImageLocY", InPart<kImageRect, &Rect::mY>},
};

constexpr AttributeRule<LVisualPartDescriptor> kMaskPlaceRules[] = {
    {u"MaskLocX", InPart<kMaskRect, &Rect::mX>},
    {u"MaskLocY", InPart<kMaskRect, &Rect::mY>},
};

constexpr AttributeRule<LDockedPart> kEdgeRules[] = {
    {u"OffsetLeft", StoreEdge<&LDockedPart::OffsetLeft, &LDockedPart::mHasLeft>},
    {u"OffsetTop", StoreEdge<&LDockedPart::OffsetTop, &LDockedPart::mHasTop>},
    {u"OffsetRight", StoreEdge<&LDockedPart::OffsetRight, &LDockedPart::mHasRight>},
    {u"OffsetBottom", StoreEdge<&LDockedPart::OffsetBottom, &LDockedPart::mHasBottom>},
};

constexpr AttributeRule<LDockedPart> kOwnSizeRules[] = {
    {u"Width", InDocked<&LDockedPart::Width>},
    {u"Height", InDocked<&LDockedPart::Height>},
};

constexpr AttributeRule<LLookDescriptor> kTextRules[] = {
    {u"TextLeftRel", InLook<&LLookDescriptor::TextLeftRel>},
    {u"TextLeftAbs", InLook<&LLookDescriptor::TextLeftAbs>},
    {u"TextRightRel", InLook<&LLookDescriptor::TextRightRel>},
    {u"TextRightAbs", InLook<&LLookDescriptor::TextRightAbs>},
    {u"TextHAlign", InLook<&LLookDescriptor::TextHAlign>},
    {u"TextTopRel", InLook<&LLookDescriptor::TextTopRel>},
    {u"TextTopAbs", InLook<&LLookDescriptor::TextTopAbs>},
    {u"TextBottomRel", InLook<&LLookDescriptor::TextBottomRel>},
    {u"TextBottomAbs", InLook<&LLookDescriptor::TextBottomAbs>},
    {u"TextVAlign", InLook<&LLookDescriptor::TextVAlign>},
};

constexpr AttributeRule<FontAttributes> kFontRules[] = {
    {u"FontName", InFont<&FontAttributes::mFontName>},
    {u"FontSize", InFont<&FontAttributes::mFontSize>},
    {u"FontStyle", InFont<&FontAttributes::mFontStyle>},
};

constexpr AttributeRule<FontAttributes> kFontOriginRules[] = {
    {u"FontInheritsFromParent", InFont<&FontAttributes::mFontInherits>},
    {u"FontSizeIsRelative", InFont<&FontAttributes::mFontSizeRelative>},
};

}  // namespace

struct SkinReader::ElementRule {
  using Start = void (SkinReader::*)(const XmlAttributes& attributes);
  using End = void (SkinReader::*)();

  std::u16string_view mName;
  Start mStart;  // Null for an element that only encloses others.
  End mEnd;      // May be null.

  static const ElementRule* Find(std::u16string_view name);
};

const SkinReader::ElementRule* SkinReader::ElementRule::Find(std::u16string_view name) {
  static constexpr ElementRule kRules[] = {
      {u"SubControl", &SkinReader::StartSubControl, &SkinReader::EndSubControl},
      {u"Skin", &SkinReader::StartSkin, &SkinReader::EndSkin},
      {u"Look", &SkinReader::StartLook, nullptr},
      {u"NonClientPart", &SkinReader::StartNonClientPart, nullptr},
      {u"ClientPart", &SkinReader::StartClientPart, nullptr},
      {u"NonClientParts", nullptr, nullptr},
      {u"TextProperties", &SkinReader::StartTextProperties, nullptr},
      {u"LookList", &SkinReader::StartLookList, nullptr},
      {u"Part", &SkinReader::StartPart, nullptr},
      {u"Colorizer", &SkinReader::StartColorizer, nullptr},
      {u"CreateParam", &SkinReader::StartParam, &SkinReader::EndParam},
      {u"CreateParamList", &SkinReader::StartParams, &SkinReader::EndParams},
      {u"FontXLat", &SkinReader::StartFontTranslation, nullptr},
      {u"FontLocale", &SkinReader::StartFontLocale, nullptr},
      {u"Application", &SkinReader::StartApplication, nullptr},
      {u"Colorizers", nullptr, nullptr},
      {u"Parts", nullptr, nullptr},
      {u"Looks", &SkinReader::StartLooks, &SkinReader::EndLooks},
      {u"LookLists", &SkinReader::StartLookLists, nullptr},
      {u"Skins", nullptr, nullptr},
  };
  for (const ElementRule& rule : kRules) {
    if (rule.mName == name) return &rule;
  }
  return nullptr;
}

SkinReader::SkinReader(SkinContents& contents, const String& applicationName, const String& folder,
                       std::uint32_t language)
    : mContents(contents), mApplicationName(applicationName), mFolder(folder), mLanguage(language) {}

TFRESULT SkinReader::Read(std::span<const unsigned char> document) {
  const TFRESULT result = mReader.Parse(document);
  if (Failed(result)) {
    LogRecord(fmt::format("skin: line {}: {}", mReader.GetErrorLine(), mReader.GetErrorText()));
  }
  return result;
}

void SkinReader::OnStartElement(std::u16string_view name, const XmlAttributes& attributes) {
  if (!mRootSeen) {
    mRootSeen = true;
    return;
  }
  mElement = name;
  mElementName = attributes.Find(u"Name").value_or(u"");
  const ElementRule* rule = ElementRule::Find(name);
  if (!rule) return RecordDropped("there is no such element");
  if (rule->mStart) (this->*rule->mStart)(attributes);
}

void SkinReader::OnEndElement(std::u16string_view name) {
  const ElementRule* rule = ElementRule::Find(name);
  if (rule && rule->mEnd) (this->*rule->mEnd)();
}

void SkinReader::OnCharacterData(std::u16string_view text) {
  if (mCurrentParams && mCurrentParamId) (*mCurrentParams)[*mCurrentParamId] = text;
}

void SkinReader::StartApplication(const XmlAttributes& attributes) {
  if (const auto name = attributes.Find(u"Name")) mApplicationName = *name;
}

void SkinReader::StartColorizer(const XmlAttributes& attributes) {
  if (const auto missing = FindMissing(attributes, kColorizerRules)) return RecordMissing(*missing);
  const auto colorizer = MakeRC<LColorizer>();
  ReadPresent(attributes, kColorizerRules, *colorizer);
  if (colorizer->mType != ColorizerType::kSolidFill) {
    if (FindMissing(attributes, kGradientRules)) {
      colorizer->mType = ColorizerType::kSolidFill;
      Record("the gradient is dropped: it is not complete");
    } else {
      ReadPresent(attributes, kGradientRules, *colorizer);
    }
  }
  if (!mContents.mColorizers.try_emplace(colorizer->mName, colorizer).second) {
    RecordDropped("the name is taken");
  }
}

void SkinReader::StartPart(const XmlAttributes& attributes) {
  if (const auto missing = FindMissing(attributes, kPartRules)) return RecordMissing(*missing);
  const auto part = MakeRC<LVisualPartDescriptor>();
  ReadPresent(attributes, kPartRules, *part);
  ReadPresent(attributes, kAlphaModRules, *part);
  ReadPicture(attributes, *part);
  ReadMask(attributes, *part);
  ReadColorizerName(attributes, *part);
  if (!part->mColorizer && part->mImageFile.IsEmpty()) {
    return RecordDropped("it has neither a colorizer nor a picture");
  }
  RCPtr<LVisualPartDescriptor>& place = mContents.mParts[part->mName];
  if (place) Record("the earlier one of this name is dropped");
  place = part;
}

void SkinReader::ReadPicture(const XmlAttributes& attributes, LVisualPartDescriptor& part) {
  const auto file = attributes.Find(u"ImageFile");
  if (!file || file->empty()) return;
  if (FindMissing(attributes, kImagePlaceRules)) {
    return Record("the picture is dropped: its place is not complete");
  }
  ReadPresent(attributes, kImagePlaceRules, part);
  part.mImageFile = mFolder + String(*file).ToLower();
  part.mImageRect.mWidth = part.mSize.mWidth;
  part.mImageRect.mHeight = part.mSize.mHeight;
}

void SkinReader::ReadMask(const XmlAttributes& attributes, LVisualPartDescriptor& part) {
  const auto file = attributes.Find(u"ColorizerMaskFile");
  if (!file || file->empty()) return;
  if (FindMissing(attributes, kMaskPlaceRules)) {
    return Record("the mask is dropped: its place is not complete");
  }
  ReadPresent(attributes, kMaskPlaceRules, part);
  part.mMaskFile = mFolder + String(*file);
  part.mMaskRect.mWidth = part.mSize.mWidth;
  part.mMaskRect.mHeight = part.mSize.mHeight;
}

void SkinReader::ReadColorizerName(const XmlAttributes& attributes, LVisualPartDescriptor& part) {
  const auto name = attributes.Find(u"ColorizerName");
  if (!name) return;
  part.mColorizer = FindNamed(mContents.mColorizers, *name);
  if (!part.mColorizer) RecordUnknown("colorizer", *name);
}

void SkinReader::StartLooks(const XmlAttributes&) {
  mInLooks = true;
}

void SkinReader::EndLooks() {
  mInLooks = false;
}

void SkinReader::StartLook(const XmlAttributes& attributes) {
  if (!mInLooks) return FillSlot(attributes);
  const auto name = attributes.Find(u"Name");
  if (!name) return RecordMissing(u"Name");
  mCurrentLook = MakeRC<LLookDescriptor>();
  mCurrentLook->mName = *name;
  RCPtr<LLookDescriptor>& place = mContents.mLooks[mCurrentLook->mName];
  if (place) Record("the earlier one of this name is dropped");
  place = mCurrentLook;
}

void SkinReader::StartClientPart(const XmlAttributes& attributes) {
  const auto part = FindPart(attributes, u"Name");
  if (!part) return;
  if (const auto missing = FindMissing(attributes, kEdgeRules)) return RecordMissing(*missing);
  if (!mCurrentLook) return RecordDropped("it stands in no look");
  const auto docked = MakeRC<LDockedPart>();
  docked->mPart = part;
  ReadPresent(attributes, kEdgeRules, *docked);
  if (mCurrentLook->mClientPart) Record("the earlier one of this look is dropped");
  mCurrentLook->mClientPart = docked;
}

void SkinReader::StartNonClientPart(const XmlAttributes& attributes) {
  const auto part = FindPart(attributes, u"Name");
  if (!part) return;
  if (!mCurrentLook) return RecordDropped("it stands in no look");
  const auto docked = MakeRC<LDockedPart>();
  docked->mPart = part;
  ReadPresent(attributes, kEdgeRules, *docked);
  ReadPresent(attributes, kOwnSizeRules, *docked);
  mCurrentLook->mNonClientParts.Add(docked);
}

void SkinReader::StartTextProperties(const XmlAttributes& attributes) {
  const auto part = FindPart(attributes, u"TextForegroundPart");
  if (!part) return;
  if (const auto missing = FindMissing(attributes, kTextRules)) return RecordMissing(*missing);
  if (!mCurrentLook) return RecordDropped("it stands in no look");
  ReadPresent(attributes, kTextRules, *mCurrentLook);
  mCurrentLook->TextForegroundPart = part;
  mCurrentLook->mHasText = true;
}

RCPtr<LVisualPartDescriptor> SkinReader::FindPart(const XmlAttributes& attributes,
                                                  std::u16string_view attribute) {
  const auto name = attributes.Find(attribute);
  if (!name) return RecordMissing(attribute), nullptr;
  RCPtr<LVisualPartDescriptor> part = FindNamed(mContents.mParts, *name);
  if (!part) RecordDropped(fmt::format("there is no part {} before it", Quoted(*name)));
  return part;
}

void SkinReader::StartLookLists(const XmlAttributes&) {
  mCurrentLookList = nullptr;
}

// A list that is dropped leaves the former one open, which then takes its looks.
void SkinReader::StartLookList(const XmlAttributes& attributes) {
  const auto name = attributes.Find(u"Name");
  if (!name) return RecordMissing(u"Name");
  if (const auto known = FindNamed(mContents.mLookLists, *name)) {
    mCurrentLookList = known;
    return;
  }
  const auto number = attributes.Find(u"NumLooks");
  if (!number) return RecordMissing(u"NumLooks");
  const std::int32_t count = ParseInt(*number);
  if (count < 0 || count > kMostLooks) return RecordDropped(fmt::format("it cannot have {} looks", count));
  mCurrentLookList = MakeRC<LLookList>();
  mCurrentLookList->SetCount(count);
  mContents.mLookLists.emplace(*name, mCurrentLookList);
}

void SkinReader::FillSlot(const XmlAttributes& attributes) {
  const auto name = attributes.Find(u"Name");
  if (!name) return RecordMissing(u"Name");
  const auto index = attributes.Find(u"Index");
  if (!index) return RecordMissing(u"Index");
  if (!mCurrentLookList) return RecordDropped("it stands in no look list");
  const auto look = FindNamed(mContents.mLooks, *name);
  if (!look) return RecordDropped("there is no such look before it");
  const std::int32_t slot = ParseInt(*index);
  if (slot < 0 || slot >= mCurrentLookList->GetCount()) {
    return RecordDropped(fmt::format("slot {} is none of {}", slot, mCurrentLookList->GetCount()));
  }
  (*mCurrentLookList)[slot] = look;
}

void SkinReader::StartSkin(const XmlAttributes& attributes) {
  const bool isTopLevel = mOuterControls.empty();
  mOuterControls.push_back(mCurrentControl);
  if (isTopLevel) return StartTopLevelSkin(attributes);
  if (!mCurrentControl || !mCurrentControl->mParent) return RecordDropped("it stands in no control");
  StartNestedSkin(attributes);
}

void SkinReader::EndSkin() {
  if (!mOuterControls.empty()) CloseControl();
}

void SkinReader::StartTopLevelSkin(const XmlAttributes& attributes) {
  mFontTranslations.clear();
  mTopLevelSkin = MakeRC<LSkinDescriptor>();
  mTopLevelSkin->mName = mElementName;
  ReadPresent<FontAttributes>(attributes, kFontRules, *mTopLevelSkin);
  mCurrentControl = MakeRC<LControlDescriptor>();
  mCurrentControl->mName = mApplicationName;
  mCurrentControl->mClass = kApplicationClass;
  mCurrentControl->mSkin = mTopLevelSkin;
  mContents.mSkins.Add(mCurrentControl);
}

void SkinReader::StartNestedSkin(const XmlAttributes& attributes) {
  const auto skin = MakeRC<LSkinDescriptor>();
  skin->mName = mElementName;
  skin->mLookList = FindLookList(attributes);
  static_cast<FontAttributes&>(*skin) = mFont;
  const auto translation = mFontTranslations.find(mFont.mFontName);
  if (translation != mFontTranslations.end()) skin->mFontName = translation->second;
  if (mCurrentControl->mSkin) Record("the earlier one of this control is dropped");
  mCurrentControl->mSkin = skin;
}

RCPtr<LLookList> SkinReader::FindLookList(const XmlAttributes& attributes) {
  const auto name = attributes.Find(u"LookList");
  if (!name) return nullptr;
  RCPtr<LLookList> list = FindNamed(mContents.mLookLists, *name);
  if (!list) RecordUnknown("look list", *name);
  return list;
}

void SkinReader::StartFontLocale(const XmlAttributes& attributes) {
  const auto language = attributes.Find(u"LCID");
  if (!language) return RecordMissing(u"LCID");
  mFontLocale = static_cast<std::uint32_t>(ParseInt(*language));
}

void SkinReader::StartFontTranslation(const XmlAttributes& attributes) {
  if (mFontLocale != mLanguage) return;
  const auto name = attributes.Find(u"Name");
  if (!name) return RecordMissing(u"Name");
  const auto translated = attributes.Find(u"XLat");
  if (!translated) return RecordMissing(u"XLat");
  if (!mFontTranslations.try_emplace(*name, *translated).second) RecordDropped("the name is taken");
  if (mTopLevelSkin && mTopLevelSkin->mFontName == *name) mTopLevelSkin->mFontName = *translated;
}

void SkinReader::StartSubControl(const XmlAttributes& attributes) {
  const auto className = attributes.Find(u"Class");
  const auto name = attributes.Find(u"Name");
  if (!className || !name) {
    Record("the document is dropped from here on: a control without a class or a name");
    Throw<std::runtime_error>("Bad Subcontrol Element", "TF::LControlFactory::XMLStartElement");
  }
  mFont = {};
  ReadPresent(attributes, kFontRules, mFont);
  ReadPresent(attributes, kFontOriginRules, mFont);
  if (!attributes.Find(u"FontSize")) mFont.mFontSizeRelative = false;
  mOuterControls.push_back(mCurrentControl);
  if (!mCurrentControl) return RecordDropped("it stands in no skin");

  const auto control = MakeRC<LControlDescriptor>();
  control->mName = *name;
  control->mClass = *className;
  control->mParent = mCurrentControl.Get();
  control->mLayout = MakeRC<LLayoutDescriptor>();
  ReadLayout(attributes, *className == kApplicationClass, *control->mLayout);
  mCurrentControl->mSubControls.Add(control);
  mCurrentControl = control;
}

void SkinReader::EndSubControl() {
  if (mOuterControls.empty()) return;
  if (mCurrentControl) {
    auto& controls = mCurrentControl->mSubControls;
    std::stable_sort(controls.begin(), controls.end(), [](const auto& left, const auto& right) {
      return left->mLayout->LayoutOrder < right->mLayout->LayoutOrder;
    });
  }
  CloseControl();
}

void SkinReader::CloseControl() {
  mCurrentControl = mOuterControls.back();
  mOuterControls.pop_back();
}

void SkinReader::StartParams(const XmlAttributes&) {
  if (!mCurrentControl) RecordDropped("it stands in no control");
  mCurrentParams.emplace();
}

void SkinReader::EndParams() {
  if (!mCurrentParams) return;
  if (mCurrentControl) mCurrentControl->mCreateParams = MakeRC<LStringTable>(std::move(*mCurrentParams));
  mCurrentParams.reset();
}

void SkinReader::StartParam(const XmlAttributes& attributes) {
  mCurrentParamId.reset();
  const auto id = attributes.Find(u"ID");
  if (!id) return RecordMissing(u"ID");
  if (id->empty()) return RecordDropped("its identifier is empty");
  if (!mCurrentParams) return RecordDropped("it stands in no list");
  mCurrentParamId = String(*id);
}

void SkinReader::EndParam() {
  mCurrentParamId.reset();
}

void SkinReader::RecordDropped(std::string_view reason) {
  Record(fmt::format("dropped: {}", reason));
}

void SkinReader::RecordMissing(std::u16string_view attribute) {
  RecordDropped(fmt::format("it has no attribute {}", Quoted(attribute)));
}

void SkinReader::RecordUnknown(std::string_view kind, std::u16string_view name) {
  Record(fmt::format("the {0} is dropped: there is no {0} {1} before it", kind, Quoted(name)));
}

void SkinReader::Record(const std::string& what) {
  LogRecord(fmt::format("skin: line {}: {} {}: {}", mReader.GetLine(),
                        ToUtf8(std::u16string_view(mElement).substr(0, kLongestRecordedName)),
                        Quoted(mElementName), what));
}

}  // namespace TF
