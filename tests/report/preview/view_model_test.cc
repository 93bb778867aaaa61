#include "report/preview/view_model.h"

#include <gtest/gtest.h>

#include "report/print/sample_document.h"

namespace vantorel::report::preview {
namespace {

TEST(Zoom, StepsGoToTheNextLevelAndStopAtTheEnds) {
  EXPECT_DOUBLE_EQ(ZoomIn(1.0), 1.25);
  EXPECT_DOUBLE_EQ(ZoomOut(1.0), 0.75);
  EXPECT_DOUBLE_EQ(ZoomIn(4.0), 4.0);
  EXPECT_DOUBLE_EQ(ZoomOut(0.5), 0.5);
  // From a fitted zoom between two steps, to the step beyond it.
  EXPECT_DOUBLE_EQ(ZoomIn(1.1), 1.25);
  EXPECT_DOUBLE_EQ(ZoomOut(1.1), 1.0);
}

TEST(Zoom, FitWidthFillsTheViewLessItsMargins) {
  const SizeF a4{595.28f, 841.89f};
  const double zoom = FitZoom(ZoomMode::kFitWidth, a4, 1000, 300, 16);
  EXPECT_NEAR(595.28 * kPixelsPerPoint * zoom, 1000 - 32, 0.01);
}

TEST(Zoom, FitPageFitsTheTallerSideToo) {
  const SizeF a4{595.28f, 841.89f};
  const double zoom = FitZoom(ZoomMode::kFitPage, a4, 1000, 600, 16);
  EXPECT_NEAR(841.89 * kPixelsPerPoint * zoom, 600 - 32, 0.01);
  EXPECT_GT(FitZoom(ZoomMode::kFitPage, a4, 10, 10, 16), 0);
}

Document TextDocument() {
  Document document;
  const uint32_t style = document.InternStyle(TextStyle{});
  Page first;
  first.items.push_back(TextItem{{10, 10, 100, 12}, style, "ÉCHÉANCE 31/03/2024"});
  first.items.push_back(TextItem{{10, 30, 100, 12}, style, "Total"});
  Page second;
  GroupItem group;
  group.items.push_back(TextItem{{20, 40, 80, 12}, style, "échéance"});
  second.items.push_back(group);
  second.items.push_back(TextItem{{20, 60, 80, 12}, style, "Grand total"});
  document.pages = {first, second};
  return document;
}

TEST(Find, MatchesIgnoreCaseAcrossPagesAndGroups) {
  const std::vector<Match> matches = FindText(TextDocument(), "Échéance");
  ASSERT_EQ(matches.size(), 2u);
  EXPECT_EQ(matches[0], (Match{0, {10, 10, 100, 12}}));
  EXPECT_EQ(matches[1], (Match{1, {20, 40, 80, 12}}));
}

TEST(Find, DecomposedAccentsMatchComposedOnes) {
  EXPECT_EQ(FindText(TextDocument(), "e\u0301che\u0301ance").size(), 2u);
}

TEST(Find, PartsOfATextMatch) {
  const std::vector<Match> matches = FindText(TextDocument(), "TOTAL");
  ASSERT_EQ(matches.size(), 2u);
  EXPECT_EQ(matches[1].page, 1u);
}

TEST(Find, AnEmptyOrMissingTextFindsNothing) {
  EXPECT_TRUE(FindText(TextDocument(), "").empty());
  EXPECT_TRUE(FindText(TextDocument(), "splendor").empty());
}

TEST(Find, TheFirstMatchFromAPageWrapsAround) {
  const std::vector<Match> matches =
      FindText(testing::SampleDocument(3, "t"), "Splendor Plus");  // six lines on every page
  ASSERT_EQ(matches.size(), 18u);
  EXPECT_EQ(FirstMatchFrom(matches, 0), 0u);
  EXPECT_EQ(FirstMatchFrom(matches, 2), 12u);
  EXPECT_EQ(FirstMatchFrom(matches, 5), 0u);
  EXPECT_EQ(FirstMatchFrom({}, 1), 0u);
}

}  // namespace
}  // namespace vantorel::report::preview
