#include <algorithm>
#include <array>

#include "frame/settings/settings_file.h"
#include "frame/system/handle_windows.h"
#include "tovalin/error.h"

namespace tovalin {
namespace {

using std::filesystem::path;

[[noreturn]] void RaiseSystem(DWORD error) {
  switch (error) {
    case ERROR_ACCESS_DENIED:
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
    case ERROR_WRITE_PROTECT:
      Raise(Failure::PermissionDenied);
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_NAME:
    case ERROR_BAD_PATHNAME:
    case ERROR_FILENAME_EXCED_RANGE:
      Raise(Failure::PathNotFound);
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
      Raise(Failure::DiskFull);
    default:
      Raise(Failure::PathAccess);
  }
}

// A directory in the way is refused with "access denied", like a lack of rights.
[[noreturn]] void RaiseSystem(DWORD error, const path& file) {
  const DWORD attributes = GetFileAttributesW(file.c_str());
  const bool is_directory =
      attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
  if (is_directory) Raise(Failure::PathAccess);
  RaiseSystem(error);
}

constexpr const wchar_t* kTemporary = L".tmp";

std::optional<path> DirectoryOf(const wchar_t* variable) {
  std::array<wchar_t, 32768> directory;
  const DWORD size =
      GetEnvironmentVariableW(variable, directory.data(), static_cast<DWORD>(directory.size()));
  if (size == 0 || size >= directory.size()) return std::nullopt;
  return path(std::wstring_view(directory.data(), size));
}

path WithSuffix(path file, const wchar_t* suffix) { return file += suffix; }

HANDLE OpenLockFile(const path& file) {
  MakeDirectories(file.parent_path());
  const path name = WithSuffix(file, L".lock");
  const HANDLE lock = OpenShared(name, GENERIC_READ | GENERIC_WRITE, OPEN_ALWAYS);
  if (lock == INVALID_HANDLE_VALUE) RaiseSystem(GetLastError(), name);
  return lock;
}

// False when somebody else holds the lock.
bool Lock(HANDLE lock) {
  OVERLAPPED start{};
  constexpr DWORD kHow = LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY;
  if (LockFileEx(lock, kHow, 0, 1, 0, &start)) return true;
  const DWORD error = GetLastError();
  if (error != ERROR_LOCK_VIOLATION && error != ERROR_IO_PENDING) RaiseSystem(error);
  return false;
}

void WriteAll(HANDLE file, std::string_view bytes) {
  constexpr std::size_t kMost = 1 << 30;
  while (!bytes.empty()) {
    DWORD written = 0;
    const auto count = static_cast<DWORD>(std::min(bytes.size(), kMost));
    if (!WriteFile(file, bytes.data(), count, &written, nullptr)) RaiseSystem(GetLastError());
    bytes.remove_prefix(written);
  }
}

void WriteNewFile(const path& file, std::string_view bytes) {
  const Handle out(OpenShared(file, GENERIC_WRITE, CREATE_ALWAYS));
  if (!out.IsOpen()) RaiseSystem(GetLastError(), file);
  WriteAll(out.get(), bytes);
  if (!FlushFileBuffers(out.get())) RaiseSystem(GetLastError());
}

// ReplaceFileW takes the place even of a file that others have open, which a plain move
// does not; but it wants a file to be there.
void Rename(const path& from, const path& to) {
  if (ReplaceFileW(to.c_str(), from.c_str(), nullptr, REPLACEFILE_IGNORE_MERGE_ERRORS, nullptr,
                   nullptr)) {
    return;
  }
  if (GetLastError() != ERROR_FILE_NOT_FOUND) RaiseSystem(GetLastError(), to);
  if (!MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_WRITE_THROUGH)) {
    RaiseSystem(GetLastError(), to);
  }
}

}  // namespace

path ConfigurationDirectory() {
  if (std::optional<path> directory = DirectoryOf(L"APPDATA")) return *directory;
  Raise(Failure::PathNotFound);
}

std::vector<path> RuntimeDirectories() {
  std::vector<path> directories;
  if (auto local = DirectoryOf(L"LOCALAPPDATA")) directories.push_back(*std::move(local));
  directories.push_back(ConfigurationDirectory());
  return directories;
}

void MakeDirectories(const path& directory) {
  if (CreateDirectoryW(directory.c_str(), nullptr)) return;
  const DWORD error = GetLastError();
  if (error == ERROR_ALREADY_EXISTS) return;
  const path parent = directory.parent_path();
  if (error != ERROR_PATH_NOT_FOUND || parent.empty() || parent == directory) RaiseSystem(error);
  MakeDirectories(parent);
  if (CreateDirectoryW(directory.c_str(), nullptr)) return;
  if (GetLastError() != ERROR_ALREADY_EXISTS) RaiseSystem(GetLastError());
}

path LinkedFile(const path& file) { return file; }

bool FileLock::TryOnce(const path& file) {
  Handle lock(OpenLockFile(file));
  if (!Lock(lock.get())) return false;
  handle_ = reinterpret_cast<std::intptr_t>(lock.Release());
  return true;
}

FileLock::~FileLock() {
  // Closing the file gives the lock back.
  if (handle_ != kNone) CloseHandle(reinterpret_cast<HANDLE>(handle_));
}

std::optional<std::string> ReadWhole(const path& file) {
  const Handle in(OpenShared(file, GENERIC_READ, OPEN_EXISTING));
  const DWORD error = GetLastError();
  if (!in.IsOpen() && (error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND)) {
    return std::nullopt;
  }
  if (!in.IsOpen()) RaiseSystem(error, file);
  std::string bytes;
  std::array<char, 1 << 16> block;
  for (;;) {
    DWORD count = 0;
    if (!::ReadFile(in.get(), block.data(), static_cast<DWORD>(block.size()), &count, nullptr)) {
      RaiseSystem(GetLastError());
    }
    if (count == 0) return bytes;
    bytes.append(block.data(), count);
  }
}

void ReplaceWhole(const path& file, std::string_view bytes) {
  const path temporary = WithSuffix(file, kTemporary);
  try {
    WriteNewFile(temporary, bytes);
    Rename(temporary, file);
  } catch (const Error&) {
    DeleteFileW(temporary.c_str());
    throw;
  }
}

void RemoveLeftover(const path& file) noexcept {
  try {
    const path temporary = WithSuffix(file, kTemporary);
    if (GetFileAttributesW(temporary.c_str()) == INVALID_FILE_ATTRIBUTES) return;
    const FileLock lock(file, 1);
    DeleteFileW(temporary.c_str());
  } catch (...) {
    // Its writer is at work, or it cannot be removed.
  }
}

}  // namespace tovalin
