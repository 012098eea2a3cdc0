#pragma once

namespace Platform {

// Starts SDL's video once with the settings that suit this program. Throws runtime_error that names the
// displays tried when none of them can show windows; it can be called again then.
void StartSdlVideo();

// True on X11: only there a program is told where it stands on the screen.
bool IsOnX11();

}  // namespace Platform
