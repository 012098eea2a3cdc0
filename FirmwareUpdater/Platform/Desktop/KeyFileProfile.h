#pragma once

#include <memory>
#include <string>

#include "Platform/ProfileStore.h"

namespace Platform {

// Over a key file at an inner path, which is read anew each time and replaced as a whole.
std::unique_ptr<ProfileStore> OpenKeyFileProfile(const std::u16string& path);

}  // namespace Platform
