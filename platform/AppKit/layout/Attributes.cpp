#include "platform/AppKit/layout/Attributes.hpp"

namespace talvo::layout {

const char* AttributeName(Attribute attribute) {
  switch (attribute) {
    case Attribute::NotAnAttribute: return "notAnAttribute";
    case Attribute::Left: return "left";
    case Attribute::Right: return "right";
    case Attribute::Top: return "top";
    case Attribute::Bottom: return "bottom";
    case Attribute::Leading: return "leading";
    case Attribute::Trailing: return "trailing";
    case Attribute::Width: return "width";
    case Attribute::Height: return "height";
    case Attribute::CenterX: return "centerX";
    case Attribute::CenterY: return "centerY";
    case Attribute::LastBaseline: return "lastBaseline";
    case Attribute::FirstBaseline: return "firstBaseline";
  }
  return "?";
}

const char* RelationSymbol(Relation relation) {
  switch (relation) {
    case Relation::LessThanOrEqual: return "<=";
    case Relation::Equal: return "==";
    case Relation::GreaterThanOrEqual: return ">=";
  }
  return "?";
}

}  // namespace talvo::layout
