#include "TFFramework/ControlBase/ControlParams.h"

#include "TFFramework/ControlBase/Control.h"
#include "TFFramework/Threads/ReuseAllocator.h"

namespace TF {

namespace {

// Never destroyed: a parameter may outlive every other static.
template <class T, std::uint32_t N>
ReuseAllocator<T, N>& PoolOf() {
  static auto& pool = *new ReuseAllocator<T, N>(true);
  return pool;
}

constexpr std::uint32_t kPoolOfFew = 4;
constexpr std::uint32_t kPoolOfMany = 32;

}  // namespace

String LPointParam::ToString() const {
  return String::Format(u"point(%d, %d)", mX, mY);
}

String LPointWithModifiersParam::ToString() const {
  return LPointParam::ToString() + String::Format(u"  modifiers: 0x%08x", mModifiers);
}

void* LPointWithModifiersParam::operator new(std::size_t size) {
  return PoolOf<LPointWithModifiersParam, kPoolOfMany>().Allocate(size);
}

void LPointWithModifiersParam::operator delete(void* block) {
  PoolOf<LPointWithModifiersParam, kPoolOfMany>().Free(block);
}

void* LMouseButtonParam::operator new(std::size_t size) {
  return PoolOf<LMouseButtonParam, kPoolOfMany>().Allocate(size);
}

void LMouseButtonParam::operator delete(void* block) {
  PoolOf<LMouseButtonParam, kPoolOfMany>().Free(block);
}

String LMouseWheelParam::ToString() const {
  return LPointWithModifiersParam::ToString() +
         String::Format(u"  direction: %s", mDirection == kDown ? u"down" : u"up");
}

void* LMouseWheelParam::operator new(std::size_t size) {
  return PoolOf<LMouseWheelParam, kPoolOfFew>().Allocate(size);
}

void LMouseWheelParam::operator delete(void* block) {
  PoolOf<LMouseWheelParam, kPoolOfFew>().Free(block);
}

LKeyParam::LKeyParam(const KeyCode& key, bool wrap) : mKey(key), mWrap(wrap) {}

LKeyParam::~LKeyParam() = default;

LSiblingKeyParam::LSiblingKeyParam(const KeyCode& key, const RCPtr<LControl>& sender)
    : mKey(key), mSender(sender) {}

LSiblingKeyParam::~LSiblingKeyParam() = default;

String LConditionsParam::ToString() const {
  return String::Format(u"(%g, %g)", mWidth, mHeight);
}

void* LConditionsParam::operator new(std::size_t size) {
  return PoolOf<LConditionsParam, kPoolOfFew>().Allocate(size);
}

void LConditionsParam::operator delete(void* block) {
  PoolOf<LConditionsParam, kPoolOfFew>().Free(block);
}

String LValueParam::ToString() const {
  return String::Format(u"ValueParam = %lf", mNormalized);
}

void* LValueParam::operator new(std::size_t size) {
  return PoolOf<LValueParam, kPoolOfFew>().Allocate(size);
}

void LValueParam::operator delete(void* block) {
  PoolOf<LValueParam, kPoolOfFew>().Free(block);
}

LMenuActivationParam::LMenuActivationParam(const RCPtr<LMenuDescriptor>& menu, std::int32_t index)
    : mMenu(menu), mIndex(index) {}

LMenuActivationParam::~LMenuActivationParam() = default;

void* LMenuActivationParam::operator new(std::size_t size) {
  return PoolOf<LMenuActivationParam, kPoolOfFew>().Allocate(size);
}

void LMenuActivationParam::operator delete(void* block) {
  PoolOf<LMenuActivationParam, kPoolOfFew>().Free(block);
}

}  // namespace TF
