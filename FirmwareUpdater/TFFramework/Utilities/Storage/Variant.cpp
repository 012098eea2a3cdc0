#include "TFFramework/Utilities/Storage/Variant.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <type_traits>

namespace TF {

namespace {

template <class T>
T Rounded(double value) {
  if constexpr (std::is_floating_point_v<T>) {
    return static_cast<T>(value);
  } else {
    if (std::isnan(value)) return 0;
    const double rounded = std::round(value);
    // The upper limit of a 64-bit type is no double: compare with the power of two above it.
    const double above = std::ldexp(1.0, std::numeric_limits<T>::digits);
    if (rounded >= above) return std::numeric_limits<T>::max();
    if (rounded <= static_cast<double>(std::numeric_limits<T>::min())) return std::numeric_limits<T>::min();
    return static_cast<T>(rounded);
  }
}

std::uint32_t ScalarSize(VariantType type) {
  static constexpr std::uint8_t kSizes[] = {0, 1, 1, 1, 2, 2, 4, 4, 4, 8, 8, 8};
  return kSizes[static_cast<std::size_t>(type)];
}

}  // namespace

Variant::Variant(std::uint8_t value) : mType(VariantType::kUInt8) {
  mValue.unsignedNumber = value;
}

Variant::Variant(std::uint32_t value) : mType(VariantType::kUInt32) {
  mValue.unsignedNumber = value;
}

Variant::~Variant() {
  Variant::Clear();
}

void Variant::Clear() {
  if (mType >= VariantType::kBlock) FreeBlock(mValue.block, mSize);
  mValue.unsignedNumber = 0;
  mSize = 0;
  mType = VariantType::kNothing;
}

template <class T>
T Variant::FromBlock() const {
  T value{};
  if (mValue.block) std::memcpy(&value, mValue.block, std::min<std::size_t>(sizeof value, mSize));
  return value;
}

template <class T>
T Variant::ToNumber() const {
  switch (mType) {
    case VariantType::kNothing:
    case VariantType::kOpaqueBlock:
      return 0;
    case VariantType::kInt8:
    case VariantType::kInt16:
    case VariantType::kInt32:
    case VariantType::kInt64:
      return static_cast<T>(mValue.signedNumber);
    case VariantType::kFloat:
      return Rounded<T>(static_cast<double>(mValue.shortNumber));
    case VariantType::kDouble:
      return Rounded<T>(mValue.number);
    case VariantType::kForeignBlock:
    case VariantType::kForeignReadOnlyBlock:
    case VariantType::kBlock:
      return FromBlock<T>();
    case VariantType::kText:
      return static_cast<T>(mSize > 0 ? mSize - 1 : 0);
    default:
      return static_cast<T>(mValue.unsignedNumber);
  }
}

bool Variant::ToBool() const {
  switch (mType) {
    case VariantType::kForeignBlock:
    case VariantType::kForeignReadOnlyBlock:
      return mValue.block != nullptr;
    case VariantType::kBlock:
    case VariantType::kOpaqueBlock:
      return mSize != 0;
    case VariantType::kFloat:
    case VariantType::kDouble:
      return ToDouble() != 0.0;
    default:
      return ToUInt64() != 0;
  }
}

std::uint8_t Variant::ToUInt8() const {
  return ToNumber<std::uint8_t>();
}
std::int16_t Variant::ToInt16() const {
  return ToNumber<std::int16_t>();
}
std::int32_t Variant::ToInt32() const {
  return ToNumber<std::int32_t>();
}
std::int64_t Variant::ToInt64() const {
  return ToNumber<std::int64_t>();
}
std::int8_t Variant::ToInt8() const {
  return static_cast<std::int8_t>(ToUInt8());
}
std::uint16_t Variant::ToUInt16() const {
  return ToNumber<std::uint16_t>();
}
std::uint32_t Variant::ToUInt32() const {
  return ToNumber<std::uint32_t>();
}
std::uint64_t Variant::ToUInt64() const {
  return ToNumber<std::uint64_t>();
}
float Variant::ToFloat() const {
  return ToNumber<float>();
}
double Variant::ToDouble() const {
  return ToNumber<double>();
}

const void* Variant::GetData(std::uint32_t& size) const {
  size = HoldsBlock() ? mSize : ScalarSize(mType);
  if (HoldsBlock()) return mValue.block;
  return size > 0 ? &mValue : nullptr;
}

void* Variant::GetData(std::uint32_t& size) {
  if (mType == VariantType::kForeignReadOnlyBlock) {
    size = 0;
    return nullptr;
  }
  return const_cast<void*>(static_cast<const Variant*>(this)->GetData(size));
}

const char* Variant::GetText() const {
  return mType == VariantType::kText ? static_cast<const char*>(mValue.block) : nullptr;
}

void* Variant::AllocateBlock(std::uint32_t size) {
  return std::malloc(size);
}

void Variant::FreeBlock(void* block, std::uint32_t) {
  std::free(block);
}

}  // namespace TF
