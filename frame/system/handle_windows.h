#pragma once

#include <windows.h>

#include <filesystem>
#include <utility>

namespace tovalin {

/// A handle of the system, closed at the end of the scope.
class Handle {
 public:
  explicit Handle(HANDLE handle) : handle_(handle) {}
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  ~Handle() {
    if (IsOpen()) CloseHandle(handle_);
  }

  HANDLE get() const { return handle_; }
  bool IsOpen() const { return handle_ != nullptr && handle_ != INVALID_HANDLE_VALUE; }
  /// Leaves the handle open, to be closed by the caller.
  HANDLE Release() { return std::exchange(handle_, INVALID_HANDLE_VALUE); }

 private:
  HANDLE handle_;
};

/// Opens a file that others may read, write, replace and delete meanwhile.
inline HANDLE OpenShared(const std::filesystem::path& path, DWORD access, DWORD disposition,
                         DWORD attributes = FILE_ATTRIBUTE_NORMAL) {
  constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  return CreateFileW(path.c_str(), access, kShareAll, nullptr, disposition, attributes, nullptr);
}

}  // namespace tovalin
