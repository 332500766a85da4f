// Layout attributes and relations, with AppKit's raw values so the
// Objective-C wrapper can cast straight to NSLayoutAttribute/NSLayoutRelation.
#pragma once

namespace talvo::layout {

enum class Attribute : int {
  NotAnAttribute = 0,
  Left = 1,
  Right = 2,
  Top = 3,
  Bottom = 4,
  Leading = 5,
  Trailing = 6,
  Width = 7,
  Height = 8,
  CenterX = 9,
  CenterY = 10,
  LastBaseline = 11,
  FirstBaseline = 12,
};

enum class Relation : int {
  LessThanOrEqual = -1,
  Equal = 0,
  GreaterThanOrEqual = 1,
};

// Lower-case names as they read in AppKit's constraint descriptions.
const char* AttributeName(Attribute attribute);
const char* RelationSymbol(Relation relation);

}  // namespace talvo::layout
