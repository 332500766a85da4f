#include <gtest/gtest.h>

#include "core/layout/SplitViewGeometry.hpp"

using namespace talvo::layout;

TEST(SplitViewGeometry, DividerHitBandIsFourPointsEachSideExclusive) {
  std::vector<DividerSpan> dividers = {{100, 101, 0}, {301, 302, 1}};
  EXPECT_EQ(DividerIndexAt(96.5, dividers, 5), 0);
  EXPECT_EQ(DividerIndexAt(104.5, dividers, 5), 0);
  EXPECT_EQ(DividerIndexAt(96.0, dividers, 5), -1);
  EXPECT_EQ(DividerIndexAt(105.0, dividers, 5), -1);
  EXPECT_EQ(DividerIndexAt(300, dividers, 5), 1);
  // An index that is not below the subview count minus one is no divider.
  EXPECT_EQ(DividerIndexAt(300, dividers, 2), -1);
  // Overlapping bands: the first divider in order wins.
  std::vector<DividerSpan> close = {{10, 11, 0}, {14, 15, 1}};
  EXPECT_EQ(DividerIndexAt(12.5, close, 5), 0);
}

TEST(SplitViewGeometry, EdgeZonesAreThicknessPlusFiveAndEndWins) {
  EXPECT_EQ(EdgeZoneAt(394.0, 400, 1), Edge::End);
  EXPECT_EQ(EdgeZoneAt(393.9, 400, 1), Edge::None);
  EXPECT_EQ(EdgeZoneAt(6.0, 400, 1), Edge::Beginning);
  EXPECT_EQ(EdgeZoneAt(6.1, 400, 1), Edge::None);
  EXPECT_EQ(EdgeZoneAt(5.0, 10, 1), Edge::End);  // in both zones: End wins
}

TEST(SplitViewGeometry, CollapseCandidatesUseStrictComparisonsEndFirst) {
  EXPECT_EQ(CollapseCandidate(360.5, 400, 40, 40), Edge::End);
  EXPECT_EQ(CollapseCandidate(360.0, 400, 40, 40), Edge::None);
  EXPECT_EQ(CollapseCandidate(39.5, 400, 40, 40), Edge::Beginning);
  EXPECT_EQ(CollapseCandidate(40.0, 400, 40, 40), Edge::None);
  EXPECT_EQ(CollapseCandidate(10, 30, 40, 40), Edge::End);
}

TEST(SplitViewGeometry, SlideConstantsForBothEdges) {
  EXPECT_EQ(InitialDividerConstant(Edge::Beginning, 200, 600), 0);
  EXPECT_EQ(FinalDividerConstant(Edge::Beginning, 200, 600, 1), 201);
  EXPECT_EQ(InitialDividerConstant(Edge::End, 200, 600), 600);
  EXPECT_EQ(FinalDividerConstant(Edge::End, 200, 600, 1), 400);
  EXPECT_EQ(FinalDividerConstant(Edge::None, 200, 600, 1), 0);
}
