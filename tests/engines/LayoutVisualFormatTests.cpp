#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "platform/AppKit/layout/VisualFormat.hpp"

namespace talvo::layout {
namespace {

using Metrics = std::map<std::string, double>;
using Lines = std::vector<std::string>;

const std::set<std::string> kViews = {"a", "b", "c"};

VisualFormatResult Parse(const std::string& format, std::uint64_t options = 0,
                         const Metrics& metrics = {}) {
  return ParseVisualFormat(format, options, metrics, kViews);
}

// The constraints as text, or the error when parsing failed.
Lines Read(const std::string& format, std::uint64_t options = 0, const Metrics& metrics = {}) {
  VisualFormatResult result = Parse(format, options, metrics);
  if (!result.ok()) return {"error: " + result.error};
  Lines lines;
  for (const ConstraintDescription& d : result.constraints) lines.push_back(Describe(d));
  return lines;
}

// Fails with the format in the message unless parsing fails cleanly.
void ExpectError(const std::string& format, std::uint64_t options = 0,
                 const Metrics& metrics = {}) {
  VisualFormatResult result = Parse(format, options, metrics);
  EXPECT_FALSE(result.ok()) << format;
  EXPECT_TRUE(result.constraints.empty()) << format;
  EXPECT_NE(result.error.find("'" + format + "'"), std::string::npos) << result.error;
}

// --- Connections -------------------------------------------------------------

TEST(LayoutVisualFormatConnection, LeadingSuperview_PutsViewFirst) {
  VisualFormatResult result = Parse("H:|-20-[a]");
  ASSERT_TRUE(result.ok()) << result.error;
  ASSERT_EQ(result.constraints.size(), 1u);
  const ConstraintDescription& d = result.constraints[0];
  EXPECT_EQ(d.firstItem, "a");
  EXPECT_EQ(d.firstAttribute, Attribute::Leading);
  EXPECT_EQ(d.relation, Relation::Equal);
  EXPECT_EQ(d.secondItem, kSuperviewItem);
  EXPECT_EQ(d.secondAttribute, Attribute::Leading);
  EXPECT_EQ(d.multiplier, 1.0);
  EXPECT_EQ(d.constant, 20.0);
  EXPECT_EQ(d.priority, 1000.0f);
}

TEST(LayoutVisualFormatConnection, TrailingSuperview_PutsSuperviewFirst) {
  VisualFormatResult result = Parse("H:[a]-20-|");
  ASSERT_TRUE(result.ok()) << result.error;
  ASSERT_EQ(result.constraints.size(), 1u);
  const ConstraintDescription& d = result.constraints[0];
  EXPECT_EQ(d.firstItem, "|");
  EXPECT_EQ(d.firstAttribute, Attribute::Trailing);
  EXPECT_EQ(d.secondItem, "a");
  EXPECT_EQ(d.secondAttribute, Attribute::Trailing);
  EXPECT_EQ(d.constant, 20.0);
}

TEST(LayoutVisualFormatConnection, Siblings_PutLaterViewFirst) {
  EXPECT_EQ(Read("H:[a]-8-[b]"), Lines{"b.leading == a.trailing + 8"});
  EXPECT_EQ(Read("[a]-8-[b]"), Lines{"b.leading == a.trailing + 8"});  // H by default
}

TEST(LayoutVisualFormatConnection, PredicateList_CarriesRelationAndPriority) {
  VisualFormatResult result = Parse("H:[a]-(>=20@750)-[b]");
  ASSERT_TRUE(result.ok()) << result.error;
  ASSERT_EQ(result.constraints.size(), 1u);
  EXPECT_EQ(result.constraints[0].relation, Relation::GreaterThanOrEqual);
  EXPECT_EQ(result.constraints[0].constant, 20.0);
  EXPECT_EQ(result.constraints[0].priority, 750.0f);
  EXPECT_EQ(Read("H:[a]-(>=8,<=20@500)-[b]"),
            (Lines{"b.leading >= a.trailing + 8", "b.leading <= a.trailing + 20 @500"}));
}

TEST(LayoutVisualFormatConnection, Flush_HasZeroSpacing) {
  EXPECT_EQ(Read("H:|[a]"), Lines{"a.leading == |.leading"});
  EXPECT_EQ(Read("H:[a]|"), Lines{"|.trailing == a.trailing"});
  EXPECT_EQ(Read("[a][b]"), Lines{"b.leading == a.trailing"});
}

TEST(LayoutVisualFormatConnection, StandardSpacing_Is20ToEdgesAnd8Between) {
  EXPECT_EQ(Read("|-[a]-[b]-|"), (Lines{"a.leading == |.leading + 20",
                                       "b.leading == a.trailing + 8",
                                       "|.trailing == b.trailing + 20"}));
}

TEST(LayoutVisualFormatConnection, MetricsAndNumbers) {
  Metrics m = {{"gap", 12}, {"p", 300}};
  EXPECT_EQ(Read("[a]-gap-[b]", 0, m), Lines{"b.leading == a.trailing + 12"});
  EXPECT_EQ(Read("[a]-(<=gap@p)-[b]", 0, m), Lines{"b.leading <= a.trailing + 12 @300"});
  EXPECT_EQ(Read("[a]-(-5)-[b]"), Lines{"b.leading == a.trailing - 5"});
  EXPECT_EQ(Read("[a]-2.5-[b]"), Lines{"b.leading == a.trailing + 2.5"});
  EXPECT_EQ(Read("|-0-[a]"), Lines{"a.leading == |.leading"});
}

TEST(LayoutVisualFormatConnection, Vertical_UsesTopBottomAndHeight) {
  EXPECT_EQ(Read("V:[a]-8-[b]"), Lines{"b.top == a.bottom + 8"});
  EXPECT_EQ(Read("V:[a]|"), Lines{"|.bottom == a.bottom"});
  EXPECT_EQ(Read("V:|-[a(40)]"), (Lines{"a.height == 40", "a.top == |.top + 20"}));
}

// --- View predicates ---------------------------------------------------------

TEST(LayoutVisualFormatView, SizePredicate_ComesWhenViewIsReached) {
  VisualFormatResult result = Parse("H:[a]-0-[b(w)]-0-[c]", 0, {{"w", 50}});
  ASSERT_TRUE(result.ok()) << result.error;
  ASSERT_EQ(result.constraints.size(), 3u);
  const ConstraintDescription& size = result.constraints[0];
  EXPECT_EQ(size.firstItem, "b");
  EXPECT_EQ(size.firstAttribute, Attribute::Width);
  EXPECT_EQ(size.secondItem, "");
  EXPECT_EQ(size.secondAttribute, Attribute::NotAnAttribute);
  EXPECT_EQ(size.constant, 50.0);
  EXPECT_EQ(Describe(result.constraints[1]), "b.leading == a.trailing");
  EXPECT_EQ(Describe(result.constraints[2]), "c.leading == b.trailing");
}

TEST(LayoutVisualFormatView, NamedView_ConstrainsSameDimension) {
  EXPECT_EQ(Read("[a(==b)]"), Lines{"a.width == b.width"});
  EXPECT_EQ(Read("V:[a(>=b@250)]"), Lines{"a.height >= b.height @250"});
  VisualFormatResult result = Parse("[a(b)]");
  ASSERT_TRUE(result.ok());
  EXPECT_EQ(result.constraints[0].secondAttribute, Attribute::Width);
  EXPECT_EQ(result.constraints[0].constant, 0.0);
}

TEST(LayoutVisualFormatView, SeveralPredicates_InOrder) {
  EXPECT_EQ(Read("[a(>=50,<=100@999)]"), (Lines{"a.width >= 50", "a.width <= 100 @999"}));
  EXPECT_EQ(Read("[a(20.5)]"), Lines{"a.width == 20.5"});
}

TEST(LayoutVisualFormatView, MetricPriorityAndThickness) {
  Metrics m = {{"tickness", 1}, {"low", 250}};
  EXPECT_EQ(Read("V:[a(tickness)]", 0, m), Lines{"a.height == 1"});
  EXPECT_EQ(Read("[a(>=20@low)]", 0, m), Lines{"a.width >= 20 @250"});
}

TEST(LayoutVisualFormatView, ViewNameWinsOverMetricInSizePredicate) {
  Metrics m = {{"b", 33}};
  EXPECT_EQ(Read("[a(b)]", 0, m), Lines{"a.width == b.width"});
  // In a connection only metrics can appear.
  EXPECT_EQ(Read("[a]-b-[c]", 0, m), Lines{"c.leading == a.trailing + 33"});
}

// --- Direction ---------------------------------------------------------------

TEST(LayoutVisualFormatDirection, LeftToRight_UsesLeftAndRight) {
  EXPECT_EQ(Read("H:|-10-[a]-[b]|", FormatOptions::DirectionLeftToRight),
            (Lines{"a.left == |.left + 10", "b.left == a.right + 8", "|.right == b.right"}));
}

TEST(LayoutVisualFormatDirection, RightToLeft_StartsAtTheRight) {
  const std::uint64_t rtl = FormatOptions::DirectionRightToLeft;
  EXPECT_EQ(Read("H:|[a]", rtl), Lines{"a.right == |.right"});
  EXPECT_EQ(Read("H:|-20-[a]", rtl), Lines{"a.right == |.right - 20"});
  EXPECT_EQ(Read("H:[a]-8-[b]", rtl), Lines{"b.right == a.left - 8"});
  EXPECT_EQ(Read("H:[a]-20-|", rtl), Lines{"|.left == a.left - 20"});
  // Relations swap so that the gap keeps its meaning.
  EXPECT_EQ(Read("H:[a]-(>=8@750)-[b]", rtl), Lines{"b.right <= a.left - 8 @750"});
  VisualFormatResult flush = Parse("H:[a][b]", rtl);
  ASSERT_TRUE(flush.ok());
  EXPECT_FALSE(std::signbit(flush.constraints[0].constant));
}

TEST(LayoutVisualFormatDirection, VerticalIgnoresDirection) {
  EXPECT_EQ(Read("V:[a]-8-[b]", FormatOptions::DirectionRightToLeft),
            Lines{"b.top == a.bottom + 8"});
}

TEST(LayoutVisualFormatDirection, UnknownDirection_IsAnError) {
  ExpectError("H:[a]", FormatOptions::DirectionMask);
}

// --- Alignment ---------------------------------------------------------------

TEST(LayoutVisualFormatAlignment, FollowsSpacing_OnePerViewAndBit) {
  EXPECT_EQ(Read("H:[a]-[b]-[c]", FormatOptions::AlignAllBottom | FormatOptions::AlignAllTop),
            (Lines{"b.leading == a.trailing + 8", "c.leading == b.trailing + 8",
                   "b.top == a.top", "b.bottom == a.bottom", "c.top == a.top",
                   "c.bottom == a.bottom"}));
  EXPECT_EQ(Read("V:[a][b]", FormatOptions::AlignAllLeading | FormatOptions::AlignAllCenterX),
            (Lines{"b.top == a.bottom", "b.leading == a.leading", "b.centerX == a.centerX"}));
  EXPECT_EQ(Read("H:[a][b]", FormatOptions::AlignAllFirstBaseline |
                                 FormatOptions::AlignAllLastBaseline),
            (Lines{"b.leading == a.trailing", "b.lastBaseline == a.lastBaseline",
                   "b.firstBaseline == a.firstBaseline"}));
}

TEST(LayoutVisualFormatAlignment, SingleView_HasNothingToAlign) {
  EXPECT_EQ(Read("H:|[a]|", FormatOptions::AlignAllTop),
            (Lines{"a.leading == |.leading", "|.trailing == a.trailing"}));
}

TEST(LayoutVisualFormatAlignment, AlongTheFormatsAxis_IsAnError) {
  for (std::uint64_t option :
       {FormatOptions::AlignAllLeading, FormatOptions::AlignAllTrailing,
        FormatOptions::AlignAllLeft, FormatOptions::AlignAllRight,
        FormatOptions::AlignAllCenterX}) {
    ExpectError("H:[a][b]", option);
  }
  for (std::uint64_t option :
       {FormatOptions::AlignAllTop, FormatOptions::AlignAllBottom, FormatOptions::AlignAllCenterY,
        FormatOptions::AlignAllLastBaseline, FormatOptions::AlignAllFirstBaseline}) {
    ExpectError("V:[a][b]", option);
  }
}

TEST(LayoutVisualFormatAlignment, UnknownBits) {
  ExpectError("H:[a][b]", 1ull << 7);  // width is not an alignment
  ExpectError("H:[a][b]", 1ull << 0);
  EXPECT_EQ(Read("H:[a][b]", 1ull << 20), Lines{"b.leading == a.trailing"});  // ignored
}

// --- Errors ------------------------------------------------------------------

TEST(LayoutVisualFormatError, MessageNamesPositionAndFormat) {
  EXPECT_EQ(Parse("H:[a(>=20]").error, "Expected ',' or ')' at 9 in 'H:[a(>=20]'");
  EXPECT_EQ(Parse("H:[a").error, "Expected ']' at 4 in 'H:[a'");
  EXPECT_EQ(Parse("H:[x]").error, "Unknown view 'x' at 3 in 'H:[x]'");
  EXPECT_EQ(Parse("[a]-gap-[b]").error, "Unknown metric 'gap' at 4 in '[a]-gap-[b]'");
  EXPECT_EQ(Parse("[a(w)]").error, "Unknown view or metric 'w' at 3 in '[a(w)]'");
}

TEST(LayoutVisualFormatError, UnbalancedBrackets) {
  for (const char* format : {"[a", "a]", "[a(20]", "[a(20", "[[a]]", "[a]]", "[a](20)",
                             "[a(20))]", "[]", "[a]-(8-[b]", "[a]-8)-[b]"}) {
    ExpectError(format);
  }
}

TEST(LayoutVisualFormatError, UnknownNames) {
  ExpectError("[a]-[d]");
  ExpectError("[a(==d)]");
  ExpectError("[a]-(>=gap)-[b]");
  ExpectError("[a(>=20@prio)]");
  ExpectError("[a]-b-[c]");  // a view is not a spacing
}

TEST(LayoutVisualFormatError, DanglingConnections) {
  for (const char* format : {"[a]-", "[a]-8-", "-[a]", "|-", "|", "[a]--[b]", "[a]-8[b]",
                             "|-8-|", "[a]-|-", "[a]|[b]", "[a]|x", ""}) {
    ExpectError(format);
  }
  ExpectError("H:");
  ExpectError("X:[a]");
}

TEST(LayoutVisualFormatError, BadRelationsAndPriorities) {
  for (const char* format : {"[a(=20)]", "[a(=>20)]", "[a(<20)]", "[a(!=20)]", "[a]-(=<8)-[b]",
                             "[a(20@0)]", "[a(20@1001)]", "[a(20@)]", "[a(20@-5)]", "[a(20.)]",
                             "[a(,)]", "[a()]", "[a(20,)]"}) {
    ExpectError(format);
  }
  EXPECT_EQ(Read("[a(20@1000)]"), Lines{"a.width == 20"});
  ExpectError("[a(>=n)]", 0, {{"n", std::nan("")}});
}

// A literal with enough digits is infinite as a double: refused, like a
// non-finite metric, wherever a number is read.
TEST(LayoutVisualFormatError, OverflowingNumbersAreRefused) {
  const std::string nines(400, '9');
  for (const std::string& format :
       {"H:[a(==" + nines + ")]", "H:[a]-" + nines + "-[b]", "H:|-(>=" + nines + ")-[a]",
        "H:[a(20@" + nines + ")]", "H:[a(-" + nines + ")]"}) {
    ExpectError(format);
  }
  EXPECT_EQ(Parse("H:[a(==" + nines + ")]").error.rfind("Number is too large at 7", 0), 0u);
  ExpectError("[a]-n-[b]", 0, {{"n", HUGE_VAL}});
  // Large but finite stays a number.
  VisualFormatResult large = Parse("H:[a(==" + std::string(300, '9') + ")]");
  ASSERT_TRUE(large.ok()) << large.error;
  EXPECT_GT(large.constraints[0].constant, 9e299);
}

// Priorities live in 1...1000: a positive one below 1, from a literal or a
// metric, is 1 (a float would round 1e-50 to 0, which is no priority).
TEST(LayoutVisualFormatView, PrioritiesBelowOneAreOne) {
  VisualFormatResult literal = Parse("[a(20@0." + std::string(60, '0') + "1)]");
  ASSERT_TRUE(literal.ok()) << literal.error;
  EXPECT_EQ(literal.constraints[0].priority, 1.0f);
  VisualFormatResult metric = Parse("[a]-(8@p)-[b]", 0, {{"p", 1e-50}});
  ASSERT_TRUE(metric.ok()) << metric.error;
  EXPECT_EQ(metric.constraints[0].priority, 1.0f);
  EXPECT_EQ(Parse("[a(20@0.5)]").constraints[0].priority, 1.0f);
  EXPECT_EQ(Parse("[a(20@1.5)]").constraints[0].priority, 1.5f);
  ExpectError("[a(20@p)]", 0, {{"p", 0.0}});
  ExpectError("[a(20@p)]", 0, {{"p", 1000.5}});
}

TEST(LayoutVisualFormatError, WhitespaceIsRejected) {
  for (const char* format : {"H: [a]", "[a] -8- [b]", "[a]-8-[b] ", " [a]", "[ a]", "[a(>= 20)]",
                             "[a]\t", "[a]\n|"}) {
    ExpectError(format);
  }
  EXPECT_EQ(Parse("[a]-8-[b] ").error, "Whitespace is not allowed at 9 in '[a]-8-[b] '");
  // Positions count characters, not UTF-8 bytes.
  EXPECT_EQ(Parse("\xE2\x82\xAC [a]").error, "Whitespace is not allowed at 1 in '\xE2\x82\xAC [a]'");
}

TEST(LayoutVisualFormatError, NonAsciiName_IsAnError) {
  ExpectError("[\xC3\xA9]");
}

}  // namespace
}  // namespace talvo::layout
