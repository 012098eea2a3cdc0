#include "TFFramework/Application/ApplicationFolders.h"

#include "Platform/Folders.h"
#include "TFFramework/ObjectBase/Exception.h"
#include "TFFramework/Utilities/Storage/TFFile.h"

namespace TF {

namespace {

String SettingsFolder(const String& base, const String& company, const String& product) {
  if (base.IsEmpty()) return base;
  String folder = base;
  for (const String& name : {company, product}) {
    folder += u"\\";
    folder += File::MakeValidName(name);
    File::EnsureFolder(folder);
  }
  return folder;
}

}  // namespace

String GetApplicationFolder(std::int32_t id, const String& company, const String& product) {
  switch (id) {
    case kProgramFolderId:
      return String(Platform::ProgramFolder());
    case kResourceFolderId:
      return String(u"::");
    case kCommonFolderId:
      return SettingsFolder(String(Platform::CommonFolder()), company, product);
    case kLocalFolderId:
      return SettingsFolder(String(Platform::LocalFolder()), company, product);
    case kDocumentsFolderId: {
      String folder(Platform::DocumentsFolder());
      if (!folder.IsEmpty()) File::EnsureFolder(folder);
      return folder;
    }
    default:
      Throw<std::out_of_range>("Unknown Path ID.", "TF::MFCFrameworkApp<class LApplication>::GetFolder");
  }
}

}  // namespace TF
