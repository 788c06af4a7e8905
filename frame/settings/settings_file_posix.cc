#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <cstdlib>

#include "frame/settings/settings_file.h"
#include "frame/system/descriptor_posix.h"
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

constexpr const char* kTemporary = ".tmp";

// A directory by the environment; a relative one counts as none. `in_home` is where it is
// without a variable, unless null.
std::optional<path> DirectoryOf(const char* variable, const char* in_home) {
  const char* named = std::getenv(variable);
  if (named && named[0] == '/') return named;
  const char* home = in_home ? std::getenv("HOME") : nullptr;
  if (!home || home[0] != '/') return std::nullopt;
  return path(home) / in_home;
}

path WithSuffix(path file, const char* suffix) { return file += suffix; }

int OpenLockFile(const path& file) {
  MakeDirectories(file.parent_path());
  const int lock = open(WithSuffix(file, ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  if (lock < 0) RaiseSystem(errno);
  return lock;
}

// False when somebody else holds the lock.
bool Lock(int lock) {
  while (flock(lock, LOCK_EX | LOCK_NB) != 0) {
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

// What bears the name is left over, or somebody's trap: it is not written to.
void WriteNewFile(const path& file, std::string_view bytes) {
  unlink(file.c_str());
  const Descriptor out(open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
  if (!out.IsOpen()) RaiseSystem(errno);
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
  if (std::optional<path> directory = DirectoryOf("XDG_CONFIG_HOME", ".config")) return *directory;
  Raise(Failure::PathNotFound);
}

std::vector<path> RuntimeDirectories() {
  std::vector<path> directories;
  // What another user's session left in the environment does not count.
  std::optional<path> runtime = DirectoryOf("XDG_RUNTIME_DIR", nullptr);
  struct stat status {};
  const bool is_foreign =
      runtime && stat(runtime->c_str(), &status) == 0 && status.st_uid != geteuid();
  if (runtime && !is_foreign) directories.push_back(*std::move(runtime));
  if (auto state = DirectoryOf("XDG_STATE_HOME", ".local/state"))
    directories.push_back(*std::move(state));
  directories.push_back(ConfigurationDirectory());
  return directories;
}

void MakeDirectories(const path& directory) {
  if (mkdir(directory.c_str(), 0700) == 0 || errno == EEXIST) return;
  const path parent = directory.parent_path();
  if (errno != ENOENT || parent.empty() || parent == directory) RaiseSystem(errno);
  MakeDirectories(parent);
  if (mkdir(directory.c_str(), 0700) != 0 && errno != EEXIST) RaiseSystem(errno);
}

path LinkedFile(const path& file) {
  std::error_code none_yet;
  const path linked = std::filesystem::canonical(file, none_yet);
  return none_yet ? file : linked;
}

bool FileLock::TryOnce(const path& file) {
  Descriptor lock(OpenLockFile(file));
  if (!Lock(lock.number()) || !IsAt(lock.number(), WithSuffix(file, ".lock"))) return false;
  handle_ = lock.Release();
  return true;
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
  const path temporary = WithSuffix(file, kTemporary);
  try {
    WriteNewFile(temporary, bytes);
    if (rename(temporary.c_str(), file.c_str()) != 0) RaiseSystem(errno);
  } catch (const Error&) {
    unlink(temporary.c_str());
    throw;
  }
  SyncDirectory(file.parent_path());
}

void RemoveLeftover(const path& file) noexcept {
  try {
    const path temporary = WithSuffix(file, kTemporary);
    if (access(temporary.c_str(), F_OK) != 0) return;
    const FileLock lock(file, 1);
    unlink(temporary.c_str());
  } catch (...) {
    // Its writer is at work, or it cannot be removed.
  }
}

}  // namespace tovalin
