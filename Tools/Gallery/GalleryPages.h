#pragma once

#include "TFFramework/Controls/Button.h"
#include "TFFramework/Controls/HandlingControl.h"
#include "TFFramework/Controls/Panel.h"
#include "TFFramework/Controls/ProgressBar.h"
#include "Tools/Gallery/GalleryControls.h"

// The pages of the gallery that show controls of the framework, and what stands on them alone. Main thread.

// Tells of the clicks on its buttons.
class LGalleryPage : public TF::HandlingControl<LGalleryPage, LGalleryPanel> {
 public:
  using HandlingControl::HandlingControl;
  TFRESULT Initialize() override;

 protected:
  // Before the click is told.
  virtual void OnButton(const TF::RCPtr<TF::LButton>&) {}

 private:
  void HearButtons(TF::LControl& parent);
  TFRESULT HandleClick(const TF::RCPtr<TF::LNotificationDistributor>& sender,
                       const TF::RCPtr<TF::LNotification>& notification);
};

// Counts as long as it is held down.
class LGalleryCounter : public TF::HandlingControl<LGalleryCounter, TF::LButton> {
 public:
  using HandlingControl::HandlingControl;
  TFRESULT Initialize() override;

 private:
  TFRESULT HandleRepeat(const TF::RCPtr<TF::LNotificationDistributor>& sender,
                        const TF::RCPtr<TF::LNotification>& notification);

  int mCount = 0;
};

// A view with many rows of text.
class LGalleryRows : public TF::LPanel {
 public:
  using LPanel::LPanel;
  TFRESULT OnDescriptorApplied() override;
};

// Lists with many records, with check marks, and with a selection of several; tells what is selected.
class LGalleryLists : public TF::HandlingControl<LGalleryLists, LGalleryPanel> {
 public:
  using HandlingControl::HandlingControl;
  TFRESULT Initialize() override;

 private:
  TFRESULT HandleSelection(const TF::RCPtr<TF::LNotificationDistributor>& sender,
                           const TF::RCPtr<TF::LNotification>& notification);
};

// Answers for the items of the menu that all its tiles show.
class LGalleryMenus : public LGalleryPanel {
 public:
  using LGalleryPanel::LGalleryPanel;
  TFRESULT OnMenuItemText(const TF::RCPtr<TF::LMenuDescriptor>& menu, std::int32_t index,
                          const TF::String& identifier, TF::LMenuItemState& state) override;
  void ToggleCheck() { mIsChecked = !mIsChecked; }

 private:
  bool mIsChecked = false;
};

// Shows the context menu of its page.
class LGalleryMenuTile : public LGalleryTile {
 public:
  using LGalleryTile::LGalleryTile;
  TF::RCPtr<TF::LMenuDescriptor> GetContextMenu() override;
  void OnContextMenuOpening(const TF::RCPtr<TF::LControl>& popup) override;
  void OnNotification(const TF::RCPtr<TF::LNotificationDistributor>& sender,
                      const TF::RCPtr<TF::LNotification>& notification) override;
};

// A text for the clipboard.
class LGalleryClip : public LGalleryTile {
 public:
  using LGalleryTile::LGalleryTile;
  bool IsEditTarget() override { return true; }
  bool CanPerformEdit(std::int32_t operation) override;
  TFRESULT PerformEdit(std::int32_t operation) override;
};

// A progress bar and what moves it, texts for the status bar, and tips.
class LGalleryStatus : public LGalleryPage {
 public:
  using LGalleryPage::LGalleryPage;

 protected:
  void OnButton(const TF::RCPtr<TF::LButton>& button) override;
};

void RegisterGalleryPages(TF::LControlFactory& factory);
