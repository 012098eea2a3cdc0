#pragma once

#include <cstdint>

namespace TF {

enum class VariantType : std::int32_t {
  kNothing = 0,
  kBool = 1,
  kInt8 = 2,
  kUInt8 = 3,
  kInt16 = 4,
  kUInt16 = 5,
  kInt32 = 6,
  kUInt32 = 7,
  kFloat = 8,
  kDouble = 9,
  kInt64 = 10,
  kUInt64 = 11,
  kForeignBlock = 12,          // Not owned.
  kForeignReadOnlyBlock = 13,  // Not owned.
  kBlock = 14,                 // Owned.
  kText = 15,                  // Owned, zero-terminated; the size counts the terminator.
  kOpaqueBlock = 16,           // Owned.
};

// A tagged scalar or data block with conversions. Numbers convert by truncation to the
// target's width, floats round half away from zero and saturate, a text gives its length, a
// block the number in its first bytes.
class Variant {
 public:
  Variant() = default;
  explicit Variant(std::uint8_t value);
  explicit Variant(std::uint32_t value);
  Variant(const Variant&) = delete;
  Variant& operator=(const Variant&) = delete;
  virtual ~Variant();

  virtual bool ToBool() const;
  virtual std::uint8_t ToUInt8() const;
  virtual std::int16_t ToInt16() const;
  virtual std::int32_t ToInt32() const;
  virtual std::int64_t ToInt64() const;
  virtual std::int8_t ToInt8() const;
  virtual std::uint16_t ToUInt16() const;
  virtual std::uint32_t ToUInt32() const;
  virtual std::uint64_t ToUInt64() const;
  virtual float ToFloat() const;
  virtual double ToDouble() const;

  // The value's bytes and their number; null and 0 for nothing. The second form gives no
  // read-only block away.
  virtual const void* GetData(std::uint32_t& size) const;
  virtual void* GetData(std::uint32_t& size);
  // Null unless this is a text.
  virtual const char* GetText() const;

  VariantType GetType() const { return mType; }

 protected:
  virtual void* AllocateBlock(std::uint32_t size);
  virtual void FreeBlock(void* block, std::uint32_t size);

  // Frees an owned block and leaves nothing.
  void Clear();

  union Value {
    std::uint64_t unsignedNumber = 0;
    std::int64_t signedNumber;
    double number;
    float shortNumber;
    void* block;
  };
  Value mValue;
  std::uint32_t mSize = 0;  // Of a block, in bytes.
  VariantType mType = VariantType::kNothing;

 private:
  template <class T>
  T ToNumber() const;
  template <class T>
  T FromBlock() const;
  bool HoldsBlock() const { return mType >= VariantType::kForeignBlock; }
};

}  // namespace TF
