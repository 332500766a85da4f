#include "core/layout/SplitViewGeometry.hpp"

namespace talvo::layout {

int64_t DividerIndexAt(double x, const std::vector<DividerSpan> &dividers, int64_t subviewCount) {
  for (const DividerSpan &divider : dividers) {
    if (x > divider.minX - kDividerHitBand && x < divider.maxX + kDividerHitBand) {
      return divider.index < subviewCount - 1 ? divider.index : -1;
    }
  }
  return -1;
}

Edge EdgeZoneAt(double x, double width, double thickness) {
  if (x >= (width - kEdgeZoneExtra) - thickness) {
    return Edge::End;
  }
  if (x <= thickness + kEdgeZoneExtra) {
    return Edge::Beginning;
  }
  return Edge::None;
}

Edge CollapseCandidate(double constant, double width, double gapBeginning, double gapEnd) {
  if (constant > width - gapEnd) {
    return Edge::End;
  }
  if (gapBeginning > constant) {
    return Edge::Beginning;
  }
  return Edge::None;
}

double InitialDividerConstant(Edge edge, double panelWidth, double splitWidth) {
  return edge == Edge::End ? splitWidth : 0.0;
}

double FinalDividerConstant(Edge edge, double panelWidth, double splitWidth, double thickness) {
  switch (edge) {
    case Edge::Beginning:
      return panelWidth + thickness;
    case Edge::End:
      return splitWidth - panelWidth;
    default:
      return 0.0;
  }
}

}  // namespace talvo::layout
