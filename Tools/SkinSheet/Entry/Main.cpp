#include <fstream>
#include <iostream>
#include <stdexcept>

#include "App/Resources/ProgramResources.h"
#include "Platform/PngEncoder.h"
#include "TFFramework/ControlBase/ControlFactory.h"
#include "TFFramework/Notification/NotificationCenterManager.h"
#include "Tools/SkinSheet/SheetApplication.h"
#include "Tools/SkinSheet/SkinSheet.h"

namespace {

constexpr std::uint32_t kEnglish = 0x0409;

void WriteFile(const std::string& path, const std::vector<unsigned char>& bytes) {
  std::ofstream file(path, std::ios::binary);
  file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  if (!file.flush()) throw std::runtime_error(path + " cannot be written");
}

void MakeSheet(const std::string& path) {
  const auto factory = TF::MakeRC<TF::LControlFactory>(TF::String(u"Tessel"));
  if (TF::Failed(factory->LoadResources(u"::", kEnglish))) throw std::runtime_error("the skin does not load");
  const TF::RCPtr<TF::LRenderer> renderer =
      TF::LRenderer::Create(static_cast<std::int32_t>(TF::RendererType::kGdi), nullptr);
  const auto application = TF::MakeRC<LSheetApplication>(renderer);
  WriteFile(path, Platform::EncodePng(SkinSheet(renderer, factory->GetSkinContents()).Draw()));
}

}  // namespace

// Writes a picture of all looks of the program's skin.
int main(int argc, char** argv) {
  if (argc != 2 || argv[1][0] == '-') {
    std::cerr << "usage: tessel-skin-sheet PICTURE.png" << std::endl;
    return 2;
  }
  RegisterProgramResources();
  int status = 0;
  try {
    MakeSheet(argv[1]);
  } catch (const std::exception& exception) {
    std::cerr << exception.what() << std::endl;
    status = 1;
  }
  TF::LNotificationCenterManager::ReleaseInstance();
  return status;
}
