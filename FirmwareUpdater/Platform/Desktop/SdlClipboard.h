#pragma once

#include <cstdint>
#include <string>

#include "Platform/Clipboard.h"

namespace Platform {

// The clipboard that SDL reaches.
class SdlClipboard : public Clipboard {
 public:
  bool SetText(const std::string& text) override;
  bool SetPrivate() override;
  void Look() override;
  std::uint32_t GetSequenceNumber() const override { return mSequence; }
  bool HasPrivate() const override { return mHolder == Holder::kOwnPrivate; }
  bool HasText() const override { return mHolder == Holder::kOwnText || !mText.empty(); }
  std::string GetText() const override;

  // SDL has announced a change, as it does for this program's own texts, too, and not for all others: true
  // when what was set here is gone, and no Look has found that out before.
  bool TakeLoss();

 private:
  enum class Holder { kOther, kOwnText, kOwnPrivate };

  bool Hand(const std::string& text);

  Holder mHolder = Holder::kOther;
  std::string mText;  // As SDL gave or took it.
  std::uint32_t mSequence = 1;
};

}  // namespace Platform
