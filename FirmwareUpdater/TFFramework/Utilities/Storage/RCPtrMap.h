#pragma once

#include "TFFramework/Utilities/Storage/HashedList.h"

namespace TF {

// A hashed list whose entries are pairs keyed by an object's address. It holds the key
// objects, so an address stays that of the same object.
template <class K, class V, int Bits = 8>
class RCPtrHalfMap : public IHashedList<RCPtr<LPair<ConstRCPtr<K>, V>>, const K*> {
 public:
  using Entry = LPair<ConstRCPtr<K>, V>;

  std::int32_t GetCount() const final { return mBuckets.GetCount(); }
  void Clear() final { mBuckets.Clear(); }

  bool Set(const RCPtr<Entry>& entry) final {
    const K* key = entry->mKey.Get();
    if (RCPtr<Entry>* present = mBuckets.Find(HashOf(key), key)) {
      RCPtr<Entry> other(entry);
      std::swap(*present, other);  // The old entry dies when nothing here is touched any more.
      return false;
    }
    mBuckets.Add(HashOf(key), entry);
    return true;
  }

  RCPtr<Entry>* Find(const K* const& key, RCPtr<Entry>* fallback = nullptr) final {
    RCPtr<Entry>* const entry = mBuckets.Find(HashOf(key), key);
    return entry ? entry : fallback;
  }

  bool Remove(const K* const& key) override { return mBuckets.Remove(HashOf(key), key); }

 private:
  // The lowest bits of an address are the same for all objects.
  static constexpr int kAddressShift = 4;
  static std::uint32_t HashOf(const K* key) {
    return GetBits<Bits, kAddressShift>(reinterpret_cast<std::uintptr_t>(key));
  }

  HashBuckets<Entry, Bits> mBuckets;
};

// Counted objects by counted objects.
template <class K, class V, int Bits = 8>
class RCPtrMap : public RCPtrHalfMap<K, RCPtr<V>, Bits> {
  using Base = RCPtrHalfMap<K, RCPtr<V>, Bits>;

 public:
  using Base::Remove;
  using Base::Set;
  using typename Base::Entry;

  // The stored pointer, valid until the map changes; a shared null pointer without such a key.
  virtual const RCPtr<V>& GetValue(const ConstRCPtr<K>& key) {
    static const RCPtr<V> missing;
    RCPtr<Entry>* const entry = Base::Find(key.Get());
    return entry ? (*entry)->mValue : missing;
  }
  virtual bool Remove(const ConstRCPtr<K>& key) { return Base::Remove(key.Get()); }
  virtual ConstRCPtr<V> GetConstValue(const ConstRCPtr<K>& key) { return GetValue(key); }
  // True when the key is new.
  virtual bool Set(const ConstRCPtr<K>& key, const RCPtr<V>& value) {
    return Base::Set(MakeRC<Entry>(key, value));
  }
};

}  // namespace TF
