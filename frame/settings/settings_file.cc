#include "frame/settings/settings_file.h"

#include <chrono>
#include <thread>

#include "tovalin/error.h"

namespace tovalin {
namespace {

// When the file was replaced last; some time in the past without a file.
std::filesystem::file_time_type TimeOf(const std::filesystem::path& path) {
  std::error_code no_file;
  const auto time = std::filesystem::last_write_time(path, no_file);
  return no_file ? std::filesystem::file_time_type::min() : time;
}

}  // namespace

FileLock::FileLock(const std::filesystem::path& path, int attempts) {
  auto time = TimeOf(path);
  for (int left = attempts; !TryOnce(path);) {
    if (--left <= 0) Raise(Failure::PermissionDenied);
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
    if (const auto now = TimeOf(path); now != time) {
      time = now;
      left = attempts;
    }
  }
}

}  // namespace tovalin
