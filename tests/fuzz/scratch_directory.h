#pragma once

#include <stdlib.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

namespace tovalin::fuzz {

/// A directory of this process, in memory where the system has such, that takes what
/// a run writes, the user's settings included. Gone when the process ends in order.
class ScratchDirectory {
 public:
  ScratchDirectory() {
    const char* parent = access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp";
    std::string name = std::string(parent) + "/tovalin-fuzz-XXXXXX";
    if (!mkdtemp(name.data())) std::abort();
    path_ = name;
    for (const char* variable : {"XDG_CONFIG_HOME", "XDG_STATE_HOME", "XDG_RUNTIME_DIR"})
      setenv(variable, name.c_str(), 1);
  }
  ~ScratchDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  ScratchDirectory(const ScratchDirectory&) = delete;
  ScratchDirectory& operator=(const ScratchDirectory&) = delete;

  std::filesystem::path File(std::string_view name) const { return path_ / name; }

  std::string Write(std::string_view name, std::string_view bytes) const {
    const std::filesystem::path file = File(name);
    std::ofstream(file, std::ios::binary).write(bytes.data(), std::ssize(bytes));
    return file;
  }
  std::string Read(std::string_view name) const {
    std::ifstream file(File(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

 private:
  std::filesystem::path path_;
};

}  // namespace tovalin::fuzz
