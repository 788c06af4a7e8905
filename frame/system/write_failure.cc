#include "frame/system/write_failure.h"

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

Failure WriteFailure(int cause, const std::filesystem::path& file) {
  std::error_code ignored;
  // Not every system says that a directory is what cannot be written.
  if (std::filesystem::is_directory(file, ignored)) return Failure::PathAccess;
  for (const Cause& row : kCauses)
    if (row.number == cause) return row.failure;
  return Failure::PathAccess;
}

}  // namespace tovalin
