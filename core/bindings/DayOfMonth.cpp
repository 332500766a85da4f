#include "core/bindings/DayOfMonth.hpp"

namespace talvo::bindings {

int64_t WrappedDayOfMonth(int64_t day, int64_t daysInMonth, int64_t delta) {
  if (daysInMonth <= 0) {
    return day;
  }
  // Reduce delta first so that day - 1 + delta cannot overflow.
  int64_t offset = (day - 1) % daysInMonth + delta % daysInMonth;
  offset %= daysInMonth;
  if (offset < 0) {
    offset += daysInMonth;
  }
  return offset + 1;
}

}  // namespace talvo::bindings
