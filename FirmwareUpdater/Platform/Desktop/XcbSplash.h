#pragma once

#include <memory>
#include <string>

#include "Platform/SplashSurface.h"

namespace Platform {

// As Desktop::OpenSplash.
std::unique_ptr<SplashSurface> OpenXcbSplash(const SplashPicture& picture, const std::string& title);

}  // namespace Platform
