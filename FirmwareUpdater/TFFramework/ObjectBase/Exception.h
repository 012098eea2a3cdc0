#pragma once

#include <exception>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "TFFramework/ObjectBase/Result.h"

namespace TF {

// Gives code that knows only the framework's base access to an exception's text.
struct ExceptionBase {
  ExceptionBase() = default;
  ExceptionBase(const ExceptionBase&) = default;
  ExceptionBase& operator=(const ExceptionBase&) = default;
  virtual ~ExceptionBase() = default;
  virtual const char* What() const;
};

// A failed TFRESULT that a caller cannot go on with. The code stands in the text only.
class FailedResultException : public std::exception {
 public:
  explicit FailedResultException(std::string message) : mMessage(std::move(message)) {}
  const char* what() const noexcept override { return mMessage.c_str(); }

 private:
  std::string mMessage;
};

// An exception of kind E with a finished text.
template <class E>
class Exception : public E, public ExceptionBase {
 public:
  explicit Exception(const std::string& message) : E(message) {}
};

// The standard bad_alloc takes no text, so this one carries it.
template <>
class Exception<std::bad_alloc> : public std::bad_alloc, public ExceptionBase {
 public:
  explicit Exception(std::string message) : mMessage(std::move(message)) {}
  const char* what() const noexcept override { return mMessage.c_str(); }

 private:
  std::string mMessage;
};

// "Kind : text : function : file : Line n". An empty text leaves its piece out; file loses
// its folders above the framework or the program and its extension.
std::string ComposeExceptionText(std::string_view prefix, std::string_view text, std::string_view function,
                                 std::string_view file, int line);

// "TFRESULT = " and the code in upper-case hexadecimal without padding.
std::string ResultText(TFRESULT result);

// Readable name of a run-time type.
std::string DemangledName(const char* mangled);

template <class E>
constexpr std::string_view ExceptionPrefix() {
  if constexpr (std::is_same_v<E, std::runtime_error>)
    return "Runtime Error : ";
  else if constexpr (std::is_same_v<E, std::logic_error>)
    return "Logic Error : ";
  else if constexpr (std::is_same_v<E, std::out_of_range>)
    return "Out of Range : ";
  else if constexpr (std::is_same_v<E, std::domain_error>)
    return "Domain Error : ";
  else if constexpr (std::is_same_v<E, std::invalid_argument>)
    return "Invalid Argument : ";
  else if constexpr (std::is_same_v<E, std::bad_alloc>)
    return "Out of Memory : ";
  else {
    static_assert(std::is_same_v<E, FailedResultException>);
    return "Failed Result : ";
  }
}

// The one throw site of the system: text may be empty, function is the class-qualified name
// as the message shows it; file and line come from the compiler.
template <class E>
[[noreturn]] void Throw(std::string_view text, std::string_view function, const char* file = __builtin_FILE(),
                        int line = __builtin_LINE()) {
  throw Exception<E>(ComposeExceptionText(ExceptionPrefix<E>(), text, function, file, line));
}

// Throws FailedResultException when result is a failure.
inline void ThrowIfFailed(TFRESULT result, std::string_view function, const char* file = __builtin_FILE(),
                          int line = __builtin_LINE()) {
  if (Failed(result)) Throw<FailedResultException>(ResultText(result), function, file, line);
}

}  // namespace TF
