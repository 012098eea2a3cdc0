#pragma once

#include <cstdint>
#include <type_traits>
#include <typeinfo>
#include <utility>

#include "TFFramework/ObjectBase/RCPtr.h"
#include "TFFramework/Utilities/Storage/StringT.h"

namespace TF {

// Two values, for example the key and the value of a list of settings.
template <class A, class B>
struct Pair {
  A mFirst = A();
  B mSecond = B();

  bool operator==(const Pair&) const = default;
};

// The text of a key: itself, its decimal number, else the name of its type.
template <class K>
String KeyText(const K& key) {
  if constexpr (std::is_same_v<K, String>)
    return key;
  else if constexpr (std::is_integral_v<K>)
    return FromUtf8(std::to_string(key));
  else
    return FromUtf8(DemangledName(typeid(K).name()));
}

// A key and a value as one shared object; its text is that of the key.
template <class K, class V, auto KeyToString = KeyText<K>>
class LPair : public virtual LRefCountedObject {
 public:
  LPair(K key, V value) : mKey(std::move(key)), mValue(std::move(value)) {}

  String ToString() const override { return KeyToString(mKey); }

  const K mKey;
  V mValue;
};

}  // namespace TF
