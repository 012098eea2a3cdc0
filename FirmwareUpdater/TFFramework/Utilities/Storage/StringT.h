#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <type_traits>

#include "TFFramework/ObjectBase/RCPtr.h"
#include "TFFramework/Utilities/Storage/FormatArgument.h"
#include "TFFramework/Utilities/Storage/LBuffer.h"

namespace TF {

// The string of the whole system: a pointer to a shared buffer that is copied when one of
// several holders writes. A copy costs one reference. Positions and lengths count characters.
//
// Threads: one string belongs to one thread at a time; copies of it may live on others.
template <class C, class Other>
class StringT {
 public:
  using View_t = std::basic_string_view<C>;
  static constexpr std::int32_t kWholeText = 0x7FFFFFFE;

  StringT() : mBuffer(EmptyBuffer()) {}
  StringT(const StringT& other) {
    if (other.IsLocked())
      Assign(other.View());
    else
      mBuffer = other.mBuffer;
  }
  StringT(StringT&& other) noexcept = default;  // Leaves the empty string behind.
  StringT(const C* text);
  explicit StringT(C character);
  StringT(View_t text);
  StringT(const std::basic_string<C>& text) : StringT(View_t(text)) {}
  virtual ~StringT() = default;

  // A locked string keeps its buffer and takes the characters.
  StringT& operator=(const StringT& other);
  StringT& operator=(StringT&& other);
  StringT& operator=(const C* text) { return Assign(text), *this; }

  // Takes at most maxLength characters. Into a locked string the text must fit.
  void Assign(const C* text, std::int32_t maxLength = kWholeText);
  void Assign(View_t text);

  // Read from the buffer's size, without a scan, unless the string is locked.
  std::int32_t Length() const {
    if (!mBuffer) return 0;
    if (IsLocked()) return LockedLength();
    return static_cast<std::int32_t>(mBuffer->GetSize() / kCharacterSize) - 1;
  }
  bool IsEmpty() const { return Length() == 0; }
  // Zero-terminated, never null.
  const C* GetText() const { return Characters(); }
  View_t View() const { return View_t(Characters(), static_cast<std::size_t>(Length())); }
  operator View_t() const { return View(); }
  // Position from 0 to Length(); the last one gives the terminator.
  C operator[](std::int32_t position) const { return Characters()[position]; }

  // A null text equals the empty string.
  bool Equals(const C* text) const;
  bool operator==(const StringT& other) const { return mBuffer == other.mBuffer || View() == other.View(); }
  bool operator==(const C* text) const { return Equals(text); }
  bool operator==(View_t text) const { return View() == text; }
  bool operator<(const StringT& other) const { return View() < other.View(); }

  void Append(const StringT& other);
  void Append(View_t text);
  void Append(C character);
  StringT& operator+=(const StringT& other) { return Append(other), *this; }
  StringT& operator+=(View_t text) { return Append(text), *this; }
  StringT& operator+=(const C* text) { return Append(View_t(text)), *this; }
  StringT& operator+=(C character) { return Append(character), *this; }
  friend StringT operator+(const StringT& left, const StringT& right) { return StringT(left) += right; }
  friend StringT operator+(const StringT& left, const C* right) { return StringT(left) += right; }
  friend StringT operator+(const C* left, const StringT& right) { return StringT(left) += right; }

  // kInvalidArgument when position lies behind the end.
  TFRESULT Insert(std::int32_t position, const StringT& text);

  StringT Left(std::int32_t count) const { return Mid(0, count); }
  StringT Right(std::int32_t count) const { return Mid(-count, count); }
  // A negative start counts from the end.
  StringT Mid(std::int32_t start, std::int32_t count) const;
  StringT Mid(std::int32_t start) const { return Mid(start, Length() - start); }

  // Position of the first occurrence from start on, or -1.
  std::int32_t Find(View_t text, std::int32_t start = 0) const;

  StringT ToUpper() const;
  StringT ToLower() const;

  // Without the leading or trailing characters that stand in set. A string of nothing else
  // gives the empty string from TrimRight and comes back unchanged from TrimLeft.
  StringT TrimLeft(View_t set = Blanks()) const;
  StringT TrimRight(View_t set = Blanks()) const;

  // In place; a zero replacement leaves the string as it is.
  void ReplaceAny(View_t set, C replacement);

  // Raw access to count characters, terminator included; 0 means the present length and the
  // terminator. Null when the string is locked already. While it lasts every copy of the
  // string gets characters of its own.
  C* Lock(std::int32_t count);
  // kNothingDone when the string was not locked.
  TFRESULT Unlock();

  // printf-style. Throws invalid_argument for a format that does not fit its arguments.
  template <class... Arguments>
  static StringT Format(const C* format, const Arguments&... arguments) {
    return FormatList(format, {FormatArgument(arguments)...});
  }
  // value counts units of 10 to the power of -decimals: 1234 with 2 gives 12.34, 5 gives .05.
  static StringT FormatFixedPoint(std::int32_t value, std::int32_t decimals);
  // decimals below 0 gives the six of a plain "%lf".
  static StringT FormatFloat(double value, std::int32_t decimals);

  // A negative length means up to the terminator. kFailure when the conversion stopped early
  // at malformed or cut-off text; out then holds what came before.
  static TFRESULT ToUTF8(StringT<char, char16_t>& narrow, const char16_t* text, std::int32_t length);
  static TFRESULT FromUTF8(StringT<char16_t, char>& wide, const char* text, std::int32_t length);

 private:
  static constexpr std::uint32_t kCharacterSize = sizeof(C);
  static constexpr C kTerminator{};
  static View_t Blanks();
  static const RCPtr<ByteBuffer>& EmptyBuffer();
  static StringT FormatList(const C* format, std::initializer_list<FormatArgument> arguments);

  const C* Characters() const {
    return mBuffer ? reinterpret_cast<const C*>(mBuffer->GetPointer()) : &kTerminator;
  }
  C* Writable() { return reinterpret_cast<C*>(mBuffer->GetPointer()); }
  bool IsLocked() const { return mBuffer && !mBuffer->IsShareable(); }
  std::int32_t LockedLength() const;
  bool Overlaps(View_t text) const;
  void AssignLocked(View_t text);
  void Store(std::int32_t position, View_t text);

  // An exact-size buffer that includes the terminator; null stands for the empty string.
  RCPtr<ByteBuffer> mBuffer;
};

using String = StringT<char16_t, char>;
using NarrowString = StringT<char, char16_t>;

extern template class StringT<char16_t, char>;
extern template class StringT<char, char16_t>;

// Conversions that never fail: what cannot be converted becomes U+FFFD.
std::string ToUtf8(std::u16string_view text);
String FromUtf8(std::string_view text);

// Prints into a fixed array of size characters and always terminates it. kBufferTooSmall
// when the text had to be cut; kInvalidArgument for size 0 or from 0x80000000 on.
TFRESULT PrintBounded(char16_t* out, std::uint32_t size, std::u16string_view text);

}  // namespace TF
