#pragma once

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <stdexcept>

#include "TFFramework/ObjectBase/Exception.h"

namespace TF {

// Sorting of any array with a caller's comparison: compare(a, b) is true when a stands before
// b. The order of equal elements is not defined. Both throw out_of_range for a range that
// passes the end of the array.
struct ArrayUtils {
  // A count below 2 is nothing to do, whatever the range.
  template <class List, class Compare>
  static void Sort(List& array, std::int32_t start, std::int32_t count, Compare compare) {
    if (count < 2) return;
    if (!HoldsRange(array, start, count)) Throw<std::out_of_range>("", "TF::ArrayUtils::Sort");
    auto* const first = array.GetBuffer() + start;
    std::sort(first, first + count, compare);
  }

  // Fills indices with start to start + count - 1, in the order of the elements there.
  template <class Indices, class List, class Compare>
  static void SortIndecies(Indices& indices, const List& array, std::int32_t start, std::int32_t count,
                           Compare compare) {
    if (!HoldsRange(array, start, count)) Throw<std::out_of_range>("", "TF::ArrayUtils::SortIndecies");
    indices.SetCount(count);
    if (count == 0) return;
    auto* const first = indices.GetBuffer();
    std::iota(first, first + count, start);
    const auto* const elements = array.GetBuffer();
    std::sort(first, first + count,
              [&](std::int32_t a, std::int32_t b) { return compare(elements[a], elements[b]); });
  }

 private:
  template <class List>
  static bool HoldsRange(const List& array, std::int32_t start, std::int32_t count) {
    return start >= 0 && count >= 0 && start <= array.GetCount() && count <= array.GetCount() - start;
  }
};

}  // namespace TF
