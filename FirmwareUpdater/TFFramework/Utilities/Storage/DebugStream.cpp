#include "TFFramework/Utilities/Storage/DebugStream.h"

#include "TFFramework/Utilities/Storage/DiagnosticsLog.h"
#include "TFFramework/Utilities/Storage/StringT.h"

namespace {

std::string RecordText(std::string text) {
  return text;
}
std::string RecordText(std::wstring_view text) {
  return TF::WideToUtf8(text);
}

// Empties the buffer before the record leaves it, so that one that cannot go out is lost and
// does not stand in front of the next.
template <class E>
std::basic_string<E> TakeRecord(std::basic_stringbuf<E>& buffer) {
  std::basic_string<E> text = buffer.str();
  buffer.str(std::basic_string<E>());
  text.resize(std::char_traits<E>::length(text.c_str()));
  return text;
}

}  // namespace

template <class E>
int basic_debugbuf<E>::sync() {
  mLog.EmitRecord(RecordText(TakeRecord(*this)));
  return 0;
}

template <class E>
basic_debugbuf<E>::~basic_debugbuf() {
  try {
    if (this->pptr() != this->pbase()) basic_debugbuf::sync();
  } catch (const std::exception&) {
    // Diagnostics never disturb the program, so the record is lost.
  }
}

template class basic_debugbuf<char>;
template class basic_debugbuf<wchar_t>;

namespace TF {

namespace {

constexpr char32_t kSupplementaryFirst = 0x10000;
constexpr char32_t kCharacterEnd = 0x110000;
constexpr char16_t kReplacement = 0xFFFD;

void AppendCharacter(std::u16string& text, char32_t character) {
  if (character < kSupplementaryFirst) {
    text += static_cast<char16_t>(character);
  } else if (character < kCharacterEnd) {
    const char32_t rest = character - kSupplementaryFirst;
    text += static_cast<char16_t>(0xD800 + (rest >> 10));
    text += static_cast<char16_t>(0xDC00 + (rest & 0x3FF));
  } else {
    text += kReplacement;
  }
}

}  // namespace

std::string WideToUtf8(std::wstring_view text) {
  std::u16string half;
  half.reserve(text.size());
  for (const wchar_t character : text) AppendCharacter(half, static_cast<char32_t>(character));
  return ToUtf8(half);
}

int WideConsoleStream::Buffer::sync() {
  mLog.WriteNarrow(WideToUtf8(TakeRecord(*this)));
  return 0;
}

}  // namespace TF
