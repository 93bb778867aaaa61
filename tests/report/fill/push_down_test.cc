// Where objects below a grown one move: the indexed search finds what comparing every pair of
// objects finds, on bands of every shape.
#include "report/fill/push_down.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

namespace vantorel::report {
namespace {

// The rule itself: every object against every object before it.
std::vector<float> PushDownPairwise(const std::vector<PushBox>& boxes) {
  std::vector<float> shift(boxes.size(), 0.0f);
  for (size_t i = 0; i < boxes.size(); ++i) {
    const PushBox& p = boxes[i];
    for (size_t j = 0; j < i; ++j) {
      const PushBox& above = boxes[j];
      const float push = shift[j] + above.delta;
      if (push <= 0) continue;
      const bool below = above.top + above.height <= p.top + kPushEpsilon;
      const bool overlaps =
          above.left < p.right - kPushEpsilon && p.left < above.right - kPushEpsilon;
      if (below && overlaps) shift[i] = std::max(shift[i], push);
    }
  }
  return shift;
}

TEST(PushDownTest, ObjectsBelowAGrownObjectMoveWithIt) {
  const std::vector<PushBox> boxes = {
      {0, 10, 0, 100, 25},    // grows by 25
      {12, 10, 0, 40, 0},     // below it: moves 25
      {12, 10, 100, 140, 0},  // beside it, touching at x = 100: stays
      {30, 5, 20, 60, 5},     // below the moved one: 25, and grows 5 itself
      {40, 5, 50, 55, 0},     // below both: 30
      {5, 30, 200, 201, 0},   // a vertical line beside everything: stays
  };
  EXPECT_EQ(PushDown(boxes), (std::vector<float>{0, 25, 0, 25, 30, 0}));
}

TEST(PushDownTest, NothingMovesWhenNothingGrows) {
  std::vector<PushBox> boxes(1000);
  for (size_t i = 0; i < boxes.size(); ++i) {
    boxes[i] = {static_cast<float>(i / 10 * 5), 5, static_cast<float>(i % 10 * 20),
                static_cast<float>(i % 10 * 20 + 20), i % 3 == 0 ? -1.0f : 0.0f};
  }
  EXPECT_EQ(PushDown(boxes), std::vector<float>(boxes.size(), 0.0f));
}

TEST(PushDownTest, FindsWhatComparingEveryPairFinds) {
  uint32_t seed = 2024;
  const auto next = [&](uint32_t range) {
    seed = seed * 1103515245u + 12345u;
    return static_cast<float>((seed >> 16) % range);
  };
  for (int band = 0; band < 300; ++band) {
    std::vector<PushBox> boxes(1 + static_cast<size_t>(next(120)));
    for (PushBox& box : boxes) {
      // Coarse coordinates, so edges often meet exactly; lines of no width or height too.
      box.top = next(40) * 2.5f;
      box.height = next(4) == 0 ? 0 : next(12) * 2.5f;
      box.left = next(30) * 5;
      box.right = next(5) == 0 ? box.left : box.left + next(20) * 5 + (next(3) == 0 ? 0.005f : 0);
      box.delta = next(4) == 0 ? next(30) - 5 : 0;
    }
    std::stable_sort(boxes.begin(), boxes.end(),
                     [](const PushBox& a, const PushBox& b) { return a.top < b.top; });
    ASSERT_EQ(PushDown(boxes), PushDownPairwise(boxes)) << "band " << band;
  }
}

}  // namespace
}  // namespace vantorel::report
