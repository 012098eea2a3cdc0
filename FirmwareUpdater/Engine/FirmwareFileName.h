#pragma once

#include "Engine/FirmwareVersionInfo.h"

// The version in a file name that holds "_V" in any case, one or two digits, "_", and two
// digits for minor and patch: Firmware_V12_34.bin is 12.3.4. False, and no change, for any
// other name.
bool VersionFromFileName(const TF::String& name, FirmwareVersionInfo& version);
