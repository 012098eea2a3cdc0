#include "TFFramework/ControlBase/XmlReader.h"

#include <expat.h>

#include <algorithm>
#include <climits>
#include <memory>
#include <utility>

#include "TFFramework/Utilities/Storage/UtfConversion.h"

namespace TF {

namespace {

constexpr char16_t kReplacement = u'\xFFFD';

// UTF-16 never takes more units than UTF-8 takes bytes.
void AppendWide(std::u16string& out, std::string_view utf8) {
  const std::size_t start = out.size();
  out.resize(start + utf8.size());
  std::size_t written = 0;
  const UtfResult result = ConvertToUtf16(utf8, out.data() + start, utf8.size(), written);
  out.resize(start + written);
  if (result != UtfResult::kDone) out.push_back(kReplacement);
}

struct ParserDeleter {
  void operator()(XML_ParserStruct* parser) const { XML_ParserFree(parser); }
};

}  // namespace

std::optional<std::u16string_view> XmlAttributes::Find(std::u16string_view name) const {
  const auto found =
      std::lower_bound(mEntries.begin(), mEntries.end(), name,
                       [this](const Entry& entry, std::u16string_view key) { return NameOf(entry) < key; });
  if (found == mEntries.end() || NameOf(*found) != name) return std::nullopt;
  return std::u16string_view(mText).substr(found->mStart + found->mNameLength, found->mValueLength);
}

void XmlAttributes::Assign(const char** attributes) {
  mText.clear();
  mEntries.clear();
  for (; *attributes != nullptr; attributes += 2) {
    Entry entry{mText.size(), 0, 0};
    AppendWide(mText, attributes[0]);
    entry.mNameLength = mText.size() - entry.mStart;
    AppendWide(mText, attributes[1]);
    entry.mValueLength = mText.size() - entry.mStart - entry.mNameLength;
    mEntries.push_back(entry);
  }
  std::sort(mEntries.begin(), mEntries.end(),
            [this](const Entry& left, const Entry& right) { return NameOf(left) < NameOf(right); });
}

std::u16string_view XmlAttributes::NameOf(const Entry& entry) const {
  return std::u16string_view(mText).substr(entry.mStart, entry.mNameLength);
}

struct XmlReader::Events {
  // The parser may still deliver an event or two after it was told to stop.
  template <class Action>
  static void Guard(void* userData, Action&& action) noexcept {
    XmlReader& reader = *static_cast<XmlReader*>(userData);
    if (reader.mException || !reader.mErrorText.empty()) return;
    try {
      action(reader);
    } catch (...) {
      reader.mException = std::current_exception();
      XML_StopParser(reader.mParser, XML_FALSE);
    }
  }

  static void Start(void* userData, const XML_Char* name, const XML_Char** attributes) {
    Guard(userData, [&](XmlReader& reader) { reader.StartElement(name, attributes); });
  }
  static void End(void* userData, const XML_Char* name) {
    Guard(userData, [&](XmlReader& reader) { reader.EndElement(name); });
  }
  static void Characters(void* userData, const XML_Char* text, int length) {
    Guard(userData, [&](XmlReader& reader) { reader.CharacterData(text, length); });
  }
  static void Entity(void* userData, const XML_Char*, int, const XML_Char*, int, const XML_Char*,
                     const XML_Char*, const XML_Char*, const XML_Char*) {
    Guard(userData, [](XmlReader& reader) { reader.EntityDeclaration(); });
  }
};

TFRESULT XmlReader::Parse(std::span<const unsigned char> document) {
  mDepth = 0;
  mEntities = 0;
  mException = nullptr;
  mErrorText.clear();
  mErrorLine = 0;
  const std::unique_ptr<XML_ParserStruct, ParserDeleter> parser(XML_ParserCreate(nullptr));
  if (!parser) return kOutOfMemory;
  Run(parser.get(), document);
  if (mException) std::rethrow_exception(std::exchange(mException, nullptr));
  return mErrorText.empty() ? kSuccess : kFailure;
}

std::uint32_t XmlReader::GetLine() const {
  return mParser ? static_cast<std::uint32_t>(XML_GetCurrentLineNumber(mParser)) : 0;
}

void XmlReader::Run(XML_ParserStruct* parser, std::span<const unsigned char> document) {
  if (document.size() > INT_MAX) {
    mErrorText = "the document is too large";
    return;
  }
  XML_SetUserData(parser, this);
  XML_SetElementHandler(parser, Events::Start, Events::End);
  XML_SetCharacterDataHandler(parser, Events::Characters);
  XML_SetEntityDeclHandler(parser, Events::Entity);
  mParser = parser;
  const XML_Status status = XML_Parse(parser, reinterpret_cast<const char*>(document.data()),
                                      static_cast<int>(document.size()), XML_TRUE);
  mParser = nullptr;
  if (status == XML_STATUS_OK) return;
  if (mErrorText.empty()) mErrorText = XML_ErrorString(XML_GetErrorCode(parser));
  mErrorLine = static_cast<std::uint32_t>(XML_GetCurrentLineNumber(parser));
}

void XmlReader::StartElement(const char* name, const char** attributes) {
  if (++mDepth > kDeepestNesting) return Refuse("the elements nest too deeply");
  mAttributes.Assign(attributes);
  mText.clear();
  AppendWide(mText, name);
  mHandler.OnStartElement(mText, mAttributes);
}

void XmlReader::EndElement(const char* name) {
  --mDepth;
  mText.clear();
  AppendWide(mText, name);
  mHandler.OnEndElement(mText);
}

void XmlReader::CharacterData(const char* text, int length) {
  mText.clear();
  AppendWide(mText, std::string_view(text, static_cast<std::size_t>(length)));
  mHandler.OnCharacterData(mText);
}

// The parser bounds how far entities make a text swell, but follows a chain of them by recursion.
void XmlReader::EntityDeclaration() {
  if (++mEntities > kMostEntities) Refuse("the document declares too many entities");
}

void XmlReader::Refuse(const char* reason) {
  mErrorText = reason;
  XML_StopParser(mParser, XML_FALSE);
}

}  // namespace TF
