// AppKit's visual format language (+[NSLayoutConstraint
// constraintsWithVisualFormat:options:metrics:views:]) parsed into plain
// constraint descriptions, which the Objective-C side turns into
// NSLayoutConstraints.
//
// Emission order, which callers may rely on:
//   1. left to right, each view's own size predicates when the parser
//      reaches the view, then the connection that ends at that view;
//   2. the connection to a trailing '|';
//   3. alignment constraints: for each view after the first, one per
//      alignment bit set, lowest bit first: view.attr == firstView.attr.
//
// Connections read "later item first": [a]-8-[b] gives b.leading ==
// a.trailing + 8, |-8-[a] gives a.leading == |.leading + 8 and [a]-8-| gives
// |.trailing == a.trailing + 8.
//
// Horizontal direction options pick the edges: LeadingToTrailing uses
// leading/trailing, LeftToRight left/right. RightToLeft lays views out from
// the right: the "leading" edge is right, the "trailing" edge is left, the
// constant is negated and <= / >= swap so a spacing keeps its meaning:
// [a]-(>=8)-[b] gives b.right <= a.left - 8, and |-20-[a] gives
// a.right == |.right - 20.
//
// Whitespace is not accepted anywhere, as in AppKit.
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "platform/AppKit/layout/Attributes.hpp"

namespace talvo::layout {

// The item name standing for the superview.
inline constexpr char kSuperviewItem[] = "|";

// NSLayoutFormatOptions values.
struct FormatOptions {
  static constexpr std::uint64_t AlignAllLeft = 1ull << 1;
  static constexpr std::uint64_t AlignAllRight = 1ull << 2;
  static constexpr std::uint64_t AlignAllTop = 1ull << 3;
  static constexpr std::uint64_t AlignAllBottom = 1ull << 4;
  static constexpr std::uint64_t AlignAllLeading = 1ull << 5;
  static constexpr std::uint64_t AlignAllTrailing = 1ull << 6;
  static constexpr std::uint64_t AlignAllCenterX = 1ull << 9;
  static constexpr std::uint64_t AlignAllCenterY = 1ull << 10;
  static constexpr std::uint64_t AlignAllLastBaseline = 1ull << 11;
  static constexpr std::uint64_t AlignAllFirstBaseline = 1ull << 12;
  static constexpr std::uint64_t AlignmentMask = 0xFFFF;
  static constexpr std::uint64_t DirectionLeadingToTrailing = 0ull << 16;
  static constexpr std::uint64_t DirectionLeftToRight = 1ull << 16;
  static constexpr std::uint64_t DirectionRightToLeft = 2ull << 16;
  static constexpr std::uint64_t DirectionMask = 3ull << 16;
};

// firstItem.firstAttribute relation secondItem.secondAttribute * multiplier
// + constant, at priority. An empty secondItem means a constant constraint
// (secondAttribute NotAnAttribute).
struct ConstraintDescription {
  std::string firstItem;
  Attribute firstAttribute = Attribute::NotAnAttribute;
  Relation relation = Relation::Equal;
  std::string secondItem;
  Attribute secondAttribute = Attribute::NotAnAttribute;
  double multiplier = 1.0;
  double constant = 0.0;
  float priority = 1000.0f;
};

bool operator==(const ConstraintDescription& a, const ConstraintDescription& b);
inline bool operator!=(const ConstraintDescription& a, const ConstraintDescription& b) {
  return !(a == b);
}

// Reads like "b.leading == a.trailing + 8 @750" (priority shown below 1000).
std::string Describe(const ConstraintDescription& description);

// Either constraints (error empty) or an error naming the character
// position, e.g. "Expected ',' or ')' at 9 in 'H:[a(>=20]'" (constraints
// empty). Never both.
struct VisualFormatResult {
  std::vector<ConstraintDescription> constraints;
  std::string error;
  bool ok() const { return error.empty(); }
};

// Numbers that overflow to infinity and non-finite metrics are refused;
// priorities must be in (0, 1000] and those below 1 become 1, AppKit's
// lowest.
// Option bits outside the alignment and direction masks are ignored.
// In a view's size predicate a name is looked up as a view first, then as a
// metric; elsewhere names are metrics only.
VisualFormatResult ParseVisualFormat(const std::string& format, std::uint64_t options,
                                     const std::map<std::string, double>& metrics,
                                     const std::set<std::string>& views) noexcept;

}  // namespace talvo::layout
