#pragma once

#include <functional>
#include <string_view>
#include <vector>

namespace TF {

// The width of a text in pixels.
using MeasureWidth = std::function<float(std::u16string_view)>;

// The lines of a text at its line feeds, at least one.
std::vector<std::u16string_view> SplitLines(std::u16string_view text);

// The same, each broken to the width: at a blank, which goes, or behind a hyphen; else where the width ends,
// with at least one character in a line.
std::vector<std::u16string_view> BreakLines(std::u16string_view text, float width,
                                            const MeasureWidth& measure);

}  // namespace TF
