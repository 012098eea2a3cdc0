#pragma once

#include "TFFramework/ControlBase/Control.h"

namespace TF {
class LControlFactory;
}

// The controls of the gallery: they show by their looks, and tell in its status line, what the framework
// does with them. Main thread.

// Something to look at, with the text of its name when it has none.
class LGalleryPanel : public TF::LControl {
 public:
  using LControl::LControl;
  TFRESULT Initialize() override;
};

// A box that shows its conditions, by looks in this order.
class LGalleryBox : public LGalleryPanel {
 public:
  enum Slot : std::int32_t { kNormal, kHover, kPressed, kFocus, kChosen };

  using LGalleryPanel::LGalleryPanel;
  TFRESULT Initialize() override;
  void OnConditionChange(const TF::RCPtr<TF::LConditionsParam>& conditions) override;

 protected:
  virtual Slot SlotFor(std::uint32_t conditions) const;
  void Tell(const TF::String& what);
};

// Takes the focus and the mouse; tells of clicks, keys and the wheel.
class LGalleryTile : public LGalleryBox {
 public:
  using LGalleryBox::LGalleryBox;
  void OnLeftClick(const TF::RCPtr<TF::LMouseButtonParam>& param) override;
  TFRESULT OnKeyDown(const TF::RCPtr<TF::LKeyParam>& param) override;
  TFRESULT OnVerticalWheel(const TF::RCPtr<TF::LMouseWheelParam>& param) override;
};

// Shows the page of its name while it is chosen.
class LGalleryTab : public LGalleryTile {
 public:
  using LGalleryTile::LGalleryTile;
  void OnLeftClick(const TF::RCPtr<TF::LMouseButtonParam>& param) override;
  TFRESULT OnKeyDown(const TF::RCPtr<TF::LKeyParam>& param) override;
  void ShowChosen(bool chosen);

 protected:
  Slot SlotFor(std::uint32_t conditions) const override;

 private:
  bool mIsChosen = false;
};

// Can be dragged as its parameter "DRAG" says, a number of DragMode.
class LGalleryDrag : public LGalleryBox {
 public:
  using LGalleryBox::LGalleryBox;
  void ApplyCreateParameters() override;
  void OnConditionChange(const TF::RCPtr<TF::LConditionsParam>& conditions) override;
  void OnDragMoved(const TF::RCPtr<TF::LPointWithModifiersParam>& param) override;
  void GetDragLimits(TF::RectT<double>& result, const TF::RCPtr<TF::LControl>& control) override;

 private:
  TF::DragMode mMode = TF::DragMode::kNone;
};

// Takes what is carried to it.
class LGalleryDrop : public LGalleryPanel {
 public:
  using LGalleryPanel::LGalleryPanel;
  bool IsDropTarget(const TF::RCPtr<TF::LControl>& control) override;
  TFRESULT PerformDrop(const TF::RCPtr<TF::LControl>& control) override;
  void GetDragLimits(TF::RectT<double>& result, const TF::RCPtr<TF::LControl>& control) override;
};

// Goes when it is clicked.
class LGalleryDoomed : public LGalleryTile {
 public:
  using LGalleryTile::LGalleryTile;
  void OnLeftClick(const TF::RCPtr<TF::LMouseButtonParam>& param) override;
};

// Throws when it is clicked.
class LGalleryThrower : public LGalleryTile {
 public:
  using LGalleryTile::LGalleryTile;
  void OnLeftClick(const TF::RCPtr<TF::LMouseButtonParam>& param) override;
};

// What the skin says of a child, whether it was made or not; null for one that the skin does not have.
TF::RCPtr<TF::LControlDescriptor> FindPart(const TF::LControl& control, const TF::String& name);

// Shows a line in the foot of the gallery's window.
void TellGallery(const TF::LControl& control, const TF::String& text);

void RegisterGalleryControls(TF::LControlFactory& factory);
