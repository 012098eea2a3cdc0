// A list of many records beside one of few, which it should cost no more than (wanted: at most 1.2 times),
// and opening a popup of twenty items beside painting its area once (wanted: at most 3 times).

#include <benchmark/benchmark.h>

#include <string>

#include "Benchmarks/WindowStage.h"
#include "TFFramework/ControlBase/ControlFactory.h"
#include "TFFramework/Controls/CheckedListBox.h"
#include "TFFramework/Controls/PopupMenu.h"

namespace {

using TF::RCPtr;
using WindowBenchmarks::Number;
using WindowBenchmarks::Stage;

constexpr int kItems = 20;

std::string Rows(const char* type) {
  return std::string("<SubControl Class='") + type +
         "' Name='templateItem' XSizeToControl='Client' XSizeRel='1' XSizeAbs='0' YSizeAbs='20'>"
         "<Skin Name='row' LookList='Box'/></SubControl>";
}

std::string ListPart() {
  return "<SubControl Class='Framework.ListBox' Name='list'" + Number("XSizeAbs", 400) +
         Number("YSizeAbs", 425) + "><Skin Name='list' LookList='Screen'>" + Rows("Framework.ListBoxItem") +
         "</Skin></SubControl>";
}

// With as many records as the benchmark's argument says.
struct ListStage : Stage {
  explicit ListStage(const benchmark::State& state) : Stage(ListPart()), mList(Child("list")) {
    const auto count = static_cast<std::int32_t>(state.range(0));
    mList->SetItemCount(count);
    for (std::int32_t index = 0; index < count; ++index)
      mList->SetItemText(index, TF::String::Format(u"record %d", index % 100));
    Paint();
  }
  RCPtr<TF::LListBox> mList;
};

void ListIsShown(benchmark::State& state) {
  ListStage stage(state);
  for (auto _ : state) {
    stage.mList->SetVisible(false);
    stage.mList->SetVisible(true);
    stage.Paint();
  }
  state.counters["bytes_a_record"] = sizeof(TF::ListRecord);
}
BENCHMARK(ListIsShown)->Arg(1000)->Arg(100000);

void ListScrollsToItsEndAndBack(benchmark::State& state) {
  ListStage stage(state);
  for (auto _ : state) {
    stage.mList->EnsureVisible(static_cast<std::int32_t>(state.range(0)) - 1);
    stage.Paint();
    stage.mList->EnsureVisible(0);
    stage.Paint();
  }
}
BENCHMARK(ListScrollsToItsEndAndBack)->Arg(1000)->Arg(100000);

void ListIsPaintedWhole(benchmark::State& state) {
  ListStage stage(state);
  for (auto _ : state) {
    stage.Root()->InvalidateAll();
    stage.Paint();
  }
}
BENCHMARK(ListIsPaintedWhole)->Arg(1000)->Arg(100000);

std::string OwnerPart() {
  return "<SubControl Class='Box' Name='owner' XSizeAbs='400' YSizeAbs='425'><Skin Name='owner'>"
         "<SubControl Class='Framework.PopupMenu' Name='popup' ClipToParent='False' Z_Order='1000' "
         "IsVisible='False' TabStop='0' XSizeAbs='100' YSizeAbs='20'><Skin Name='popup' LookList='Screen'>" +
         Rows("Framework.MenuItem") +
         "</Skin><CreateParamList Name='popup'><CreateParam ID='DEFER_CREATE'>true</CreateParam>"
         "</CreateParamList></SubControl></Skin></SubControl>";
}

struct PopupStage : Stage {
  PopupStage() : Stage(OwnerPart()), mOwner(Child("owner")), mMenu(TF::MakeRC<TF::LMenuDescriptor>()) {
    for (int item = 0; item < kItems; ++item)
      mMenu->AddItem(-1, TF::String::Format(u"Item %d", item), u"NID_ITEM", true, false);
  }
  RCPtr<TF::LPopupMenu> Open() {
    const RCPtr<TF::LPopupMenu> popup(TF::LControlFactory::GetCurrent()->CreateSubControl(
        mOwner, mOwner->GetDescriptor()->mSubControls[0]));
    popup->SetMenu(mMenu);
    popup->SetVisible(true);
    Paint();
    return popup;
  }

  RCPtr<TF::LControl> mOwner;
  RCPtr<TF::LMenuDescriptor> mMenu;
};

void PopupOfTwentyItemsOpens(benchmark::State& state) {
  PopupStage stage;
  for (auto _ : state) {
    const RCPtr<TF::LPopupMenu> popup = stage.Open();
    state.PauseTiming();
    popup->Destroy();
    stage.Paint();
    state.ResumeTiming();
  }
}
BENCHMARK(PopupOfTwentyItemsOpens);

// As a menu bar does, which keeps its popups.
void PopupOfTwentyItemsOpensAgain(benchmark::State& state) {
  PopupStage stage;
  const RCPtr<TF::LPopupMenu> popup = stage.Open();
  for (auto _ : state) {
    state.PauseTiming();
    popup->SetVisible(false);
    stage.Paint();
    state.ResumeTiming();
    popup->SetVisible(true);
    stage.Paint();
  }
}
BENCHMARK(PopupOfTwentyItemsOpensAgain);

void AreaOfThePopupIsPainted(benchmark::State& state) {
  PopupStage stage;
  const RCPtr<TF::LPopupMenu> popup = stage.Open();
  for (auto _ : state) {
    popup->InvalidateFrame();
    stage.Paint();
  }
}
BENCHMARK(AreaOfThePopupIsPainted);

}  // namespace
