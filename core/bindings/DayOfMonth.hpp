// Day arithmetic that wraps within a month.
#pragma once

#include <cstdint>

namespace talvo::bindings {

// The day of the month reached by adding `delta` days to `day` (1-based) in
// a month of `daysInMonth` days, wrapping around inside the month: month and
// year never change. Returns `day` unchanged for a month of no days.
int64_t WrappedDayOfMonth(int64_t day, int64_t daysInMonth, int64_t delta);

}  // namespace talvo::bindings
