#pragma once

#include <cstdint>
#include <vector>

#include "Platform/FileChooser.h"
#include "TFFramework/ObjectBase/RCPtr.h"
#include "TFFramework/Utilities/Storage/StringArray.h"

namespace TF {

// The filters of a text "name|patterns|name|patterns...", in which ";" parts patterns. For a dialog that
// takes patterns by the letter: a stray double quote is left out, and "*.*" means every name, with a point or
// without. A name without patterns is no filter.
std::vector<Platform::FileFilter> ReadFileFilters(const String& text);

// Lets the user choose files in the desktop's own dialog.
//
// Threads: main thread.
class LFileDialog : public virtual LRefCountedObject {
 public:
  // Where the dialog opens the first time; an empty folder leaves it to the desktop.
  explicit LFileDialog(const String& folder) : mFolder(folder) {}

  // Returns when the user has chosen; meanwhile nothing else in the program goes on. kFailure for a cancel
  // and for everything that is no existing file: the folder then stays as it was, and nothing is chosen. What
  // went wrong stands in the diagnostics.
  //
  // Only existing files can be chosen, by their full names: there is nothing that the default extension could
  // be appended to.
  TFRESULT Show(const String& filter, const String& defaultExtension, const String& title, bool multiSelect);

  // The chosen file; of several, none.
  const String& GetPath() const { return mPath; }
  // The folder that the dialog opens next.
  const String& GetFolder() const { return mFolder; }
  // With multiSelect all chosen files, else none.
  const StringArray& GetPaths() const { return mPaths; }

 private:
  void TakePaths(const std::vector<std::u16string>& paths, bool multiSelect);

  String mPath;
  String mFolder;
  StringArray mPaths;
};

}  // namespace TF
