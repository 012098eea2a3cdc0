#pragma once

#include <cstdint>
#include <initializer_list>
#include <map>

#include "TFFramework/ControlBase/ControlDescriptor.h"
#include "TFFramework/ControlBase/SkinContents.h"
#include "TFFramework/ControlBase/StringDocument.h"
#include "TFFramework/ObjectBase/RCPtr.h"
#include "TFFramework/ObjectBase/RefCountedObject.h"
#include "TFFramework/Utilities/Storage/StringTable.h"

namespace TF {

class LControl;
class LRootWindow;

// Holds what the program's documents say about its controls, and makes the controls: their texts, in
// the one language that was chosen at the start, and the skins, of which one is current. One exists
// in a process.
//
// Threads: main thread. The tables of texts that it hands out may be read on any.
class LControlFactory : public virtual LRefCountedObject {
 public:
  // The application's; null without one.
  static RCPtr<LControlFactory> GetCurrent();

  // The name holds until a document names the application.
  explicit LControlFactory(const String& applicationName);

  // Reads the string documents and the skins of a folder, or, for "::", those of the program's
  // resources. Returns the first failure.
  TFRESULT LoadResources(const String& folder, std::uint32_t language);

  // Adds the texts of the framework's document, in the user's language, else in its primary
  // language, else in English; then those of the application's document in the language that the
  // framework's ended with, else in English. A source is "::" and a resource's name, or a file. Only
  // a file that cannot be read is a failure: then kFailure, or kOutOfMemory. A resource that is not
  // there and a document that does not parse leave texts out.
  TFRESULT LoadStrings(const String& frameworkSource, const String& applicationSource,
                       std::uint32_t language);

  // Copies of one section; null when no document had it.
  RCPtr<LStringTable> GetFrameworkStrings() const;
  RCPtr<LStringTable> GetApplicationStrings() const;
  // The section of a control below a parent of this class. An empty class stands for no parent.
  RCPtr<LStringTable> GetControlStrings(const String& parentClass, const String& controlName) const;

  // Adds the skins of a document and makes the first of all skins current. A source is one as above.
  // kFailure when there is no such source or it does not parse, with a record in the diagnostics;
  // what came before a fault is kept. kOutOfMemory without memory for the document. Throws
  // runtime_error for a control without a class or a name.
  TFRESULT LoadSkins(const String& source);

  // kInvalidArgument for a null function; kNothingDone when the class has one already, which stays.
  TFRESULT RegisterControlCreateFunction(const String& className, ControlCreateFunction function);
  // Throws runtime_error for a class that was not registered.
  void GetControlCreateFunction(const String& className, ControlCreateFunction& function) const;

  // A top-level control of the current skin, the last one of this name; null when there is none.
  RCPtr<LControlDescriptor> FindControlDescriptor(const String& name) const;
  // Makes a top-level control, which is visible whatever the skin says, and everything below it, and
  // hands it the window, which may be null. Null when the current skin has no such control or it
  // could not be built. Throws runtime_error for a class that was not registered.
  RCPtr<LControl> CreateControl(const String& name, const RCPtr<LRootWindow>& window);
  // The same below a parent, and without the window. Null for a null descriptor.
  RCPtr<LControl> CreateSubControl(const RCPtr<LControl>& parent,
                                   const RCPtr<LControlDescriptor>& descriptor);
  // A descriptor for a control that is made at run time: as the given one, but for layout and name,
  // and enclosed by none. The controls below it are shared. Null for a null descriptor.
  RCPtr<LControlDescriptor> CopyDescriptor(const RCPtr<LControlDescriptor>& descriptor,
                                           const RCPtr<LLayoutDescriptor>& layout, const String& name) const;
  // Has the control take over what the current skin says of a top-level control of its name, and
  // returns the control's result. kNothingDone when the skin has none, kInvalidArgument for null.
  TFRESULT ApplySkin(const RCPtr<LControl>& control);

  // An index without a skin leaves the program without one.
  void SetCurrentSkin(std::int32_t index) { mCurrentSkin = index; }
  std::uint32_t GetSkinCount() const { return static_cast<std::uint32_t>(mSkins.mSkins.GetCount()); }
  // Overrides what the caller has filled in by what the current skin gives: a name that is not empty,
  // a size of 1 point or more, a style other than -1. kNothingDone when it gives nothing.
  TFRESULT GetSkinFont(String& name, float& size, std::int32_t& style) const;

  // Everything that was read from skins.
  const SkinContents& GetSkinContents() const { return mSkins; }

  // Part of section names: final when all documents were loaded.
  const String& GetApplicationName() const { return mApplicationName; }

 private:
  TFRESULT LoadStringDocument(const String& source, std::initializer_list<std::uint32_t> languages);
  void ChooseLanguage(const StringDocument& document, std::initializer_list<std::uint32_t> languages);
  RCPtr<LStringTable> MakeTable(const String& section) const;
  RCPtr<LControlDescriptor> CurrentSkin() const;

  String mApplicationName;
  std::uint32_t mLanguage = 0;        // Of the document that was read last.
  std::uint32_t mStringsMatched = 0;  // How many of its translations were in that language.
  StringDocument::Sections mStringSections;
  String mFolder;  // Stands before the names of pictures, its separator included.
  SkinContents mSkins;
  std::int32_t mCurrentSkin = 0;
  std::map<String, ControlCreateFunction> mCreateFunctions;
};

}  // namespace TF
