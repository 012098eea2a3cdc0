#include "TFFramework/ControlBase/DocumentSource.h"

#include <fmt/format.h>

#include <new>
#include <stdexcept>
#include <string>
#include <string_view>

#include "TFFramework/Utilities/Storage/DiagnosticsLog.h"
#include "TFFramework/Utilities/Storage/Resources.h"
#include "TFFramework/Utilities/Storage/TFFile.h"

namespace TF {

namespace {

constexpr std::u16string_view kResourceType = u"TFXML";

}  // namespace

TFRESULT DocumentSource::Open(const String& source) {
  mFile.clear();
  mBytes = {};
  if (IsResourcePath(source)) {
    const auto bytes = FindResourceOfPath(kResourceType, source);
    if (!bytes) return kNothingDone;
    mBytes = *bytes;
    return kSuccess;
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

TFRESULT DocumentSource::ReadFile(const String& path) {
  File file;
  if (Failed(file.Open(path, String(), kFileRead))) throw std::runtime_error("it does not open");
  const std::uint32_t size = file.GetLength();
  mFile.resize(size);
  mFile.resize(static_cast<std::size_t>(file.Read(mFile.data(), size)));
  mBytes = mFile;
  return kSuccess;
}

}  // namespace TF
