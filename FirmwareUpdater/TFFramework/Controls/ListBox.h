#pragma once

#include <cstdint>
#include <vector>

#include "TFFramework/ControlBase/ControlParams.h"
#include "TFFramework/Controls/HandlingControl.h"
#include "TFFramework/Controls/ListBoxItem.h"
#include "TFFramework/Controls/ScrollView.h"
#include "TFFramework/ObjectBase/RCPtr.h"
#include "TFFramework/Utilities/Storage/StringT.h"

namespace TF {

// One entry of a list.
struct ListRecord {
  static constexpr double kSelected = 0.5;  // From here on a value counts as selected.

  bool IsSelected() const { return mValue >= kSelected; }

  RCPtr<LRefCountedObject> mLabel;  // Its text is shown; null for none.
  double mValue = 0;
  bool mHighlighted = false;
  bool mSeparator = false;
  bool mHidden = false;
};

// What a list tells of an event of one of its rows.
class LItemConditionsParam : public LConditionsParam {
 public:
  std::int32_t mIndex = -1;  // Of the record.
  std::int32_t mLook = -1;   // Slot of the first look that is shown; -1 without one.
  bool mHover = false;       // The mouse is over the row.
};

// The text of a record.
class LListText : public virtual LRefCountedObject {
 public:
  explicit LListText(const String& text) : mText(text) {}
  String ToString() const override { return mText; }

 private:
  const String mText;
};

// A list of any number of records, shown by as many row controls as fit into its view, plus one. Rows are
// made from the child "templateItem", or stand in the skin as "item1", "item2" and so on. Records come from
// the texts "ITEM.number" of the control, or from the program.
//
// An index counts records. Operations with an index give kInvalidArgument for one that is not there.
// Notifications: "NID_SELECTION_CHANGE", "NID_ITEM_ACTIVATED", "NID_ITEM_DOUBLE_CLICKED";
// "NID_ITEM_RIGHT_CLICK" with an LHolder<int> of the index; "NID_ITEM_HOVER_CONDITION_CHANGE" and
// "NID_ITEM_LEFT_DRAG_CONDITION_CHANGE" with an LItemConditionsParam.
//
// Threads: main thread.
class LListBox : public HandlingControl<LListBox, LScrollView> {
 public:
  LListBox(const RCPtr<LControl>& parent, const String& name);
  ~LListBox() override;

  // What shapes a multiple selection.
  static constexpr std::int32_t kToggleMode = 0;    // Each click toggles.
  static constexpr std::int32_t kModifierMode = 1;  // Ctrl and Shift shape a click.

  TFRESULT Initialize() override;
  TFRESULT ApplyDescriptor(const RCPtr<LControlDescriptor>& descriptor) override;
  TFRESULT AdoptChild(const RCPtr<LControl>& child, const RCPtr<LControlDescriptor>& descriptor) override;
  void Destroy() override;
  TFRESULT OnDescriptorApplied() override;
  void OnChildRemoved(const RCPtr<LControl>& child, std::int32_t index) override;
  void OnScrollOffsetChange(const PointT<double>& from, const PointT<double>& to) override;
  void OnBarVisibilityChange(LayoutAxis axis) override;
  void EndBoundsChange() override;
  void OnClientViewChange() override;
  void OnConditionChange(const RCPtr<LConditionsParam>& conditions) override;
  void OnMouseMove(const RCPtr<LPointWithModifiersParam>& param) override;
  void OnLeftMouseUp(const RCPtr<LMouseButtonParam>& param) override;
  TFRESULT OnKeyDown(const RCPtr<LKeyParam>& param) override;

  // Records: ListBox.cpp.

  virtual std::int32_t GetItemCount() { return static_cast<std::int32_t>(mRecords.size()); }
  // Adds empty records at the end, or removes from there. Returns the count; the negative count when it
  // could not be reached.
  virtual std::int32_t SetItemCount(std::int32_t count);
  virtual TFRESULT RemoveItem(std::int32_t index);
  // kNothingDone for an empty list.
  virtual TFRESULT RemoveAllItems();
  virtual TFRESULT Sort();
  TFRESULT SetItem(std::int32_t index, const RCPtr<LRefCountedObject>& label);
  TFRESULT SetItemText(std::int32_t index, const String& text) {
    return SetItem(index, MakeRC<LListText>(text));
  }
  // At index, which may be the count; at its place in a sorted list.
  TFRESULT InsertItem(std::int32_t index, const RCPtr<LRefCountedObject>& label);
  String GetItemText(std::int32_t index);
  virtual TFRESULT SetItemHidden(std::int32_t index, bool hidden);
  TFRESULT SetItemSeparator(std::int32_t index, bool separator);
  void SetSorted(bool sorted);

  // Rows: ListBoxRows.cpp.

  // Takes row height and the padding around a text from a row.
  virtual void MeasureTemplate(const RCPtr<LControl>& row);
  // -1 for what is no row.
  virtual std::int32_t IndexOfRow(const LControl* row);
  // Null when the factory makes none.
  virtual RCPtr<LListBoxItem> AddRow();
  // Shows a record in its row. row gets its number, or -1 when it is out of view or hidden.
  virtual TFRESULT UpdateRow(std::int32_t index, std::int32_t& row);
  virtual std::int32_t GetRowOfItem(std::int32_t index);
  // Pixels.
  virtual std::int32_t GetItemWidth(std::int32_t index);
  virtual std::int32_t GetContentHeight();
  std::int32_t GetRowHeight() const { return mRowHeight; }
  std::int32_t GetRowCount() const { return static_cast<std::int32_t>(mRows.size()); }
  std::int32_t GetFirstVisible() const { return mFirstVisible; }

  // Selection: ListBoxSelection.cpp.

  // From first to last in either direction; a negative last stands for first. exclusive: it alone. Returns
  // first when it is the selection already.
  TFRESULT SelectRange(std::int32_t first, std::int32_t last, bool exclusive);
  // kNothingDone when it is not selected.
  TFRESULT Deselect(std::int32_t index);
  void ClearSelection();
  // Scrolls until the record, or the nearest one that is not hidden, can be seen. kNothingDone without one.
  TFRESULT EnsureVisible(std::int32_t index);
  void Activate(std::int32_t index);
  TFRESULT SetItemValue(std::int32_t index, double value);
  bool IsItemSelected(std::int32_t index) const;
  std::int32_t GetSelectedCount() const { return mSelectedCount; }
  std::int32_t GetCaret() const { return mCaret; }
  std::int32_t GetAnchor() const { return mAnchor; }
  virtual void SetSelectOnHover(bool selects);
  void SetMultiSelect(bool multiSelect) { mMultiSelect = multiSelect; }
  void SetClickMode(std::int32_t mode) { mClickMode = mode; }

 protected:
  virtual void OnSelectionChange() {}
  virtual void OnItemActivated() {}
  virtual bool IsItemSelectable(std::int32_t index);
  // Activating the item opens more items instead of choosing it.
  virtual bool LeadsOn(std::int32_t) { return false; }
  virtual TFRESULT SwapItems(std::int32_t first, std::int32_t second);
  // By the texts, whatever their case.
  virtual TFRESULT SortRange(std::int32_t first, std::int32_t count);
  virtual ListRecord* GetItemRecord(std::int32_t index);
  virtual void InsertRecord(std::int32_t index);
  virtual void EraseRecord(std::int32_t index);

  bool IsItem(std::int32_t index) const {
    return index >= 0 && index < static_cast<std::int32_t>(mRecords.size());
  }
  // The row under a point of this control's frame; null without one.
  RCPtr<LListBoxItem> FindRowAt(const PointT<double>& point);
  void RefreshRows(std::int32_t fromIndex = 0);
  void SetContentWidth(double width);
  void SetContentHeight(double height);
  // The extent of what is scrolled, after items or their widths have changed.
  void UpdateWidth();
  void FitHeight();
  // As many rows as the view shows.
  void GrowRows();
  // Pixels of a text in one line.
  static double MeasureText(const RCPtr<LFont>& font, const String& text);
  TFRESULT HandleRowHover(const RCPtr<LNotificationDistributor>& sender,
                          const RCPtr<LNotification>& notification);

  std::int32_t mItemPadding = 0;   // Pixels around an item's text.
  std::int32_t mContentWidth = 0;  // Pixels of the widest item.
  std::vector<ListRecord> mRecords;
  std::vector<RCPtr<LListBoxItem>> mRows;  // From the top.
  RCPtr<LControlDescriptor> mTemplateDescriptor;
  std::int32_t mAnchor = -1;
  std::int32_t mCaret = -1;
  bool mMultiSelect = false;
  std::int32_t mClickMode = kModifierMode;
  std::int32_t mPressIndex = -1;
  bool mSelectOnHover = false;
  bool mSorted = false;
  std::int32_t mRowHeight = kDefaultRowHeight;
  std::int32_t mSelectedCount = 0;
  std::int32_t mHiddenCount = 0;
  std::int32_t mRowDragThreshold = 1;
  std::int32_t mFirstVisible = 0;
  bool mInRowGrowth = false;
  bool mApplyingDescriptor = false;
  bool mTemplateMeasured = false;
  bool mBulkChange = false;

 private:
  static constexpr std::int32_t kDefaultRowHeight = 14;  // Pixels.

  bool TakeTemplate();
  void TakeReadyRows();
  void ReadItems();
  TFRESULT HookRow(const RCPtr<LListBoxItem>& row);
  void ItemsChanged(std::int32_t fromIndex);
  static void ClearRow(LListBoxItem& row);
  bool ExpandsTemplate() const;
  void FollowContentWidth();
  bool NeedsContentWidth() const;
  void RecomputeContentWidth();
  std::int32_t CountVisibleBefore(std::int32_t index) const;
  std::int32_t StepVisible(std::int32_t index, std::int32_t steps) const;
  std::int32_t FindFirstVisible(double offset) const;
  std::int32_t StepBack(std::int32_t index, std::int32_t steps) const;
  std::int32_t CountFittingRows();
  void ScrollToFirst(std::int32_t first);
  void SlideEnds(std::int32_t index);
  void MoveEndsFrom(std::int32_t index);
  bool SelectAlone(std::int32_t first, std::int32_t last);
  void TellSelectionChange();
  void ToggleItem(std::int32_t index);
  void OnRowPress(std::int32_t index, const RCPtr<LMouseButtonParam>& param);
  void SelectByKey(std::int32_t step, bool extends);
  RCPtr<LItemConditionsParam> DescribeRow(const RCPtr<LListBoxItem>& row, const RCPtr<LNotification>& event);
  TFRESULT HandleRowDown(const RCPtr<LNotificationDistributor>& sender,
                         const RCPtr<LNotification>& notification);
  TFRESULT HandleRowUp(const RCPtr<LNotificationDistributor>& sender,
                       const RCPtr<LNotification>& notification);
  TFRESULT HandleRowDrag(const RCPtr<LNotificationDistributor>& sender,
                         const RCPtr<LNotification>& notification);
};

}  // namespace TF
