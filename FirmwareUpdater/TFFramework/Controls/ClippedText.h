#pragma once

namespace TF {

class LControl;

// Whether the look that a control shows leaves out a part of its text, or all of it.
//
// Threads: main thread.
bool IsTextClipped(const LControl& control);

}  // namespace TF
