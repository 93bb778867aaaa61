// Where the objects of a band move when objects above them grow: an object is pushed down by the
// largest push of the objects that end above its top and overlap it sideways, where an object's
// push is its own growth plus how far it was pushed itself.
//
// Thread-safety: a pure function.
#ifndef VANTOREL_REPORT_FILL_PUSH_DOWN_H_
#define VANTOREL_REPORT_FILL_PUSH_DOWN_H_

#include <vector>

namespace vantorel::report {

struct PushBox {
  float top = 0, height = 0;  // as designed
  float left = 0, right = 0;
  float delta = 0;  // how much the object itself grew (negative: shrank)
};

// Edges closer than this count as touching, not overlapping.
inline constexpr float kPushEpsilon = 0.01f;

// How far each of "boxes" moves down. "boxes" are in band order: sorted by top, ties in design
// order; an object is pushed only by objects before it. O(n log² n), and O(n) when nothing grows,
// so a band of thousands of objects costs no more per object than a small one.
std::vector<float> PushDown(const std::vector<PushBox>& boxes);

}  // namespace vantorel::report

#endif  // VANTOREL_REPORT_FILL_PUSH_DOWN_H_
