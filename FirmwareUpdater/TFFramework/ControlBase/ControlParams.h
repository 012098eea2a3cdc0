#pragma once

#include <cstddef>
#include <cstdint>

#include "Platform/InputBits.h"
#include "TFFramework/ControlBase/ControlCondition.h"
#include "TFFramework/ControlBase/KeyCode.h"
#include "TFFramework/ObjectBase/RCPtr.h"
#include "TFFramework/ObjectBase/RefCountedObject.h"
#include "TFFramework/Utilities/Storage/RCPtrArray.h"
#include "TFFramework/Utilities/Storage/StringT.h"

namespace TF {

class LControl;
class LMenuDescriptor;

// What travels with the events of controls, as the argument of an operation or as the payload of a
// notification. The small ones come from pools, since a mouse makes many of them.
//
// Threads: made on the main thread; the last reference may go on any.

// Whole pixels.
class LPointParam : public virtual LRefCountedObject {
 public:
  LPointParam(std::int32_t x, std::int32_t y) : mX(x), mY(y) {}

  String ToString() const override;

  std::int32_t mX;
  std::int32_t mY;
};

class LPointWithModifiersParam : public LPointParam {
 public:
  // time in milliseconds of the application's clock.
  LPointWithModifiersParam(std::int32_t x, std::int32_t y, std::uint32_t modifiers, std::uint32_t time)
      : LPointParam(x, y), mModifiers(modifiers), mTime(time) {}

  String ToString() const override;

  static void* operator new(std::size_t size);
  static void operator delete(void* block);

  std::uint32_t mModifiers;
  std::uint32_t mTime;
};

class LMouseButtonParam : public LPointWithModifiersParam {
 public:
  static constexpr std::uint32_t kLeft = Platform::MouseButton::kLeft;
  static constexpr std::uint32_t kMiddle = Platform::MouseButton::kMiddle;
  static constexpr std::uint32_t kRight = Platform::MouseButton::kRight;

  LMouseButtonParam(std::int32_t x, std::int32_t y, std::uint32_t modifiers, std::uint32_t time,
                    std::uint32_t button, bool isDoubleClick, std::uint32_t buttonsHeld)
      : LPointWithModifiersParam(x, y, modifiers, time),
        mButton(button),
        mIsDoubleClick(isDoubleClick),
        mButtonsHeld(buttonsHeld) {}

  static void* operator new(std::size_t size);
  static void operator delete(void* block);

  std::uint32_t mButton;
  bool mIsDoubleClick;
  std::uint32_t mButtonsHeld;  // A mask of the values above.
};

class LMouseWheelParam : public LPointWithModifiersParam {
 public:
  static constexpr std::uint32_t kDown = 0;
  static constexpr std::uint32_t kUp = 1;
  static constexpr std::uint32_t kHorizontalDown = 2;
  static constexpr std::uint32_t kHorizontalUp = 3;

  LMouseWheelParam(std::int32_t x, std::int32_t y, std::uint32_t modifiers, std::uint32_t time,
                   std::uint32_t direction)
      : LPointWithModifiersParam(x, y, modifiers, time), mDirection(direction) {}

  // Tells every direction but kDown as "up".
  String ToString() const override;

  static void* operator new(std::size_t size);
  static void operator delete(void* block);

  std::uint32_t mDirection;
};

class LKeyParam : public virtual LRefCountedObject {
 public:
  explicit LKeyParam(const KeyCode& key, bool wrap = false);
  ~LKeyParam() override;

  KeyCode mKey;
  bool mWrap;                  // The walk over the tab order has begun anew.
  RCPtrArray<LControl> mPath;  // The controls that the event has passed, in order.
};

class LSiblingKeyParam : public virtual LRefCountedObject {
 public:
  static constexpr std::int32_t kUnhandled = -1;

  LSiblingKeyParam(const KeyCode& key, const RCPtr<LControl>& sender);
  ~LSiblingKeyParam() override;

  KeyCode mKey;
  RCPtr<LControl> mSender;
  std::int32_t mUnhandled = kUnhandled;  // A listener that takes the key sets 0.
};

// Each control has one for its whole life: who is told of a change must not keep it.
class LConditionsParam : public virtual LRefCountedObject {
 public:
  String ToString() const override;

  static void* operator new(std::size_t size);
  static void operator delete(void* block);

  bool Rose(std::uint32_t bits) const { return TF::Rose(mPrevious, mCurrent, bits); }
  bool Fell(std::uint32_t bits) const { return TF::Fell(mPrevious, mCurrent, bits); }

  std::uint32_t mPrevious = 0;
  std::uint32_t mCurrent = 0;
  double mWidth = 0;  // Pixels of the control's frame.
  double mHeight = 0;
};

class LValueParam : public virtual LRefCountedObject {
 public:
  LValueParam(double normalized, double scaled) : mNormalized(normalized), mScaled(scaled) {}

  String ToString() const override;

  static void* operator new(std::size_t size);
  static void operator delete(void* block);

  double mNormalized;
  double mScaled;
};

// The payload of the notification of an item that was chosen.
class LMenuActivationParam : public virtual LRefCountedObject {
 public:
  LMenuActivationParam(const RCPtr<LMenuDescriptor>& menu, std::int32_t index);
  ~LMenuActivationParam() override;

  static void* operator new(std::size_t size);
  static void operator delete(void* block);

  RCPtr<LMenuDescriptor> mMenu;
  std::int32_t mIndex;  // Of the item in the menu.
};

}  // namespace TF
