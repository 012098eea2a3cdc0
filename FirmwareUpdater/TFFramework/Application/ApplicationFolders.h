#pragma once

#include <cstdint>

#include "TFFramework/Utilities/Storage/StringT.h"

namespace TF {

inline constexpr std::int32_t kProgramFolderId = 0;
inline constexpr std::int32_t kResourceFolderId = 1;  // "::", the program's embedded resources.
inline constexpr std::int32_t kCommonFolderId = 2;    // Settings for all users of the machine.
inline constexpr std::int32_t kLocalFolderId = 3;     // Settings of this user.
inline constexpr std::int32_t kDocumentsFolderId = 4;

// A folder as an inner path without a trailing separator; empty when it cannot be told. The
// common and the local one end with company and product and are made if that is possible:
// most users cannot write to the common one, whose path is given all the same. Throws
// out_of_range for an unknown id.
String GetApplicationFolder(std::int32_t id, const String& company = String(),
                            const String& product = String());

}  // namespace TF
