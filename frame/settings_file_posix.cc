#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <thread>

#include "frame/descriptor_posix.h"
#include "frame/settings_file.h"
#include "tovalin/error.h"

namespace tovalin {
namespace {

using std::filesystem::path;

[[noreturn]] void RaiseSystem(int error) {
  switch (error) {
    case EACCES:
    case EPERM:
    case EROFS:
      Raise(Failure::PermissionDenied);
    case ENOENT:
    case ENAMETOOLONG:
      Raise(Failure::PathNotFound);
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
      Raise(Failure::DiskFull);
    default:
      Raise(Failure::PathAccess);
  }
}

path WithSuffix(path file, const char* suffix) { return file += suffix; }

void MakeDirectories(const path& directory) {
  if (mkdir(directory.c_str(), 0700) == 0 || errno == EEXIST) return;
  const path parent = directory.parent_path();
  if (errno != ENOENT || parent.empty() || parent == directory) RaiseSystem(errno);
  MakeDirectories(parent);
  if (mkdir(directory.c_str(), 0700) != 0 && errno != EEXIST) RaiseSystem(errno);
}

int OpenLockFile(const path& file) {
  MakeDirectories(file.parent_path());
  const int lock = open(WithSuffix(file, ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  if (lock < 0) RaiseSystem(errno);
  return lock;
}

// False when somebody else holds the lock and `how` says not to wait.
bool Lock(int lock, int how) {
  while (flock(lock, how) != 0) {
    if (errno == EWOULDBLOCK) return false;
    if (errno != EINTR) RaiseSystem(errno);
  }
  return true;
}

// A lock file that was deleted since it was opened keeps nobody out.
bool IsAt(int file, const path& place) {
  struct stat open_file {};
  struct stat named_file {};
  return fstat(file, &open_file) == 0 && stat(place.c_str(), &named_file) == 0 &&
         open_file.st_ino == named_file.st_ino && open_file.st_dev == named_file.st_dev;
}

void WriteAll(int file, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = write(file, bytes.data(), bytes.size());
    if (written < 0 && errno != EINTR) RaiseSystem(errno);
    if (written > 0) bytes.remove_prefix(static_cast<std::size_t>(written));
  }
}

// Takes the room on the disk beforehand: a file written in place later on must
// not find the disk full then. A file system that cannot do this has no need.
void TakeRoom(int file, std::size_t size) {
  if (size == 0) return;
  const int error = posix_fallocate(file, 0, static_cast<off_t>(size));
  if (error != 0 && error != EINVAL && error != EOPNOTSUPP) RaiseSystem(error);
}

void WriteNewFile(const path& file, mode_t mode, std::string_view bytes) {
  const Descriptor out(open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
  if (!out.IsOpen()) RaiseSystem(errno);
  if (fchmod(out.number(), mode) != 0) RaiseSystem(errno);
  TakeRoom(out.number(), bytes.size());
  WriteAll(out.number(), bytes);
  if (fsync(out.number()) != 0) RaiseSystem(errno);
}

// The rename itself reaches the disk with the directory. A system that cannot
// sync one has renamed all the same.
void SyncDirectory(const path& directory) {
  const Descriptor open_directory(open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (open_directory.IsOpen()) fsync(open_directory.number());
}

}  // namespace

path ConfigurationDirectory() {
  // A relative XDG_CONFIG_HOME counts as none.
  const char* configured = std::getenv("XDG_CONFIG_HOME");
  if (configured && configured[0] == '/') return configured;
  const char* home = std::getenv("HOME");
  if (!home || home[0] != '/') Raise(Failure::PathNotFound);
  return path(home) / ".config";
}

FileLock::FileLock(const path& file) : handle_(kNone) {
  for (;;) {
    FileLock lock(static_cast<std::intptr_t>(OpenLockFile(file)));
    Lock(static_cast<int>(lock.handle_), LOCK_EX);
    if (!IsAt(static_cast<int>(lock.handle_), WithSuffix(file, ".lock"))) continue;
    std::swap(handle_, lock.handle_);
    return;
  }
}

std::optional<FileLock> FileLock::Try(const path& file, std::chrono::milliseconds patience) {
  const auto end = std::chrono::steady_clock::now() + patience;
  do {
    FileLock lock(static_cast<std::intptr_t>(OpenLockFile(file)));
    if (Lock(static_cast<int>(lock.handle_), LOCK_EX | LOCK_NB) &&
        IsAt(static_cast<int>(lock.handle_), WithSuffix(file, ".lock"))) {
      return lock;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  } while (std::chrono::steady_clock::now() < end);
  return std::nullopt;
}

FileLock::~FileLock() {
  if (handle_ == kNone) return;
  // Said aloud, since a child forked meanwhile has the lock file open too.
  flock(static_cast<int>(handle_), LOCK_UN);
  close(static_cast<int>(handle_));
}

std::optional<std::string> ReadWhole(const path& file) {
  const Descriptor in(open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  if (!in.IsOpen() && errno == ENOENT) return std::nullopt;
  if (!in.IsOpen()) RaiseSystem(errno);
  std::string bytes;
  std::array<char, 1 << 16> block;
  for (;;) {
    const ssize_t count = read(in.number(), block.data(), block.size());
    if (count == 0) return bytes;
    if (count < 0 && errno != EINTR) RaiseSystem(errno);
    if (count > 0) bytes.append(block.data(), static_cast<std::size_t>(count));
  }
}

void ReplaceWhole(const path& file, std::string_view bytes) {
  // What a link names is replaced, not the link.
  std::error_code none_yet;
  const path linked = std::filesystem::canonical(file, none_yet);
  const path& target = none_yet ? file : linked;
  struct stat old {};
  const mode_t mode = stat(target.c_str(), &old) == 0 ? old.st_mode & 0777 : 0600;
  const path temporary = WithSuffix(target, ".tmp");
  try {
    WriteNewFile(temporary, mode, bytes);
    if (rename(temporary.c_str(), target.c_str()) != 0) RaiseSystem(errno);
  } catch (const Error&) {
    unlink(temporary.c_str());
    throw;
  }
  SyncDirectory(target.parent_path());
}

}  // namespace tovalin
