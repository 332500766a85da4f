// The split view's geometry rules: divider hit zones, edge zones, the
// collapse test and the slide constants of edge panels.
#pragma once

#include <cstdint>
#include <vector>

namespace talvo::layout {

// An edge of a split view, with the toolkit's raw values.
enum class Edge : int32_t { None = -1, Beginning = 0, End = 1 };

// Points on each side of a divider that still grab it.
constexpr double kDividerHitBand = 4.0;
// Points on each side of a divider that show the resize cursor.
constexpr double kDividerCursorBand = 2.0;
// An edge zone is the divider thickness plus this many points wide.
constexpr double kEdgeZoneExtra = 5.0;
// The collapse gap when the delegate does not give one.
constexpr double kDefaultCollapseGap = 40.0;

struct DividerSpan {
  double minX;
  double maxX;
  int64_t index;
};

// The index of the first divider whose span, widened by the hit band on both
// sides (strictly), holds x; -1 when none does or when the index is not
// below subviewCount - 1.
int64_t DividerIndexAt(double x, const std::vector<DividerSpan> &dividers, int64_t subviewCount);

// The edge zone holding x in a split view `width` wide: End is tested first.
Edge EdgeZoneAt(double x, double width, double thickness);

// The edge a dragged position constant collapses, before the delegate is
// asked: End when the constant passes width - gapEnd, else Beginning when it
// is below gapBeginning.
Edge CollapseCandidate(double constant, double width, double gapBeginning, double gapEnd);

// Where the divider constraint of a panel `panelWidth` wide stands while the
// panel is out of sight, and when it is fully in.
double InitialDividerConstant(Edge edge, double panelWidth, double splitWidth);
double FinalDividerConstant(Edge edge, double panelWidth, double splitWidth, double thickness);

}  // namespace talvo::layout
