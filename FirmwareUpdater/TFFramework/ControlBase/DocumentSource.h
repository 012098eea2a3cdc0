#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "TFFramework/ObjectBase/Result.h"
#include "TFFramework/Utilities/Storage/StringT.h"

namespace TF {

// The bytes of a document: a name behind "::" is a resource of the type "TFXML", in upper case with
// "_" for each ".", anything else a file.
class DocumentSource {
 public:
  DocumentSource() = default;
  DocumentSource(const DocumentSource&) = delete;
  DocumentSource& operator=(const DocumentSource&) = delete;

  // kNothingDone when the program has no such resource. kFailure, with a record in the diagnostics,
  // for a file that cannot be read, kOutOfMemory when there is no memory for it.
  TFRESULT Open(const String& source);

  // Of the last document that was opened; nothing after a result other than kSuccess. Good as long
  // as this object.
  std::span<const unsigned char> GetBytes() const { return mBytes; }

 private:
  TFRESULT ReadFile(const String& path);

  std::vector<unsigned char> mFile;
  std::span<const unsigned char> mBytes;
};

}  // namespace TF
