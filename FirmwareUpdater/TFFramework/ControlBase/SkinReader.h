#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "TFFramework/ControlBase/SkinContents.h"
#include "TFFramework/ControlBase/XmlReader.h"
#include "TFFramework/Utilities/Storage/StringTable.h"

namespace TF {

// Reads a skin document into descriptors. An element is known by its name, wherever it stands, and
// can refer only to what stands before it. Whatever is dropped on the way leaves one record in the
// diagnostics, with line and reason.
//
// Threads: one.
class SkinReader : private XmlHandler {
 public:
  static constexpr std::int32_t kMostLooks = 256;  // In one list.

  // Adds to contents, which must live as long as the reader. The folder stands before the names of
  // picture files, its separator included. Language is the LCID whose fonts are translated.
  SkinReader(SkinContents& contents, const String& applicationName, const String& folder,
             std::uint32_t language);

  // kFailure when the document does not parse, with a record of what and where; what came before the
  // fault is kept. Throws runtime_error for a control without a class or a name. Once.
  TFRESULT Read(std::span<const unsigned char> document);

  // The one that was handed in, until the document names another.
  const String& GetApplicationName() const { return mApplicationName; }

 private:
  struct ElementRule;

  void OnStartElement(std::u16string_view name, const XmlAttributes& attributes) override;
  void OnEndElement(std::u16string_view name) override;
  void OnCharacterData(std::u16string_view text) override;

  void StartApplication(const XmlAttributes& attributes);
  void StartColorizer(const XmlAttributes& attributes);
  void StartPart(const XmlAttributes& attributes);
  void StartLooks(const XmlAttributes& attributes);
  void EndLooks();
  void StartLook(const XmlAttributes& attributes);
  void StartClientPart(const XmlAttributes& attributes);
  void StartNonClientPart(const XmlAttributes& attributes);
  void StartTextProperties(const XmlAttributes& attributes);
  void StartLookLists(const XmlAttributes& attributes);
  void StartLookList(const XmlAttributes& attributes);
  void StartSkin(const XmlAttributes& attributes);
  void EndSkin();
  void StartFontLocale(const XmlAttributes& attributes);
  void StartFontTranslation(const XmlAttributes& attributes);
  void StartSubControl(const XmlAttributes& attributes);
  void EndSubControl();
  void CloseControl();
  void StartParams(const XmlAttributes& attributes);
  void EndParams();
  void StartParam(const XmlAttributes& attributes);
  void EndParam();

  void ReadPicture(const XmlAttributes& attributes, LVisualPartDescriptor& part);
  void ReadMask(const XmlAttributes& attributes, LVisualPartDescriptor& part);
  void ReadColorizerName(const XmlAttributes& attributes, LVisualPartDescriptor& part);
  // Null, with a record, when the element has no part.
  RCPtr<LVisualPartDescriptor> FindPart(const XmlAttributes& attributes, std::u16string_view attribute);
  void FillSlot(const XmlAttributes& attributes);
  void StartTopLevelSkin(const XmlAttributes& attributes);
  void StartNestedSkin(const XmlAttributes& attributes);
  RCPtr<LLookList> FindLookList(const XmlAttributes& attributes);

  // Write the record of the element that is being read, or of a piece of it.
  void RecordDropped(std::string_view reason);
  void RecordMissing(std::u16string_view attribute);
  void RecordUnknown(std::string_view kind, std::u16string_view name);
  void Record(const std::string& what);

  SkinContents& mContents;
  String mApplicationName;
  const String mFolder;
  const std::uint32_t mLanguage;
  XmlReader mReader{*this};

  bool mRootSeen = false;
  std::u16string mElement;  // The one that started last, and its `Name`.
  std::u16string mElementName;

  bool mInLooks = false;
  RCPtr<LLookDescriptor> mCurrentLook;
  RCPtr<LLookList> mCurrentLookList;

  RCPtr<LControlDescriptor> mCurrentControl;              // The innermost one that is open.
  std::vector<RCPtr<LControlDescriptor>> mOuterControls;  // What each open control or skin will uncover.
  FontAttributes mFont;                                   // Of the last control.

  RCPtr<LSkinDescriptor> mTopLevelSkin;  // The last one.
  std::uint32_t mFontLocale = 0;
  std::map<String, String, NameOrder> mFontTranslations;

  std::optional<LStringTable::Strings> mCurrentParams;
  std::optional<String> mCurrentParamId;
};

}  // namespace TF
