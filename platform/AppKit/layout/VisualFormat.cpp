#include "platform/AppKit/layout/VisualFormat.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <utility>

namespace talvo::layout {

namespace {

constexpr double kSiblingSpacing = 8.0;
constexpr double kSuperviewSpacing = 20.0;

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsNameStart(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; }
bool IsNameChar(char c) { return IsNameStart(c) || IsDigit(c); }
bool IsSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\v'; }

Relation Flipped(Relation relation) {
  switch (relation) {
    case Relation::LessThanOrEqual: return Relation::GreaterThanOrEqual;
    case Relation::GreaterThanOrEqual: return Relation::LessThanOrEqual;
    case Relation::Equal: return Relation::Equal;
  }
  return relation;
}

struct Predicate {
  Relation relation = Relation::Equal;
  double constant = 0.0;
  std::string view;  // set when the predicate names another view
  float priority = 1000.0f;
};

// What joins two items: flush (nothing), standard spacing ('-'), or
// explicit predicates.
struct Connection {
  enum class Kind { Flush, Standard, Predicates } kind = Kind::Flush;
  std::vector<Predicate> predicates;
};

struct Item {
  std::string name;  // kSuperviewItem for the superview
  bool isSuperview() const { return name == kSuperviewItem; }
};

// Edges along the format's axis, in the order views are laid out.
struct Axis {
  bool vertical = false;
  Attribute leading = Attribute::Leading;
  Attribute trailing = Attribute::Trailing;
  Attribute size = Attribute::Width;
  bool mirrored = false;  // right to left
};

class Parser {
 public:
  Parser(const std::string& format, std::uint64_t options,
         const std::map<std::string, double>& metrics, const std::set<std::string>& views)
      : format_(format), options_(options), metrics_(metrics), views_(views) {}

  VisualFormatResult run() {
    VisualFormatResult result;
    if (parse()) {
      result.constraints = std::move(out_);
    } else {
      result.error = error_;
    }
    return result;
  }

 private:
  const std::string& format_;
  std::uint64_t options_;
  const std::map<std::string, double>& metrics_;
  const std::set<std::string>& views_;
  std::size_t pos_ = 0;
  Axis axis_;
  std::vector<std::string> laidOut_;
  std::vector<ConstraintDescription> out_;
  std::string error_;

  // --- Errors ---------------------------------------------------------------

  bool fail(const std::string& message, std::size_t at) {
    // UTF-8 continuation bytes do not start a character.
    std::size_t character = 0;
    for (std::size_t i = 0; i < at && i < format_.size(); ++i) {
      if ((static_cast<unsigned char>(format_[i]) & 0xC0) != 0x80) ++character;
    }
    error_ = message + " at " + std::to_string(character) + " in '" + format_ + "'";
    return false;
  }

  bool failOptions(const std::string& message) {
    error_ = message + " in '" + format_ + "'";
    return false;
  }

  // --- Reading ----------------------------------------------------------------

  bool atEnd() const { return pos_ >= format_.size(); }
  char peek() const { return atEnd() ? '\0' : format_[pos_]; }

  bool accept(char c) {
    if (peek() != c) return false;
    ++pos_;
    return true;
  }

  bool expect(char c) {
    if (accept(c)) return true;
    return fail(std::string("Expected '") + c + "'", pos_);
  }

  std::string readName() {
    std::size_t start = pos_;
    while (!atEnd() && IsNameChar(format_[pos_])) ++pos_;
    return format_.substr(start, pos_ - start);
  }

  // digits ('.' digits)?, with a '-' only where the caller allows it.
  bool readNumber(bool allowSign, double& value) {
    std::size_t start = pos_;
    if (allowSign && (peek() == '-' || peek() == '+')) ++pos_;
    if (!IsDigit(peek())) return fail("Expected a number", start);
    while (IsDigit(peek())) ++pos_;
    if (accept('.')) {
      if (!IsDigit(peek())) return fail("Expected a digit after '.'", pos_);
      while (IsDigit(peek())) ++pos_;
    }
    value = std::strtod(format_.substr(start, pos_ - start).c_str(), nullptr);
    // Enough digits overflow to infinity, which no constraint can hold.
    if (!std::isfinite(value)) return fail("Number is too large", start);
    return true;
  }

  bool lookUpMetric(const std::string& name, std::size_t at, double& value) {
    auto it = metrics_.find(name);
    if (it == metrics_.end()) return fail("Unknown metric '" + name + "'", at);
    if (!std::isfinite(it->second)) return fail("Metric '" + name + "' is not a finite number", at);
    value = it->second;
    return true;
  }

  // A number or a metric name.
  bool readConstant(bool allowSign, double& value) {
    if (IsNameStart(peek())) {
      std::size_t at = pos_;
      return lookUpMetric(readName(), at, value);
    }
    return readNumber(allowSign, value);
  }

  // --- Grammar ----------------------------------------------------------------

  bool parse() {
    for (std::size_t i = 0; i < format_.size(); ++i) {
      if (IsSpace(format_[i])) return fail("Whitespace is not allowed", i);
    }
    if (format_.compare(0, 2, "H:") == 0) {
      pos_ = 2;
    } else if (format_.compare(0, 2, "V:") == 0) {
      axis_.vertical = true;
      pos_ = 2;
    }
    if (!setUpAxis()) return false;

    Item previous;
    Connection connection;
    bool hasPrevious = false;
    if (accept('|')) {
      previous.name = kSuperviewItem;
      hasPrevious = true;
      if (!parseConnection(connection)) return false;
    }
    for (;;) {
      if (peek() != '[') {
        return fail(hasPrevious ? "Expected '['" : "Expected '[' or '|'", pos_);
      }
      Item view;
      if (!parseView(view)) return false;
      if (hasPrevious) emitConnection(previous, view, connection);
      previous = view;
      hasPrevious = true;

      if (atEnd()) break;
      if (!parseConnection(connection)) return false;
      if (peek() == '[') continue;
      if (accept('|')) {
        emitConnection(previous, Item{kSuperviewItem}, connection);
        if (!atEnd()) return fail("Expected the end of the format", pos_);
        break;
      }
      if (atEnd() && connection.kind != Connection::Kind::Flush) {
        return fail("Expected '[' or '|' after '-'", pos_);
      }
      return fail("Expected '-', '[' or '|'", pos_);
    }
    emitAlignment();
    return true;
  }

  // connection := (nothing) | '-' | '-' (number | metric | '(' list ')') '-'
  bool parseConnection(Connection& connection) {
    connection = Connection();
    if (!accept('-')) return true;
    char next = peek();
    if (next == '[' || next == '|') {
      connection.kind = Connection::Kind::Standard;
      return true;
    }
    connection.kind = Connection::Kind::Predicates;
    if (next == '(') {
      if (!parsePredicateList(false, connection.predicates)) return false;
    } else if (IsDigit(next) || IsNameStart(next)) {
      Predicate predicate;
      if (!readConstant(false, predicate.constant)) return false;
      connection.predicates.push_back(predicate);
    } else {
      return fail(atEnd() ? "Expected '[' or '|' after '-'"
                          : "Expected a number, a metric or '(' after '-'",
                  pos_);
    }
    return expect('-');
  }

  // view := '[' name ('(' list ')')? ']'
  bool parseView(Item& view) {
    ++pos_;  // the caller saw '['
    std::size_t at = pos_;
    if (!IsNameStart(peek())) return fail("Expected a view name", pos_);
    view.name = readName();
    if (!views_.count(view.name)) return fail("Unknown view '" + view.name + "'", at);
    std::vector<Predicate> predicates;
    if (peek() == '(' && !parsePredicateList(true, predicates)) return false;
    if (!expect(']')) return false;

    for (const Predicate& predicate : predicates) {
      ConstraintDescription d;
      d.firstItem = view.name;
      d.firstAttribute = axis_.size;
      d.relation = predicate.relation;
      if (!predicate.view.empty()) {
        d.secondItem = predicate.view;
        d.secondAttribute = axis_.size;
      } else {
        d.constant = predicate.constant;
      }
      d.priority = predicate.priority;
      out_.push_back(std::move(d));
    }
    laidOut_.push_back(view.name);
    return true;
  }

  bool parsePredicateList(bool allowViews, std::vector<Predicate>& predicates) {
    ++pos_;  // the caller saw '('
    for (;;) {
      Predicate predicate;
      if (!parsePredicate(allowViews, predicate)) return false;
      predicates.push_back(std::move(predicate));
      if (accept(',')) continue;
      if (accept(')')) return true;
      return fail("Expected ',' or ')'", pos_);
    }
  }

  // predicate := ('==' | '<=' | '>=')? (number | metric | view) ('@' priority)?
  bool parsePredicate(bool allowViews, Predicate& predicate) {
    char c = peek();
    if (c == '=' || c == '<' || c == '>') {
      if (format_.compare(pos_, 2, "==") == 0) {
        predicate.relation = Relation::Equal;
      } else if (format_.compare(pos_, 2, "<=") == 0) {
        predicate.relation = Relation::LessThanOrEqual;
      } else if (format_.compare(pos_, 2, ">=") == 0) {
        predicate.relation = Relation::GreaterThanOrEqual;
      } else {
        return fail("Expected '==', '<=' or '>='", pos_);
      }
      pos_ += 2;
    }

    if (IsNameStart(peek())) {
      std::size_t at = pos_;
      std::string name = readName();
      if (allowViews && views_.count(name)) {
        predicate.view = name;
      } else if (!allowViews || metrics_.count(name)) {
        if (!lookUpMetric(name, at, predicate.constant)) return false;
      } else {
        return fail("Unknown view or metric '" + name + "'", at);
      }
    } else if (!readNumber(true, predicate.constant)) {
      return false;
    }

    if (accept('@')) {
      std::size_t at = pos_;
      double priority = 0.0;
      if (!readConstant(false, priority)) return false;
      if (!(priority > 0.0 && priority <= 1000.0)) {
        return fail("Priority must be greater than 0 and at most 1000", at);
      }
      // AppKit's range is 1...1000: a positive priority below 1 (which
      // could even round to 0 as a float) counts as 1.
      predicate.priority = static_cast<float>(std::max(priority, 1.0));
    }
    return true;
  }

  // --- Options ----------------------------------------------------------------

  // Direction options only matter to horizontal formats, but a bad one is
  // refused in either.
  bool setUpAxis() {
    std::uint64_t direction = options_ & FormatOptions::DirectionMask;
    if (direction != FormatOptions::DirectionLeadingToTrailing &&
        direction != FormatOptions::DirectionLeftToRight &&
        direction != FormatOptions::DirectionRightToLeft) {
      return failOptions("Unknown direction option");
    }
    if (axis_.vertical) {
      axis_.leading = Attribute::Top;
      axis_.trailing = Attribute::Bottom;
      axis_.size = Attribute::Height;
    } else if (direction == FormatOptions::DirectionLeftToRight) {
      axis_.leading = Attribute::Left;
      axis_.trailing = Attribute::Right;
    } else if (direction == FormatOptions::DirectionRightToLeft) {
      axis_.leading = Attribute::Right;
      axis_.trailing = Attribute::Left;
      axis_.mirrored = true;
    }

    std::uint64_t alignment = options_ & FormatOptions::AlignmentMask;
    for (int bit = 0; bit < 16; ++bit) {
      if (!(alignment & (1ull << bit))) continue;
      auto attribute = static_cast<Attribute>(bit);
      if (!isAlignment(attribute)) return failOptions("Unknown alignment option");
      if (alongAxis(attribute)) {
        return failOptions(std::string("Cannot align all ") + AttributeName(attribute) +
                           " in a " + (axis_.vertical ? "vertical" : "horizontal") +
                           " format");
      }
    }
    return true;
  }

  static bool isAlignment(Attribute attribute) {
    switch (attribute) {
      case Attribute::Left: case Attribute::Right: case Attribute::Top: case Attribute::Bottom:
      case Attribute::Leading: case Attribute::Trailing: case Attribute::CenterX:
      case Attribute::CenterY: case Attribute::LastBaseline: case Attribute::FirstBaseline:
        return true;
      default:
        return false;
    }
  }

  bool alongAxis(Attribute attribute) const {
    bool horizontal = attribute == Attribute::Left || attribute == Attribute::Right ||
                      attribute == Attribute::Leading || attribute == Attribute::Trailing ||
                      attribute == Attribute::CenterX;
    return horizontal != axis_.vertical;
  }

  // --- Emission ---------------------------------------------------------------

  void emitConnection(const Item& previous, const Item& next, const Connection& connection) {
    std::vector<Predicate> predicates = connection.predicates;
    if (connection.kind != Connection::Kind::Predicates) {
      Predicate spacing;
      if (connection.kind == Connection::Kind::Standard) {
        bool edge = previous.isSuperview() || next.isSuperview();
        spacing.constant = edge ? kSuperviewSpacing : kSiblingSpacing;
      }
      predicates.push_back(spacing);
    }
    for (const Predicate& predicate : predicates) {
      ConstraintDescription d;
      d.firstItem = next.name;
      d.firstAttribute = next.isSuperview() ? axis_.trailing : axis_.leading;
      d.secondItem = previous.name;
      d.secondAttribute = previous.isSuperview() ? axis_.leading : axis_.trailing;
      d.relation = axis_.mirrored ? Flipped(predicate.relation) : predicate.relation;
      d.constant = axis_.mirrored ? -predicate.constant : predicate.constant;
      if (d.constant == 0.0) d.constant = 0.0;  // no -0 from mirroring
      d.priority = predicate.priority;
      out_.push_back(std::move(d));
    }
  }

  void emitAlignment() {
    std::uint64_t alignment = options_ & FormatOptions::AlignmentMask;
    if (alignment == 0) return;
    for (std::size_t i = 1; i < laidOut_.size(); ++i) {
      for (int bit = 0; bit < 16; ++bit) {
        if (!(alignment & (1ull << bit))) continue;
        ConstraintDescription d;
        d.firstItem = laidOut_[i];
        d.firstAttribute = static_cast<Attribute>(bit);
        d.secondItem = laidOut_.front();
        d.secondAttribute = d.firstAttribute;
        out_.push_back(std::move(d));
      }
    }
  }
};

std::string FormatNumber(double value) {
  char buffer[32];
  std::snprintf(buffer, sizeof buffer, "%g", value);
  return buffer;
}

}  // namespace

bool operator==(const ConstraintDescription& a, const ConstraintDescription& b) {
  return a.firstItem == b.firstItem && a.firstAttribute == b.firstAttribute &&
         a.relation == b.relation && a.secondItem == b.secondItem &&
         a.secondAttribute == b.secondAttribute && a.multiplier == b.multiplier &&
         a.constant == b.constant && a.priority == b.priority;
}

std::string Describe(const ConstraintDescription& d) {
  std::string text = d.firstItem + "." + AttributeName(d.firstAttribute) + " " +
                     RelationSymbol(d.relation) + " ";
  if (d.secondItem.empty()) {
    text += FormatNumber(d.constant);
  } else {
    text += d.secondItem + "." + AttributeName(d.secondAttribute);
    if (d.multiplier != 1.0) text += " * " + FormatNumber(d.multiplier);
    if (d.constant > 0.0) text += " + " + FormatNumber(d.constant);
    if (d.constant < 0.0) text += " - " + FormatNumber(-d.constant);
  }
  if (d.priority != 1000.0f) text += " @" + FormatNumber(d.priority);
  return text;
}

VisualFormatResult ParseVisualFormat(const std::string& format, std::uint64_t options,
                                     const std::map<std::string, double>& metrics,
                                     const std::set<std::string>& views) noexcept {
  // Called from Objective-C++, where a C++ exception cannot be caught.
  try {
    return Parser(format, options, metrics, views).run();
  } catch (...) {
    VisualFormatResult failed;
    failed.error = "Out of memory";  // only bad_alloc can get here
    return failed;
  }
}

}  // namespace talvo::layout
