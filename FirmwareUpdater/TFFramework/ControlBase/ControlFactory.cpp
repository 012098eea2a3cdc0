#include "TFFramework/ControlBase/ControlFactory.h"

#include <fmt/format.h>

#include <stdexcept>

#include "TFFramework/Application/FrameworkApp.h"
#include "TFFramework/ControlBase/Control.h"
#include "TFFramework/ControlBase/DocumentSource.h"
#include "TFFramework/ControlBase/SkinReader.h"
#include "TFFramework/Utilities/Storage/DiagnosticsLog.h"

namespace TF {

namespace {

const char16_t* const kResources = u"::";
constexpr char16_t kSeparator = u'\\';
constexpr float kSmallestFont = 1;  // Points.

}  // namespace

RCPtr<LControlFactory> LControlFactory::GetCurrent() {
  const LFrameworkApp* const application = LFrameworkApp::GetInstance();
  return application ? application->GetControlFactory() : nullptr;
}

LControlFactory::LControlFactory(const String& applicationName) : mApplicationName(applicationName) {}

TFRESULT LControlFactory::LoadResources(const String& folder, std::uint32_t language) {
  const bool isResources = folder == kResources;
  mFolder = isResources ? folder : folder + String(kSeparator);
  const TFRESULT result =
      LoadStrings(mFolder + (isResources ? u"FRAMEWORK_STRINGS" : u"FrameworkStrings.xml"),
                  mFolder + (isResources ? u"APP_STRINGS" : u"StringTables.xml"), language);
  if (Failed(result)) return result;
  return LoadSkins(mFolder + (isResources ? u"APP_SKINS" : u"Skins.xml"));
}

TFRESULT LControlFactory::LoadSkins(const String& source) {
  mCurrentSkin = 0;
  DocumentSource bytes;
  const TFRESULT found = bytes.Open(source);
  if (found == kNothingDone) LogRecord(fmt::format("skin: there is no \"{}\"", ToUtf8(source)));
  if (found != kSuccess) return Failed(found) ? found : kFailure;
  SkinReader reader(mSkins, mApplicationName, mFolder, mLanguage);
  const TFRESULT result = reader.Read(bytes.GetBytes());
  mApplicationName = reader.GetApplicationName();
  return result;
}

TFRESULT LControlFactory::RegisterControlCreateFunction(const String& className,
                                                        ControlCreateFunction function) {
  if (!function) return kInvalidArgument;
  return mCreateFunctions.try_emplace(className, function).second ? kSuccess : kNothingDone;
}

void LControlFactory::GetControlCreateFunction(const String& className,
                                               ControlCreateFunction& function) const {
  const auto found = mCreateFunctions.find(className);
  if (found == mCreateFunctions.end()) {
    LogRecord(fmt::format("skin: the control class \"{}\" is not registered", ToUtf8(className)));
    Throw<std::runtime_error>("", "TF::LControlFactory::GetControlCreateFunction");
  }
  function = found->second;
}

RCPtr<LControlDescriptor> LControlFactory::CurrentSkin() const {
  if (mCurrentSkin < 0 || mCurrentSkin >= mSkins.mSkins.GetCount()) return nullptr;
  return mSkins.mSkins[mCurrentSkin];
}

RCPtr<LControlDescriptor> LControlFactory::FindControlDescriptor(const String& name) const {
  const auto skin = CurrentSkin();
  if (!skin) return nullptr;
  for (std::int32_t index = skin->mSubControls.GetCount() - 1; index >= 0; --index) {
    if (skin->mSubControls[index]->mName == name) return skin->mSubControls[index];
  }
  return nullptr;
}

RCPtr<LControl> LControlFactory::CreateControl(const String& name, const RCPtr<LRootWindow>& window) {
  const auto descriptor = FindControlDescriptor(name);
  if (!descriptor) return nullptr;
  descriptor->mLayout->IsVisible = true;
  auto control = CreateSubControl(nullptr, descriptor);
  if (control) control->SetRootWindow(window);
  return control;
}

RCPtr<LControl> LControlFactory::CreateSubControl(const RCPtr<LControl>& parent,
                                                  const RCPtr<LControlDescriptor>& descriptor) {
  if (!descriptor) return nullptr;
  ControlCreateFunction& function = descriptor->mCreateFunction;
  if (!function) GetControlCreateFunction(descriptor->mClass, function);
  return function ? function(parent, descriptor) : nullptr;
}

RCPtr<LControlDescriptor> LControlFactory::CopyDescriptor(const RCPtr<LControlDescriptor>& descriptor,
                                                          const RCPtr<LLayoutDescriptor>& layout,
                                                          const String& name) const {
  if (!descriptor) return nullptr;
  auto copy = MakeRC<LControlDescriptor>();
  copy->mName = name;
  copy->mClass = descriptor->mClass;
  copy->mSubControls = descriptor->mSubControls;
  copy->mSkin = descriptor->mSkin;
  copy->mLayout = layout;
  copy->mCreateParams = descriptor->mCreateParams;
  copy->mCreateFunction = descriptor->mCreateFunction;
  return copy;
}

TFRESULT LControlFactory::ApplySkin(const RCPtr<LControl>& control) {
  if (!control) return kInvalidArgument;
  const auto descriptor = FindControlDescriptor(control->GetName());
  return descriptor ? control->ApplyDescriptor(descriptor) : kNothingDone;
}

TFRESULT LControlFactory::GetSkinFont(String& name, float& size, std::int32_t& style) const {
  const auto skin = CurrentSkin();
  if (!skin) return kNothingDone;
  const FontAttributes& font = *skin->mSkin;
  TFRESULT result = kNothingDone;
  const auto take = [&result](bool isGiven, auto& target, const auto& value) {
    if (!isGiven) return;
    target = value;
    result = kSuccess;
  };
  take(!font.mFontName.IsEmpty(), name, font.mFontName);
  take(font.mFontSize >= kSmallestFont, size, font.mFontSize);
  take(font.mFontStyle != FontAttributes::kNoFontStyle, style, font.mFontStyle);
  return result;
}

}  // namespace TF
