#include "TFFramework/ControlBase/LineBreaker.h"

namespace TF {

namespace {

using View = std::u16string_view;

constexpr char16_t kLineFeed = u'\n';
constexpr char16_t kBlank = u' ';
constexpr char16_t kHyphen = u'-';

class Breaker {
 public:
  Breaker(View line, float width, const MeasureWidth& measure)
      : mLine(line), mWidth(width), mMeasure(measure) {}

  std::size_t Find() const {
    if (Fits(mLine.size())) return mLine.size();
    const std::size_t word = mLine.find(kBlank, 1);
    if (word == View::npos || !Fits(word)) return FindInsideWord(word);
    return FindBehindWords(word);
  }

 private:
  bool Fits(std::size_t count) const { return mMeasure(mLine.substr(0, count)) <= mWidth; }

  // Behind the last hyphen of [from, to) that fits; 0 when none does.
  std::size_t FindHyphen(std::size_t from, std::size_t to) const {
    while (to > from) {
      const std::size_t hyphen = mLine.rfind(kHyphen, to - 1);
      if (hyphen == View::npos || hyphen < from) return 0;
      if (Fits(hyphen + 1)) return hyphen + 1;
      to = hyphen;
    }
    return 0;
  }

  // The last character is left out: a hyphen there would break nothing off.
  std::size_t FindInsideWord(std::size_t word) const {
    const std::size_t end = word == View::npos ? mLine.size() - 1 : word;
    if (const std::size_t hyphen = FindHyphen(0, end)) return hyphen;
    return FindAnywhere(end);
  }

  std::size_t FindBehindWords(std::size_t fitting) const {
    while (true) {
      const std::size_t next = mLine.find(kBlank, fitting + 1);
      if (next != View::npos && Fits(next)) {
        fitting = next;
        continue;
      }
      const std::size_t hyphen = FindHyphen(fitting + 1, next == View::npos ? mLine.size() - 1 : next);
      return hyphen != 0 ? hyphen : fitting;
    }
  }

  // The longest beginning that fits, found by halves.
  std::size_t FindAnywhere(std::size_t end) const {
    std::size_t fits = 0;
    std::size_t tooLong = end + 1;
    while (tooLong - fits > 1) {
      const std::size_t middle = fits + (tooLong - fits) / 2;
      (Fits(middle) ? fits : tooLong) = middle;
    }
    return KeepPair(fits > 0 ? fits : 1);
  }

  // Both halves of a character beyond the first plane stay together.
  std::size_t KeepPair(std::size_t count) const {
    const auto isLow = [](char16_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; };
    if (count >= mLine.size() || !isLow(mLine[count])) return count;
    return count > 1 ? count - 1 : count + 1;
  }

  const View mLine;
  const float mWidth;
  const MeasureWidth& mMeasure;
};

// The first line's length; what is broken off at a blank begins with it.
std::size_t FindBreak(View line, float width, const MeasureWidth& measure) {
  return line.empty() ? 0 : Breaker(line, width, measure).Find();
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
