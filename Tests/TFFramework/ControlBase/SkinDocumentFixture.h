#pragma once

#include <gtest/gtest.h>

#include <string>

#include "TFFramework/ControlBase/ControlFactory.h"
#include "TFFramework/Utilities/Storage/Resources.h"
#include "Tests/Support/LogCapture.h"

namespace TF {

// Loads documents that stand in the test itself.
class SkinDocumentFixture : public testing::Test {
 protected:
  void TearDown() override { SetResources({}); }

  // Into a factory of its own, which holds the program "Tessel".
  TFRESULT Load(const std::string& document) {
    mFactory = MakeRC<LControlFactory>(u"Tessel");
    return LoadMore(document);
  }
  TFRESULT LoadMore(const std::string& document) {
    const Resource resources[] = {
        {u"TFXML", u"SKIN", {reinterpret_cast<const unsigned char*>(document.data()), document.size()}}};
    SetResources(resources);
    const TFRESULT result = mFactory->LoadSkins(u"::SKIN");
    SetResources({});
    return result;
  }

  const SkinContents& Contents() const { return mFactory->GetSkinContents(); }
  // The skin's node; null when there are fewer skins.
  RCPtr<LControlDescriptor> Skin(std::int32_t index = 0) const {
    return index < Contents().mSkins.GetCount() ? Contents().mSkins[index] : nullptr;
  }

  RCPtr<LControlFactory> mFactory;
  TestSupport::LogCapture mLog;
};

// A document around these elements.
inline std::string SkinDocument(const std::string& elements) {
  return "<R><Application Name='App'>" + elements + "</Application></R>";
}

}  // namespace TF
