#include "TFFramework/Controls/FrameworkControls.h"

#include "TFFramework/ControlBase/ControlFactory.h"
#include "TFFramework/Controls/Button.h"
#include "TFFramework/Controls/CheckedListBox.h"
#include "TFFramework/Controls/ComboMenu.h"
#include "TFFramework/Controls/Label.h"
#include "TFFramework/Controls/MainMenu.h"
#include "TFFramework/Controls/Panel.h"
#include "TFFramework/Controls/PopupMenu.h"
#include "TFFramework/Controls/ProgressBar.h"
#include "TFFramework/Controls/ScrollBar.h"
#include "TFFramework/Controls/StatusBar.h"
#include "TFFramework/Controls/ToolTip.h"
#include "TFFramework/ObjectBase/Exception.h"

namespace TF {

namespace {

// Stands for the classes that no program on this framework has needed so far. Their names stay taken.
RCPtr<LControl> RefuseControl(const RCPtr<LControl>&, const RCPtr<LControlDescriptor>& descriptor) {
  Throw<std::runtime_error>("Control class not available : " + ToUtf8(descriptor->mClass),
                            "TF::RegisterFrameworkControls");
}

struct ControlClass {
  const char16_t* mName;
  ControlCreateFunction mCreate;
};

constexpr ControlClass kClasses[] = {
    {u"Framework.Button", MakeControl<LButton>},
    {u"Framework.OverlayButton", MakeControl<LListBoxItem>},
    {u"Framework.ListBox", MakeControl<LListBox>},
    {u"Framework.listboxNoScroll", MakeControl<LListBox>},
    {u"Framework.ListBoxItem", MakeControl<LListBoxItem>},
    {u"Framework.CheckedListBox", MakeControl<LCheckedListBox>},
    {u"Framework.CheckedListBoxItem", MakeControl<LCheckedListBoxItem>},
    {u"Framework.ListBoxWithIcons", MakeControl<LCheckedListBox>},
    {u"Framework.listbox2ColumnSortable", RefuseControl},
    {u"Framework.ScrollBar", MakeControl<LScrollbar>},
    {u"Framework.ScrollChannel", MakeControl<LPanel>},
    {u"Framework.ComboBox", RefuseControl},
    {u"Framework.ComboTextBox", RefuseControl},
    {u"Framework.CheckedComboBox", RefuseControl},
    {u"Framework.ComboBoxWithIcons", RefuseControl},
    {u"Framework.ComboSlider", RefuseControl},
    {u"Framework.ComboSlider.DropDownPanel", MakeControl<LPanel>},
    {u"Framework.Slider", RefuseControl},
    {u"Framework.Knob", RefuseControl},
    {u"Framework.TabControl", RefuseControl},
    {u"Framework.Label", MakeControl<LLabel>},
    {u"Framework.TextBox", RefuseControl},
    {u"Framework.NumericUpDown", RefuseControl},
    {u"Framework.Panel", MakeControl<LPanel>},
    {u"Framework.ToolTip", MakeControl<LToolTip>},
    {u"Framework.PopupMenu", MakeControl<LPopupMenu>},
    {u"Framework.MenuItem", MakeControl<LMenuListBoxItem>},
    {u"Framework.ComboMenu", MakeControl<LComboMenu>},
    {u"Framework.MainMenu", MakeControl<LMainMenu>},
    {u"Framework.FileDropper", RefuseControl},
    {u"Framework.StatusBar", MakeControl<LStatusBar>},
    {u"Framework.SplitterH", RefuseControl},
    {u"Framework.SplitterV", RefuseControl},
    {u"Framework.LevelMeter", RefuseControl},
    {u"Framework.ProgressBar", MakeControl<LProgressBar>},
    {u"Framework.TreeView", RefuseControl},
    {u"Framework.TreeViewItem", RefuseControl},
    {u"Framework.CenteredSlider", RefuseControl},
    {u"Framework.CenteredSliderBounds", MakeControl<LPanel>},
};

}  // namespace

TFRESULT RegisterFrameworkControls(LControlFactory& factory) {
  for (const ControlClass& each : kClasses) {
    const TFRESULT result = factory.RegisterControlCreateFunction(each.mName, each.mCreate);
    if (Failed(result)) return result;
  }
  return kSuccess;
}

}  // namespace TF
