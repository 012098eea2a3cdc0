#include "TFFramework/Utilities/Storage/StringT.h"

#include <algorithm>
#include <cstring>

#include "TFFramework/Utilities/Storage/CaseTable.h"
#include "TFFramework/Utilities/Storage/UtfConversion.h"

namespace TF {

namespace {

template <class C>
std::basic_string_view<C> ViewOf(const C* text) {
  return text ? std::basic_string_view<C>(text) : std::basic_string_view<C>();
}

template <class C>
void CopyCharacters(C* target, std::basic_string_view<C> text) {
  if (!text.empty()) std::memmove(target, text.data(), text.size() * sizeof(C));
}

template <class C>
bool IsIn(std::basic_string_view<C> set, C character) {
  return set.find(character) != std::basic_string_view<C>::npos;
}

}  // namespace

template <class C, class Other>
const RCPtr<ByteBuffer>& StringT<C, Other>::EmptyBuffer() {
  // Never destroyed: strings of statics may outlive it otherwise.
  static const auto* buffer = new RCPtr<ByteBuffer>(MakeRC<ByteBuffer>(kCharacterSize, 0u, true));
  return *buffer;
}

template <class C, class Other>
StringT<C, Other>::StringT(const C* text) {
  Assign(ViewOf(text));
}

template <class C, class Other>
StringT<C, Other>::StringT(C character) {
  Assign(View_t(&character, character != C{} ? 1 : 0));
}

template <class C, class Other>
StringT<C, Other>::StringT(View_t text) {
  Assign(text);
}

template <class C, class Other>
StringT<C, Other>& StringT<C, Other>::operator=(const StringT& other) {
  if (this == &other) return *this;
  if (IsLocked() || other.IsLocked())
    Assign(other.View());
  else
    mBuffer = other.mBuffer;
  return *this;
}

template <class C, class Other>
StringT<C, Other>& StringT<C, Other>::operator=(StringT&& other) {
  if (this == &other) return *this;
  if (IsLocked() || other.IsLocked())
    Assign(other.View());
  else
    mBuffer = std::move(other.mBuffer);
  return *this;
}

template <class C, class Other>
void StringT<C, Other>::Assign(const C* text, std::int32_t maxLength) {
  if (!text || maxLength <= 0) return Assign(View_t());
  const C* end = std::find(text, text + maxLength, C{});
  Assign(View_t(text, static_cast<std::size_t>(end - text)));
}

template <class C, class Other>
void StringT<C, Other>::Assign(View_t text) {
  if (IsLocked()) return AssignLocked(text);
  if (text.empty()) {
    mBuffer = EmptyBuffer();
    return;
  }
  auto buffer = MakeRC<ByteBuffer>(static_cast<std::uint32_t>((text.size() + 1) * kCharacterSize));
  C* target = reinterpret_cast<C*>(buffer->GetPointer());
  CopyCharacters(target, text);
  target[text.size()] = C{};
  mBuffer = std::move(buffer);
}

template <class C, class Other>
void StringT<C, Other>::AssignLocked(View_t text) {
  const std::size_t room = mBuffer->GetSize() / kCharacterSize;
  if (text.size() >= room) Throw<std::runtime_error>("text exceeds the lock", "TF::StringT::Assign");
  CopyCharacters(Writable(), text);
  Writable()[text.size()] = C{};
}

template <class C, class Other>
std::int32_t StringT<C, Other>::LockedLength() const {
  const C* begin = Characters();
  const C* end = begin + mBuffer->GetSize() / kCharacterSize;
  return static_cast<std::int32_t>(std::find(begin, end, C{}) - begin);
}

template <class C, class Other>
bool StringT<C, Other>::Equals(const C* text) const {
  return View() == ViewOf(text);
}

template <class C, class Other>
bool StringT<C, Other>::Overlaps(View_t text) const {
  const C* begin = Characters();
  return !std::less<>()(text.data(), begin) && std::less<>()(text.data(), begin + Length() + 1);
}

template <class C, class Other>
void StringT<C, Other>::Append(const StringT& other) {
  Append(other.View());
}

template <class C, class Other>
void StringT<C, Other>::Append(C character) {
  Append(View_t(&character, 1));
}

template <class C, class Other>
void StringT<C, Other>::Append(View_t text) {
  Store(Length(), text);
}

// Opens a gap at position and writes text into it.
template <class C, class Other>
void StringT<C, Other>::Store(std::int32_t position, View_t text) {
  if (text.empty()) return;
  if (Overlaps(text)) {
    const std::basic_string<C> copy(text);
    return Store(position, copy);
  }
  const std::int32_t length = Length();
  const std::uint64_t total = static_cast<std::uint64_t>(length) + text.size() + 1;
  if (total * kCharacterSize > kWholeText) Throw<std::bad_alloc>("", "TF::StringT::Append");
  const bool wasLocked = IsLocked();
  if (wasLocked)
    mBuffer->SetSize(static_cast<std::uint32_t>(total * kCharacterSize));
  else
    Lock(static_cast<std::int32_t>(total));
  C* target = Writable() + position;
  std::memmove(target + text.size(), target, static_cast<std::size_t>(length - position) * kCharacterSize);
  CopyCharacters(target, text);
  Writable()[total - 1] = C{};
  if (!wasLocked) Unlock();
}

template <class C, class Other>
TFRESULT StringT<C, Other>::Insert(std::int32_t position, const StringT& text) {
  if (position < 0 || position > Length()) return kInvalidArgument;
  Store(position, text.View());
  return kSuccess;
}

template <class C, class Other>
StringT<C, Other> StringT<C, Other>::Mid(std::int32_t start, std::int32_t count) const {
  const std::int64_t length = Length();
  std::int64_t first = start;
  std::int64_t wanted = count;
  if (first < 0) first += length;
  if (first < 0) {
    wanted += first;
    first = 0;
  }
  if (first >= length || wanted <= 0) return StringT();
  wanted = std::min(wanted, length - first);
  if (wanted == length && !IsLocked()) return *this;
  return StringT(View().substr(static_cast<std::size_t>(first), static_cast<std::size_t>(wanted)));
}

template <class C, class Other>
std::int32_t StringT<C, Other>::Find(View_t text, std::int32_t start) const {
  if (start < 0 || start > Length()) return -1;
  const auto position = View().find(text, static_cast<std::size_t>(start));
  return position == View_t::npos ? -1 : static_cast<std::int32_t>(position);
}

template <class C, class Other>
StringT<C, Other> StringT<C, Other>::ToUpper() const {
  std::basic_string<C> text(View());
  for (C& character : text) character = ToUpperCase(character);
  return StringT(text);
}

template <class C, class Other>
StringT<C, Other> StringT<C, Other>::ToLower() const {
  std::basic_string<C> text(View());
  for (C& character : text) character = ToLowerCase(character);
  return StringT(text);
}

template <class C, class Other>
std::basic_string_view<C> StringT<C, Other>::Blanks() {
  static constexpr C kBlanks[] = {' ', '\t', '\r', '\n'};
  return View_t(kBlanks, std::size(kBlanks));
}

template <class C, class Other>
StringT<C, Other> StringT<C, Other>::TrimLeft(View_t set) const {
  const auto first = View().find_first_not_of(set);
  if (first == View_t::npos) return *this;
  return Mid(static_cast<std::int32_t>(first));
}

template <class C, class Other>
StringT<C, Other> StringT<C, Other>::TrimRight(View_t set) const {
  const auto last = View().find_last_not_of(set);
  return last == View_t::npos ? StringT() : Left(static_cast<std::int32_t>(last) + 1);
}

template <class C, class Other>
void StringT<C, Other>::ReplaceAny(View_t set, C replacement) {
  if (replacement == C{} || View().find_first_of(set) == View_t::npos) return;
  const bool wasLocked = IsLocked();
  const std::int32_t length = Length();
  if (!wasLocked) Lock(0);
  C* text = Writable();
  std::replace_if(
      text, text + length, [&](C character) { return IsIn(set, character); }, replacement);
  if (!wasLocked) Unlock();
}

template <class C, class Other>
C* StringT<C, Other>::Lock(std::int32_t count) {
  if (IsLocked()) return nullptr;
  const std::int32_t characters = count > 0 ? count : Length() + 1;
  const auto size = static_cast<std::uint32_t>(characters) * kCharacterSize;
  if (!mBuffer) {
    mBuffer = MakeRC<ByteBuffer>(size, 0u, true);
  } else if (mBuffer->GetRefCount() > 1) {
    mBuffer = RCPtr<ByteBuffer>(mBuffer->CreateCopy(size, 0));
    if (!mBuffer) {
      constexpr bool kWide = sizeof(C) > 1;
      Throw<std::runtime_error>(
          "", kWide ? "TF::StringT<wchar_t,char>::Lock" : "TF::StringT<char,wchar_t>::Lock");
    }
  }
  mBuffer->SetUnshareable(true);
  mBuffer->SetSize(size);
  Writable()[characters - 1] = C{};
  return Writable();
}

template <class C, class Other>
TFRESULT StringT<C, Other>::Unlock() {
  if (!IsLocked()) return kNothingDone;
  const std::int32_t length = Length();
  mBuffer->SetUnshareable(false);
  if (length == 0)
    mBuffer = EmptyBuffer();
  else
    mBuffer->SetSize(static_cast<std::uint32_t>(length + 1) * kCharacterSize);
  return kSuccess;
}

template <class C, class Other>
TFRESULT StringT<C, Other>::ToUTF8(NarrowString& narrow, const char16_t* text, std::int32_t length) {
  const std::u16string_view source =
      text && length >= 0 ? std::u16string_view(text, static_cast<std::size_t>(length)) : ViewOf(text);
  std::string converted(source.size() * 4, '\0');
  std::size_t written = 0;
  const UtfResult result = ConvertToUtf8(source, converted.data(), converted.size(), written);
  narrow = NarrowString(std::string_view(converted).substr(0, written));
  return result == UtfResult::kDone ? kSuccess : kFailure;
}

template <class C, class Other>
TFRESULT StringT<C, Other>::FromUTF8(String& wide, const char* text, std::int32_t length) {
  const std::string_view source =
      text && length >= 0 ? std::string_view(text, static_cast<std::size_t>(length)) : ViewOf(text);
  std::u16string converted(source.size(), u'\0');
  std::size_t written = 0;
  const UtfResult result = ConvertToUtf16(source, converted.data(), converted.size(), written);
  wide = String(std::u16string_view(converted).substr(0, written));
  return result == UtfResult::kDone ? kSuccess : kFailure;
}

template class StringT<char16_t, char>;
template class StringT<char, char16_t>;

TFRESULT PrintBounded(char16_t* out, std::uint32_t size, std::u16string_view text) {
  if (!out || size == 0 || size >= 0x80000000) return kInvalidArgument;
  const std::size_t count = std::min<std::size_t>(text.size(), size - 1);
  CopyCharacters(out, text.substr(0, count));
  out[count] = u'\0';
  return count < text.size() ? kBufferTooSmall : kSuccess;
}

}  // namespace TF
