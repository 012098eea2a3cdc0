#include "TFFramework/ControlBase/DocumentSource.h"

#include <fmt/format.h>

#include <algorithm>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>

#include "TFFramework/Utilities/Storage/DiagnosticsLog.h"
#include "TFFramework/Utilities/Storage/Resources.h"
#include "TFFramework/Utilities/Storage/TFFile.h"

namespace TF {

namespace {

constexpr std::u16string_view kResourceMark = u"::";
constexpr std::u16string_view kResourceType = u"TFXML";
constexpr std::uint32_t kReadSize = 65536;  // Bytes.

}  // namespace

TFRESULT DocumentSource::Open(const String& source) {
  mFile.clear();
  mBytes = {};
  if (source.View().starts_with(kResourceMark)) {
    return OpenResource(source.Mid(static_cast<std::int32_t>(kResourceMark.size())));
  }
  try {
    return ReadFile(source);
  } catch (const std::bad_alloc&) {
    mFile.clear();
    return kOutOfMemory;
  } catch (const std::exception& error) {
    mFile.clear();
    LogRecord(fmt::format("document: cannot read \"{}\": {}", ToUtf8(source), error.what()));
    return kFailure;
  }
}

TFRESULT DocumentSource::OpenResource(const String& name) {
  String resource = name.ToUpper();
  resource.ReplaceAny(u".", u'_');
  const auto bytes = FindResource(kResourceType, resource);
  if (!bytes) return kNothingDone;
  mBytes = *bytes;
  return kSuccess;
}

TFRESULT DocumentSource::ReadFile(const String& path) {
  File file;
  if (Failed(file.Open(path, String(), kFileRead))) throw std::runtime_error("it does not open");
  mFile.resize(file.GetLength());
  std::size_t filled = 0;
  while (filled < mFile.size()) {
    const auto size = static_cast<std::uint32_t>(std::min<std::size_t>(mFile.size() - filled, kReadSize));
    const std::int32_t count = file.Read(mFile.data() + filled, size);
    if (count <= 0) break;
    filled += static_cast<std::size_t>(count);
  }
  mFile.resize(filled);
  mBytes = mFile;
  return kSuccess;
}

}  // namespace TF
