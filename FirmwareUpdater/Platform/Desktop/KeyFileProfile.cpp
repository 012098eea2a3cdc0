#include "Platform/Desktop/KeyFileProfile.h"

#include <glib.h>

#include <cstdint>
#include <utility>

#include "Platform/NativePath.h"

namespace Platform {

namespace {

struct FreeKeyFile {
  void operator()(GKeyFile* file) const { g_key_file_free(file); }
};
using KeyFile = std::unique_ptr<GKeyFile, FreeKeyFile>;

struct FreeGlib {
  void operator()(void* memory) const { g_free(memory); }
};

class KeyFileProfile : public ProfileStore {
 public:
  explicit KeyFileProfile(std::string path) : mPath(std::move(path)) {}

  std::optional<std::vector<unsigned char>> Read(const std::string& section,
                                                 const std::string& name) override {
    const KeyFile file = Load();
    const std::unique_ptr<gchar, FreeGlib> text(
        g_key_file_get_string(file.get(), section.c_str(), name.c_str(), nullptr));
    if (!text) return std::nullopt;
    gsize size = 0;
    const std::unique_ptr<guchar, FreeGlib> bytes(g_base64_decode(text.get(), &size));
    return std::vector<unsigned char>(bytes.get(), bytes.get() + size);
  }

  bool Write(const std::string& section, const std::string& name,
             std::span<const unsigned char> bytes) override {
    const KeyFile file = Load();
    const std::unique_ptr<gchar, FreeGlib> text(g_base64_encode(bytes.data(), bytes.size()));
    g_key_file_set_string(file.get(), section.c_str(), name.c_str(), text.get());
    return g_key_file_save_to_file(file.get(), mPath.c_str(), nullptr);
  }

 private:
  // Empty when there is no file, or one that does not parse.
  KeyFile Load() const {
    KeyFile file(g_key_file_new());
    const auto flags = static_cast<GKeyFileFlags>(G_KEY_FILE_KEEP_COMMENTS);
    if (!g_key_file_load_from_file(file.get(), mPath.c_str(), flags, nullptr)) file.reset(g_key_file_new());
    return file;
  }

  const std::string mPath;  // Native.
};

}  // namespace

std::unique_ptr<ProfileStore> OpenKeyFileProfile(const std::u16string& path) {
  return std::make_unique<KeyFileProfile>(ToNativePath(path));
}

}  // namespace Platform
