#include "frame/write_failure.h"

#include <cerrno>

namespace tovalin {
namespace {

struct Cause {
  int number;
  Failure failure;
};

constexpr Cause kCauses[] = {
    {ENOSPC, Failure::DiskFull},
#ifdef EDQUOT
    {EDQUOT, Failure::DiskFull},
#endif
    {EACCES, Failure::PermissionDenied},
};

}  // namespace

Failure WriteFailure(int cause) {
  for (const Cause& row : kCauses)
    if (row.number == cause) return row.failure;
  return Failure::PathAccess;
}

}  // namespace tovalin
