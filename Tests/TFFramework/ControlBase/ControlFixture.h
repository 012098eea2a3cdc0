#pragma once

#include <string>

#include "TFFramework/ControlBase/Control.h"
#include "Tests/TFFramework/ControlBase/SkinDocumentFixture.h"
#include "Tests/TFFramework/Renderer/ClockApplication.h"

namespace TF {

// A plain control on a desktop without a window: a work area of 1000 by 800, in it at 100, 50 a window with
// a client area of 400 by 300, and the mouse at 130, 90.
class BoxControl : public LControl {
 public:
  BoxControl(const RCPtr<LControl>& parent, const String& name) : LControl(parent, name) { ++gAlive; }
  ~BoxControl() override { --gAlive; }

  static inline int gAlive = 0;
  SizeT<double> mClientSize{400, 300};

  TFRESULT Resize(double width, double height) {
    mClientSize = {width, height};
    return Relayout();
  }
  LLayoutDescriptor& Layout() { return *GetLayout(); }
  std::int32_t mRelayouts = 0;
  std::int32_t mBoundsChanges = 0;

  void BeginBoundsChange() override {
    ++mBoundsChanges;
    LControl::BeginBoundsChange();
  }
  void ParentResized(const SizeT<double>& size) override {
    ++mRelayouts;
    LControl::ParentResized(size);
  }

 protected:
  bool FindDesktop(LayoutDesktop& desktop) override {
    desktop = {{100, 50}, mClientSize, {1000, 800}, {130, 90}};
    return true;
  }
};

// Makes trees of boxes, from skins that stand in the test.
class ControlFixture : public SkinDocumentFixture {
 protected:
  static constexpr const char* kFill =
      " XSizeToControl='Client' XSizeRel='1' XSizeAbs='0' YSizeToControl='Client' YSizeRel='1' YSizeAbs='0' ";

  void TearDown() override {
    if (mMain) mMain->Destroy();
    SkinDocumentFixture::TearDown();
  }

  // Loads a skin in which elements stand, and makes its control "main".
  void MakeSkin(const std::string& elements) {
    ASSERT_EQ(Load(SkinDocument(elements)), kSuccess) << mLog.Text();
    mApplication = MakeRC<ClockApplication>(mFactory);
    mFactory->RegisterControlCreateFunction(u"Box", MakeControl<BoxControl>);
    mMain = mFactory->CreateControl(u"main", nullptr);
    ASSERT_TRUE(mMain);
  }
  // A main control as large as the window, with these children.
  void MakeTree(const std::string& children) {
    MakeSkin(std::string("<Skin>") + "<SubControl Class='Box' Name='main'" + kFill + "><Skin>" + children +
             "</Skin></SubControl></Skin>");
  }
  static std::string Box(const std::string& name, const std::string& attributes,
                         const std::string& children = "") {
    return "<SubControl Class='Box' Name='" + name + "' " + attributes +
           (children.empty() ? "/>" : "><Skin>" + children + "</Skin></SubControl>");
  }
  RCPtr<BoxControl> Main() const { return RCPtr<BoxControl>(mMain); }
  RCPtr<BoxControl> Child(const char16_t* name) const { return RCPtr<BoxControl>(mMain->FindChild(name)); }

  RCPtr<ClockApplication> mApplication;
  RCPtr<LControl> mMain;
};

}  // namespace TF
