// The visual format parser on arbitrary formats, options and metrics.
//
// Input: 8 bytes of NSLayoutFormatOptions, 1 byte choosing the value of the
// metric "m" (among extremes), then the format itself.
//
// Beyond the sanitizers it checks the parser's promises: a result is either
// constraints or an error, never both; every constraint names known items,
// holds a finite constant and a priority within AppKit's 1...1000.
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <map>
#include <set>
#include <string>

#include "platform/AppKit/layout/VisualFormat.hpp"

namespace {

const double kMetricValues[] = {8.0,
                                0.0,
                                -20.0,
                                1e-50,
                                1e300,
                                -1e300,
                                std::numeric_limits<double>::max(),
                                std::numeric_limits<double>::denorm_min(),
                                std::numeric_limits<double>::infinity(),
                                std::numeric_limits<double>::quiet_NaN(),
                                750.0,
                                1000.0,
                                1000.5};

void Check(bool condition, const char *what, const std::string &format) {
  if (!condition) {
    std::fprintf(stderr, "visual format: %s for '%s'\n", what, format.c_str());
    std::abort();
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  if (size < 9) return 0;
  std::uint64_t options;
  std::memcpy(&options, data, sizeof options);
  double metric = kMetricValues[data[8] % (sizeof kMetricValues / sizeof kMetricValues[0])];
  std::string format(reinterpret_cast<const char *>(data + 9), size - 9);

  static const std::set<std::string> views = {"a", "b", "c", "view1", "_x"};
  const std::map<std::string, double> metrics = {{"m", metric}, {"w", 10.0}};
  talvo::layout::VisualFormatResult result =
      talvo::layout::ParseVisualFormat(format, options, metrics, views);

  Check(result.ok() != !result.error.empty(), "ok() disagrees with the error", format);
  Check(result.ok() || result.constraints.empty(), "an error with constraints", format);
  for (const talvo::layout::ConstraintDescription &d : result.constraints) {
    Check(std::isfinite(d.constant), "a constant that is not finite", format);
    Check(std::isfinite(d.multiplier), "a multiplier that is not finite", format);
    Check(d.priority >= 1.0f && d.priority <= 1000.0f, "a priority outside 1...1000", format);
    Check(d.firstItem == talvo::layout::kSuperviewItem || views.count(d.firstItem) != 0,
          "an unknown first item", format);
    Check(d.secondItem.empty() || d.secondItem == talvo::layout::kSuperviewItem ||
              views.count(d.secondItem) != 0,
          "an unknown second item", format);
    (void)talvo::layout::Describe(d);
  }
  return 0;
}
