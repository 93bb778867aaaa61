#include "report/fill/push_down.h"

#include <algorithm>
#include <cstddef>
#include <queue>
#include <utility>

namespace vantorel::report {
namespace {

// The largest value among points (x, y) with x < "x_below" and y > "y_above", as points are
// added: a Fenwick tree over the x ranks whose nodes are Fenwick trees over the y values of the
// points they cover. All points are known up front; only their values arrive one by one.
class QuadrantMax {
 public:
  // "xs" and "ys" are the coordinates of the points that may be added, by point index.
  QuadrantMax(const std::vector<float>& xs, const std::vector<float>& ys)
      : xs_(xs), ranks_(xs.size()), nodes_(xs.size() + 1) {
    std::sort(xs_.begin(), xs_.end());
    xs_.erase(std::unique(xs_.begin(), xs_.end()), xs_.end());
    for (size_t p = 0; p < xs.size(); ++p) {
      ranks_[p] =
          static_cast<size_t>(std::lower_bound(xs_.begin(), xs_.end(), xs[p]) - xs_.begin()) + 1;
      for (size_t i = ranks_[p]; i <= xs_.size(); i += i & (~i + 1)) nodes_[i].ys.push_back(ys[p]);
    }
    for (Node& node : nodes_) {
      std::sort(node.ys.begin(), node.ys.end());
      node.ys.erase(std::unique(node.ys.begin(), node.ys.end()), node.ys.end());
      node.best.assign(node.ys.size() + 1, 0.0f);
    }
  }

  // Raises point "p" (at "y") to "value".
  void Add(size_t p, float y, float value) {
    for (size_t i = ranks_[p]; i <= xs_.size(); i += i & (~i + 1)) {
      Node& node = nodes_[i];
      // Larger y first, so "y above" is a prefix.
      const size_t k =
          node.ys.size() - static_cast<size_t>(std::lower_bound(node.ys.begin(), node.ys.end(), y) -
                                               node.ys.begin());
      for (size_t t = k; t < node.best.size(); t += t & (~t + 1)) {
        node.best[t] = std::max(node.best[t], value);
      }
    }
  }

  // The largest value added at x < "x_below" and y > "y_above"; 0 when there is none.
  float Max(float x_below, float y_above) const {
    float best = 0;
    for (size_t i =
             static_cast<size_t>(std::lower_bound(xs_.begin(), xs_.end(), x_below) - xs_.begin());
         i > 0; i -= i & (~i + 1)) {
      const Node& node = nodes_[i];
      size_t k = node.ys.size() -
                 static_cast<size_t>(std::upper_bound(node.ys.begin(), node.ys.end(), y_above) -
                                     node.ys.begin());
      for (; k > 0; k -= k & (~k + 1)) best = std::max(best, node.best[k]);
    }
    return best;
  }

 private:
  struct Node {
    std::vector<float> ys;    // sorted, distinct
    std::vector<float> best;  // Fenwick tree over ys, largest first
  };
  std::vector<float> xs_;      // distinct x, sorted
  std::vector<size_t> ranks_;  // by point: 1 + its x's index in xs_
  std::vector<Node> nodes_;
};

}  // namespace

std::vector<float> PushDown(const std::vector<PushBox>& boxes) {
  std::vector<float> shift(boxes.size(), 0.0f);
  if (std::none_of(boxes.begin(), boxes.end(), [](const PushBox& b) { return b.delta > 0; })) {
    return shift;
  }
  // Box j overlaps box i sideways when j.left < i.right - ε and i.left < j.right - ε: a point
  // (j.left, j.right - ε) in the quadrant below i.right - ε and above i.left.
  std::vector<float> lefts(boxes.size()), rights(boxes.size());
  for (size_t j = 0; j < boxes.size(); ++j) {
    lefts[j] = boxes[j].left;
    rights[j] = boxes[j].right - kPushEpsilon;
  }
  QuadrantMax pushers(lefts, rights);
  // Boxes already placed that push, waiting until a box starts below their foot.
  using Waiting = std::pair<float, size_t>;  // foot, box
  std::priority_queue<Waiting, std::vector<Waiting>, std::greater<>> waiting;
  for (size_t i = 0; i < boxes.size(); ++i) {
    const PushBox& box = boxes[i];
    while (!waiting.empty() && waiting.top().first <= box.top + kPushEpsilon) {
      const size_t j = waiting.top().second;
      waiting.pop();
      pushers.Add(j, rights[j], shift[j] + boxes[j].delta);
    }
    shift[i] = pushers.Max(box.right - kPushEpsilon, box.left);
    if (shift[i] + box.delta > 0) waiting.push({box.top + box.height, i});
  }
  return shift;
}

}  // namespace vantorel::report
