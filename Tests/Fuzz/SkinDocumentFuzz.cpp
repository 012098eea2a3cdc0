#include <cstdint>
#include <cstdlib>
#include <ostream>
#include <stdexcept>
#include <streambuf>

#include "TFFramework/ControlBase/Control.h"
#include "TFFramework/ControlBase/ControlFactory.h"
#include "TFFramework/ControlBase/SkinReader.h"
#include "TFFramework/ControlBase/XmlReader.h"
#include "TFFramework/Utilities/Storage/DiagnosticsLog.h"
#include "TFFramework/Utilities/Storage/Resources.h"

// Whatever the document, what was read holds together, and controls can be made from it.

namespace {

void Require(bool condition) {
  if (!condition) std::abort();
}

class Discard : public std::streambuf {
 protected:
  int_type overflow(int_type character) override { return traits_type::not_eof(character); }
  std::streamsize xsputn(const char*, std::streamsize size) override { return size; }
};

TF::LControlFactory* gFactory = nullptr;

// Makes its children with the factory of the run, as there is no application.
class Node : public TF::LControl {
 public:
  using LControl::LControl;

  TFRESULT CreateChildren(const TF::RCPtr<TF::LControlDescriptor>& descriptor) override {
    for (const auto& child : descriptor->mSubControls) {
      gFactory->CreateSubControl(TF::RCPtr<TF::LControl>(this), child);
    }
    return TF::kSuccess;
  }
};

void CheckPart(const TF::RCPtr<TF::LDockedPart>& part) {
  Require(part && part->mPart);
  Require(part->Width.value_or(1) > 0 && part->Height.value_or(1) > 0);
}

void CheckDefinitions(const TF::SkinContents& contents) {
  for (const auto& [name, part] : contents.mParts) {
    Require(part->mName == name && (part->mColorizer || !part->mImageFile.IsEmpty()));
  }
  for (const auto& [name, look] : contents.mLooks) {
    Require(look->mName == name && look->mHasText == static_cast<bool>(look->TextForegroundPart));
    if (look->mClientPart) CheckPart(look->mClientPart);
    for (const auto& part : look->mNonClientParts) CheckPart(part);
  }
  for (const auto& [name, list] : contents.mLookLists) {
    Require(list && list->GetCount() <= TF::SkinReader::kMostLooks);
  }
}

void CheckControl(const TF::LControlDescriptor& control, std::uint32_t depth) {
  Require(control.mLayout && control.mCreateFunction == nullptr);
  Require(depth < TF::XmlReader::kDeepestNesting);
  std::int32_t order = INT32_MIN;
  for (const auto& child : control.mSubControls) {
    Require(child->mParent == &control && child->mLayout->LayoutOrder >= order);
    order = child->mLayout->LayoutOrder;
    CheckControl(*child, depth + 1);
  }
}

// A document that broke off leaves the children of its open controls unsorted.
void CheckSkins(const TF::SkinContents& contents) {
  for (const auto& skin : contents.mSkins) {
    Require(skin->mSkin && !skin->mParent);
    for (const auto& control : skin->mSubControls) {
      Require(control->mParent == skin.Get());
      CheckControl(*control, 0);
    }
  }
}

void MakeControls(TF::LControlFactory& factory) {
  for (std::int32_t index = 0; index < static_cast<std::int32_t>(factory.GetSkinCount()); ++index) {
    factory.SetCurrentSkin(index);
    for (const auto& control : factory.GetSkinContents().mSkins[index]->mSubControls) {
      try {
        const auto made = factory.CreateControl(control->mName, nullptr);
        Require(made && made->GetName() == control->mName && made->IsCreated());
        made->Destroy();
      } catch (const std::runtime_error&) {
        // A class that is not registered.
      }
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // Never destroyed: the log writes to it to the very end of the process.
  static std::ostream& silence = *new std::ostream(new Discard);
  TF::GetDiagnosticsLog().SetNarrowStream(silence);
  const TF::Resource resources[] = {{u"TFXML", u"SKIN", {data, size}}};
  TF::SetResources(resources);

  const auto factory = TF::MakeRC<TF::LControlFactory>(u"Tessel");
  gFactory = factory.Get();
  factory->RegisterControlCreateFunction(u"C", TF::MakeControl<Node>);
  try {
    const TFRESULT result = factory->LoadSkins(u"::SKIN");
    if (result == TF::kSuccess) CheckSkins(factory->GetSkinContents());
  } catch (const std::runtime_error&) {
    // A control without a class or a name.
  }
  CheckDefinitions(factory->GetSkinContents());
  MakeControls(*factory);
  return 0;
}
