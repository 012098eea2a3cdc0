#include "TFFramework/ControlBase/LineBreaker.h"

#include <algorithm>
#include <utility>

namespace TF {

namespace {

using View = std::u16string_view;

constexpr char16_t kLineFeed = u'\n';
constexpr char16_t kBlank = u' ';
constexpr char16_t kHyphen = u'-';

// What is measured first; twice as much each time it fits. A long text costs no more than its lines.
constexpr std::size_t kFirstGuess = 64;

bool Fits(View line, std::size_t count, float width, const MeasureWidth& measure) {
  return measure(line.substr(0, count)) <= width;
}

// How many characters of a line fit, found by halves.
std::size_t FindFitting(View line, float width, const MeasureWidth& measure) {
  // As for a control that has no size yet.
  if (width <= 0) return 0;
  std::size_t fits = 0;
  std::size_t tooLong = kFirstGuess;
  while (tooLong < line.size() && Fits(line, tooLong, width, measure))
    fits = std::exchange(tooLong, tooLong * 2);
  if (tooLong >= line.size()) {
    if (Fits(line, line.size(), width, measure)) return line.size();
    tooLong = line.size();
  }
  while (tooLong - fits > 1) {
    const std::size_t middle = fits + (tooLong - fits) / 2;
    (Fits(line, middle, width, measure) ? fits : tooLong) = middle;
  }
  return fits;
}

// Behind the last hyphen of [from, to); 0 without one.
std::size_t FindHyphen(View line, std::size_t from, std::size_t to) {
  const std::size_t hyphen = to > 0 ? line.rfind(kHyphen, to - 1) : View::npos;
  return hyphen == View::npos || hyphen < from ? 0 : hyphen + 1;
}

// Both halves of a character beyond the first plane stay together, and every line has a character.
std::size_t KeepPair(View line, std::size_t count) {
  const auto isLow = [](char16_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; };
  count = std::max<std::size_t>(count, 1);
  if (count >= line.size() || !isLow(line[count])) return count;
  return count > 1 ? count - 1 : count + 1;
}

// The first line's length; what is broken off at a blank begins with it.
std::size_t FindBreak(View line, float width, const MeasureWidth& measure) {
  const std::size_t fitting = FindFitting(line, width, measure);
  if (fitting == line.size()) return fitting;
  const std::size_t word = line.find(kBlank, 1);
  if (word == View::npos || word > fitting) {
    const std::size_t hyphen = FindHyphen(line, 0, fitting);
    return hyphen != 0 ? hyphen : KeepPair(line, fitting);
  }
  const std::size_t blank = line.rfind(kBlank, fitting);
  const std::size_t hyphen = FindHyphen(line, blank + 1, fitting);
  return hyphen != 0 ? hyphen : blank;
}

}  // namespace

std::vector<View> SplitLines(View text) {
  std::vector<View> lines;
  std::size_t start = 0;
  while (true) {
    const std::size_t end = text.find(kLineFeed, start);
    lines.push_back(text.substr(start, end == View::npos ? View::npos : end - start));
    if (end == View::npos) return lines;
    start = end + 1;
  }
}

std::vector<View> BreakLines(View text, float width, const MeasureWidth& measure) {
  std::vector<View> lines;
  for (View rest : SplitLines(text)) {
    do {
      const std::size_t count = FindBreak(rest, width, measure);
      lines.push_back(rest.substr(0, count));
      rest.remove_prefix(count);
      if (!rest.empty() && rest.front() == kBlank) rest.remove_prefix(1);
    } while (!rest.empty());
  }
  return lines;
}

}  // namespace TF
