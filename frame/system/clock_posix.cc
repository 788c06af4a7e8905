#include <ctime>

#include "frame/system/clock.h"
#include "frame/value/calendar.h"

namespace tovalin {

Date SystemNow() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  if (!localtime_r(&now, &local)) Raise(Failure::InvalidArgument);
  // A leap second is told as the second before it.
  const int second = local.tm_sec > 59 ? 59 : local.tm_sec;
  return MakeDate({.year = local.tm_year + 1900, .month = local.tm_mon + 1, .day = local.tm_mday},
                  {.hour = local.tm_hour, .minute = local.tm_min, .second = second});
}

}  // namespace tovalin
