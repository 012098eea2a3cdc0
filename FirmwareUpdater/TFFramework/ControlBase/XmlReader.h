#pragma once

#include <cstdint>
#include <exception>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "TFFramework/ObjectBase/Result.h"

struct XML_ParserStruct;

namespace TF {

// The attributes of one start element, in the order of their names. Views that it hands out are
// good until the handler returns.
class XmlAttributes {
 public:
  // An attribute that stands there with an empty value is not an absent one.
  std::optional<std::u16string_view> Find(std::u16string_view name) const;

 private:
  friend class XmlReader;

  struct Entry {
    std::size_t mStart;  // Of the name in mText; the value follows it.
    std::size_t mNameLength;
    std::size_t mValueLength;
  };

  // Takes names and values in turn, up to a null name.
  void Assign(const char** attributes);
  std::u16string_view NameOf(const Entry& entry) const;

  std::u16string mText;  // Kept from element to element, so that reading does not allocate.
  std::vector<Entry> mEntries;
};

// What takes the events of a document in their order. Names and texts are good until the call
// returns. An exception ends the reading and comes out of XmlReader::Parse.
class XmlHandler {
 public:
  XmlHandler() = default;
  XmlHandler(const XmlHandler&) = delete;
  XmlHandler& operator=(const XmlHandler&) = delete;
  virtual ~XmlHandler() = default;

  virtual void OnStartElement(std::u16string_view name, const XmlAttributes& attributes) = 0;
  virtual void OnEndElement(std::u16string_view name) = 0;
  // One text may come in several pieces; line ends are single line feeds.
  virtual void OnCharacterData(std::u16string_view text) = 0;
};

// Reads a whole XML document in UTF-8, UTF-16, ISO-8859-1 or ASCII and hands its events on. A
// document that nests too deeply or swells by its entities counts as one that does not parse.
//
// Threads: one reader belongs to one thread.
class XmlReader {
 public:
  static constexpr std::uint32_t kDeepestNesting = 256;  // Elements that are open at once.
  static constexpr std::uint32_t kMostEntities = 64;     // That a document may declare.

  explicit XmlReader(XmlHandler& handler) : mHandler(handler) {}

  // kFailure when the document does not parse; the events before the fault were handed on.
  // kOutOfMemory without a parser. Rethrows what the handler throws.
  TFRESULT Parse(std::span<const unsigned char> document);

  // What the last Parse found and in which line, counted from 1; empty and 0 after a success.
  const std::string& GetErrorText() const { return mErrorText; }
  std::uint32_t GetErrorLine() const { return mErrorLine; }
  // Where the event stands that the handler is being given; for use by the handler.
  std::uint32_t GetLine() const;

 private:
  // Called by the parser, through whose frames no exception may pass.
  struct Events;

  void Run(XML_ParserStruct* parser, std::span<const unsigned char> document);
  void StartElement(const char* name, const char** attributes);
  void EndElement(const char* name);
  void CharacterData(const char* text, int length);
  void EntityDeclaration();
  void Refuse(const char* reason);

  XmlHandler& mHandler;
  XML_ParserStruct* mParser = nullptr;  // While parsing.
  std::uint32_t mDepth = 0;
  std::uint32_t mEntities = 0;
  XmlAttributes mAttributes;
  std::u16string mText;
  std::exception_ptr mException;
  std::string mErrorText;
  std::uint32_t mErrorLine = 0;
};

}  // namespace TF
