#include <windows.h>

#include "frame/system/clock.h"
#include "frame/value/calendar.h"

namespace tovalin {

Date SystemNow() {
  SYSTEMTIME local;
  GetLocalTime(&local);
  return MakeDate({.year = local.wYear, .month = local.wMonth, .day = local.wDay},
                  {.hour = local.wHour, .minute = local.wMinute, .second = local.wSecond});
}

}  // namespace tovalin
