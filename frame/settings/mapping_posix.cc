#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <time.h>

#include <cerrno>

#include "frame/settings/mapping.h"
#include "frame/system/descriptor_posix.h"

namespace tovalin {
namespace {

constexpr int kFlags = O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW;

// The file for writing, though its mode forbids that to its owner too. Another process may
// do the same at this moment, so one attempt does not always do.
int OpenToWrite(const std::filesystem::path& path) {
  for (int attempt = 0; attempt < 10; ++attempt) {
    const int file = open(path.c_str(), O_RDWR | O_CREAT | kFlags, 0400);
    if (file >= 0 || errno != EACCES || chmod(path.c_str(), 0600) != 0) return file;
  }
  return -1;
}

// Only for a file that is too short: where the file system cannot reserve space itself, bytes are
// written, which others may be writing too.
bool ReserveSpace(int file, const struct stat& status, std::size_t size) {
  if (static_cast<std::size_t>(status.st_size) >= size) return true;
  return posix_fallocate(file, 0, static_cast<off_t>(size)) == 0;
}

// The status of a regular file.
std::optional<struct stat> StatusOf(int file) {
  struct stat status {};
  if (fstat(file, &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
  return status;
}

}  // namespace

std::optional<Mapping> Mapping::Open(const std::filesystem::path& path, std::size_t size) {
  const Descriptor file(open(path.c_str(), O_RDONLY | kFlags));
  if (!file.IsOpen()) return std::nullopt;
  const std::optional<struct stat> status = StatusOf(file.number());
  if (!status || static_cast<std::size_t>(status->st_size) < size) return std::nullopt;
  void* const start = mmap(nullptr, size, PROT_READ, MAP_SHARED, file.number(), 0);
  if (start == MAP_FAILED) return std::nullopt;
  return Mapping(start, size, kNone, status->st_dev, status->st_ino);
}

std::optional<Mapping> Mapping::Make(const std::filesystem::path& path, std::size_t size) {
  const int file = OpenToWrite(path);
  if (file < 0) return std::nullopt;
  Mapping mapping(nullptr, size, file, 0, 0);  // closes the file
  const std::optional<struct stat> status = StatusOf(file);
  if (!status || fchmod(file, 0400) != 0 || !ReserveSpace(file, *status, size)) return std::nullopt;
  mapping.volume_ = status->st_dev;
  mapping.file_ = status->st_ino;
  void* const start = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
  if (start == MAP_FAILED) return std::nullopt;
  mapping.start_ = start;
  return mapping;
}

Mapping::~Mapping() {
  if (start_) munmap(start_, size_);
  if (handle_ != kNone) close(static_cast<int>(handle_));
}

bool Mapping::Lock() { return flock(static_cast<int>(handle_), LOCK_EX | LOCK_NB) == 0; }

bool Mapping::IsAt(const std::filesystem::path& path) const {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 && status.st_dev == volume_ && status.st_ino == file_;
}

std::int64_t CoarseMilliseconds() {
#if defined(CLOCK_MONOTONIC_COARSE)
  constexpr clockid_t kClock = CLOCK_MONOTONIC_COARSE;
#else
  constexpr clockid_t kClock = CLOCK_MONOTONIC;
#endif
  struct timespec now {};
  clock_gettime(kClock, &now);
  return std::int64_t{now.tv_sec} * 1000 + now.tv_nsec / 1'000'000;
}

}  // namespace tovalin
