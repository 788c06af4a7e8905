#include <windows.h>

#include <algorithm>

#include "frame/mapping.h"

namespace tovalin {
namespace {

// A file mapped into memory cannot be replaced by another on Windows, so the words
// are read and written through the file itself; the system keeps one read or write
// apart from the others. The steps of CompareExchange hold a lock on a byte far
// behind the end of the file meanwhile.
constexpr DWORD kLockHigh = 0x40000000;

OVERLAPPED At(std::size_t place) {
  OVERLAPPED at{};
  at.Offset = static_cast<DWORD>(place & 0xFFFFFFFF);
  at.OffsetHigh = static_cast<DWORD>(std::uint64_t{place} >> 32);
  return at;
}

class ByteLock {
 public:
  explicit ByteLock(HANDLE file) : file_(file) {
    at_.OffsetHigh = kLockHigh;
    held_ = LockFileEx(file_, LOCKFILE_EXCLUSIVE_LOCK, 0, 1, 0, &at_);
  }
  ByteLock(const ByteLock&) = delete;
  ByteLock& operator=(const ByteLock&) = delete;
  ~ByteLock() {
    if (held_) UnlockFileEx(file_, 0, 1, 0, &at_);
  }

 private:
  HANDLE file_;
  OVERLAPPED at_{};
  bool held_ = false;
};

std::uint64_t Join(DWORD high, DWORD low) { return std::uint64_t{high} << 32 | low; }

HANDLE OpenShared(const std::filesystem::path& path, DWORD access) {
  constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  return CreateFileW(path.c_str(), access, kShareAll, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL,
                     nullptr);
}

}  // namespace

std::optional<Mapping> Mapping::Open(const std::filesystem::path& path, Access access) {
  const bool write = access == Access::kWrite;
  const HANDLE file = OpenShared(path, write ? GENERIC_READ | GENERIC_WRITE : GENERIC_READ);
  if (file == INVALID_HANDLE_VALUE) return std::nullopt;
  Mapping mapping(file, 0, 0, 0);
  BY_HANDLE_FILE_INFORMATION information;
  if (!GetFileInformationByHandle(file, &information)) return std::nullopt;
  mapping.size_ = Join(information.nFileSizeHigh, information.nFileSizeLow);
  mapping.volume_ = information.dwVolumeSerialNumber;
  mapping.file_ = Join(information.nFileIndexHigh, information.nFileIndexLow);
  if (mapping.size_ == 0) return std::nullopt;
  return mapping;
}

Mapping::~Mapping() {
  if (handle_) CloseHandle(handle_);
}

bool Mapping::IsAt(const std::filesystem::path& path) const {
  const HANDLE file = OpenShared(path, FILE_READ_ATTRIBUTES);
  if (file == INVALID_HANDLE_VALUE) return false;
  BY_HANDLE_FILE_INFORMATION information;
  const bool known = GetFileInformationByHandle(file, &information);
  CloseHandle(file);
  return known && information.dwVolumeSerialNumber == volume_ &&
         Join(information.nFileIndexHigh, information.nFileIndexLow) == file_;
}

std::uint64_t Mapping::Load(std::size_t place) const {
  std::uint64_t word = 0;
  Read(place, reinterpret_cast<char*>(&word), sizeof word);
  return word;
}

void Mapping::Store(std::size_t place, std::uint64_t word) {
  Write(place, std::string_view(reinterpret_cast<const char*>(&word), sizeof word));
}

bool Mapping::CompareExchange(std::size_t place, std::uint64_t expected, std::uint64_t desired) {
  const ByteLock lock(handle_);
  if (Load(place) != expected) return false;
  Store(place, desired);
  return Load(place) == desired;
}

void Mapping::Read(std::size_t place, char* bytes, std::size_t count) const {
  // What cannot be read counts as zeros, which no word of a live file is.
  std::fill_n(bytes, count, '\0');
  OVERLAPPED at = At(place);
  DWORD done = 0;
  ReadFile(handle_, bytes, static_cast<DWORD>(count), &done, &at);
}

void Mapping::Write(std::size_t place, std::string_view bytes) {
  OVERLAPPED at = At(place);
  DWORD done = 0;
  WriteFile(handle_, bytes.data(), static_cast<DWORD>(bytes.size()), &done, &at);
}

std::int64_t CoarseMilliseconds() { return static_cast<std::int64_t>(GetTickCount64()); }

}  // namespace tovalin
