// A band taller than a page, cut page by page: the same pieces as cutting it again and again
// with Split, on blocks of every shape.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "report/fill/band_renderer.h"

namespace vantorel::report {
namespace {

std::vector<size_t> DeferredItems(const BandBlock& block) {
  std::vector<size_t> items;
  for (const DeferredText& deferred : block.deferred) items.push_back(deferred.item);
  return items;
}

// A random block of texts (some completed at the end), lines, boxes and pictures, 3000 points
// tall, in no particular order.
BandBlock RandomBlock(uint32_t& seed) {
  const auto next = [&](uint32_t range) {
    seed = seed * 1103515245u + 12345u;
    return (seed >> 16) % range;
  };
  BandBlock block;
  block.height = 3000;
  const size_t count = 1 + next(300);
  for (size_t i = 0; i < count; ++i) {
    const float top = static_cast<float>(next(1200)) * 2.5f;
    const float left = static_cast<float>(next(40)) * 10;
    switch (next(5)) {
      case 0:
      case 1: {
        std::string text;
        const uint32_t lines = 1 + next(next(4) == 0 ? 120 : 3);
        for (uint32_t l = 0; l < lines; ++l) text += (l == 0 ? "" : "\n") + std::to_string(l);
        block.items.push_back(
            TextItem{{left, top, 100, static_cast<float>(lines) * 9.5f + 2}, 0, text});
        if (next(4) == 0) block.deferred.push_back({block.items.size() - 1});
        break;
      }
      case 2:
        block.items.push_back(
            LineItem{{left, top}, {left + (next(2) ? 50.0f : 0), top + (next(2) ? 0 : 700.0f)}});
        break;
      case 3:
        block.items.push_back(RectItem{{left, top, 60, static_cast<float>(next(900))}});
        break;
      default:
        block.items.push_back(ImageItem{{left, top, 40, 40}});
    }
  }
  return block;
}

TEST(BlockCutterTest, CutsAsRepeatedSplitsDo) {
  Document document;
  TextStyle style;
  style.size = 8;
  style.padding = {0, 0, 0, 0};
  document.styles.push_back(style);
  uint32_t seed = 4242;
  int compared = 0;
  for (int round = 0; round < 60; ++round) {
    const BandBlock block = RandomBlock(seed);
    // The room on the first page, then on every fresh page; now and then a page with little.
    const auto room = [&](size_t page) {
      return page == 0 ? 300.5f : page % 7 == 3 ? 37.25f : 555.59f;
    };

    std::vector<BandBlock> split;  // every page's piece, then what is left
    BandBlock rest = block;
    for (size_t page = 0; rest.height > room(page); ++page) {
      BandBlock next = BandRenderer::Split(rest, room(page), document);
      split.push_back(std::move(rest));
      rest = std::move(next);
      if (rest.items.empty() && rest.height <= 0) break;
    }
    split.push_back(std::move(rest));

    std::vector<BandBlock> cut;
    BlockCutter cutter(block);
    for (size_t page = 0; cutter.height() > room(page); ++page) {
      cut.push_back(cutter.Cut(room(page), document));
      if (cutter.empty()) break;
    }
    cut.push_back(cutter.Rest());

    ASSERT_EQ(cut.size(), split.size()) << "round " << round;
    for (size_t p = 0; p < split.size(); ++p) {
      EXPECT_EQ(cut[p].items, split[p].items) << "round " << round << " piece " << p;
      EXPECT_EQ(DeferredItems(cut[p]), DeferredItems(split[p]))
          << "round " << round << " piece " << p;
      EXPECT_EQ(cut[p].height, split[p].height) << "round " << round << " piece " << p;
      ++compared;
    }
  }
  EXPECT_GT(compared, 300);
}

}  // namespace
}  // namespace vantorel::report
