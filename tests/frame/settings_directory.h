#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace tovalin {

/// A test with a configuration directory of its own.
class SettingsDirectoryTest : public testing::Test {
 protected:
  void SetUp() override {
    std::string name = (std::filesystem::temp_directory_path() / "tovalin_XXXXXX").string();
    ASSERT_NE(mkdtemp(name.data()), nullptr);
    directory_ = name;
    setenv("XDG_CONFIG_HOME", name.c_str(), 1);
    setenv("XDG_RUNTIME_DIR", RuntimeDirectory().c_str(), 1);
  }

  void TearDown() override {
    unsetenv("XDG_CONFIG_HOME");
    unsetenv("XDG_RUNTIME_DIR");
    std::filesystem::remove_all(directory_);
  }

  std::filesystem::path File(const std::string& name) const {
    return directory_ / "tovalin" / name;
  }

  /// Where the live files of the trace are.
  std::filesystem::path RuntimeDirectory() const { return directory_ / "run"; }

  void WriteFile(const std::string& name, const std::string& bytes) const {
    std::filesystem::create_directories(directory_ / "tovalin");
    std::ofstream(File(name), std::ios::binary) << bytes;
  }

  std::string ReadFile(const std::string& name) const {
    std::ifstream file(File(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  std::filesystem::path directory_;
};

/// Runs `work` in a child process and answers its process number.
template <class Work>
pid_t Spawn(Work work) {
  const pid_t child = fork();
  if (child != 0) return child;
  _exit(work());
}

/// The exit code of a child, or -1 when a signal ended it.
inline int WaitFor(pid_t child) {
  int status = 0;
  while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace tovalin
