#include "frame/settings/mapping.h"
#include "frame/system/handle_windows.h"

namespace tovalin {
namespace {

// The lock is on a byte far behind the end of the file: Windows keeps others from reading
// what is locked.
constexpr DWORD kLockHigh = 0x40000000;

std::uint64_t Join(DWORD high, DWORD low) { return std::uint64_t{high} << 32 | low; }

// The file for writing, though its attribute forbids that. Another process may do the same
// at this moment, so one attempt does not always do.
HANDLE OpenToWrite(const std::filesystem::path& path) {
  for (int attempt = 0; attempt < 10; ++attempt) {
    const HANDLE file =
        OpenShared(path, GENERIC_READ | GENERIC_WRITE, OPEN_ALWAYS, FILE_ATTRIBUTE_READONLY);
    if (file != INVALID_HANDLE_VALUE || GetLastError() != ERROR_ACCESS_DENIED) return file;
    if (!SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL)) return file;
  }
  return INVALID_HANDLE_VALUE;
}

void* MapFile(HANDLE file, DWORD protection, DWORD access, std::size_t size) {
  const Handle section(
      CreateFileMappingW(file, nullptr, protection, 0,
                         protection == PAGE_READWRITE ? static_cast<DWORD>(size) : 0, nullptr));
  return section.IsOpen() ? MapViewOfFile(section.get(), access, 0, 0, size) : nullptr;
}

}  // namespace

std::optional<Mapping> Mapping::Open(const std::filesystem::path& path, std::size_t size) {
  const Handle file(OpenShared(path, GENERIC_READ, OPEN_EXISTING));
  BY_HANDLE_FILE_INFORMATION status;
  if (!file.IsOpen() || !GetFileInformationByHandle(file.get(), &status)) return std::nullopt;
  if (Join(status.nFileSizeHigh, status.nFileSizeLow) < size) return std::nullopt;
  void* const start = MapFile(file.get(), PAGE_READONLY, FILE_MAP_READ, size);
  if (!start) return std::nullopt;
  return Mapping(start, size, kNone, status.dwVolumeSerialNumber,
                 Join(status.nFileIndexHigh, status.nFileIndexLow));
}

std::optional<Mapping> Mapping::Make(const std::filesystem::path& path, std::size_t size) {
  const HANDLE file = OpenToWrite(path);
  if (file == INVALID_HANDLE_VALUE) return std::nullopt;
  SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_READONLY);
  Mapping mapping(nullptr, size, reinterpret_cast<std::intptr_t>(file), 0, 0);  // closes the file
  BY_HANDLE_FILE_INFORMATION status;
  if (!GetFileInformationByHandle(file, &status)) return std::nullopt;
  mapping.volume_ = status.dwVolumeSerialNumber;
  mapping.file_ = Join(status.nFileIndexHigh, status.nFileIndexLow);
  mapping.start_ = MapFile(file, PAGE_READWRITE, FILE_MAP_WRITE, size);
  if (!mapping.start_) return std::nullopt;
  return mapping;
}

Mapping::~Mapping() {
  if (start_) UnmapViewOfFile(start_);
  if (handle_ != kNone) CloseHandle(reinterpret_cast<HANDLE>(handle_));
}

bool Mapping::Lock() {
  OVERLAPPED at{};
  at.OffsetHigh = kLockHigh;
  return LockFileEx(reinterpret_cast<HANDLE>(handle_),
                    LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0, &at);
}

bool Mapping::IsAt(const std::filesystem::path& path) const {
  const Handle file(OpenShared(path, FILE_READ_ATTRIBUTES, OPEN_EXISTING));
  BY_HANDLE_FILE_INFORMATION status;
  return file.IsOpen() && GetFileInformationByHandle(file.get(), &status) &&
         status.dwVolumeSerialNumber == volume_ &&
         Join(status.nFileIndexHigh, status.nFileIndexLow) == file_;
}

std::int64_t CoarseMilliseconds() { return static_cast<std::int64_t>(GetTickCount64()); }

}  // namespace tovalin
