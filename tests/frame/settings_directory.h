#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "files/temporary_directory.h"
#include "frame/environment.h"

namespace tovalin {

/// A test with a configuration directory of its own.
class SettingsDirectoryTest : public testing::Test {
 protected:
  std::filesystem::path File(const std::string& name) const {
    return directory_ / "tovalin" / name;
  }

  /// Where the live files of the trace are.
  std::filesystem::path RuntimeDirectory() const { return directory_ / "run"; }

  void WriteFile(const std::string& name, const std::string& bytes) const {
    std::filesystem::create_directories(directory_ / "tovalin");
    here_.Write("tovalin/" + name, bytes);
  }

  std::string ReadFile(const std::string& name) const { return here_.Read("tovalin/" + name); }

  const TemporaryDirectory here_;
  const std::filesystem::path directory_ = here_ / "";

 private:
  const EnvironmentChange configuration_{kConfigurationVariable, directory_.string()};
  const EnvironmentChange runtime_{kRuntimeVariable, RuntimeDirectory().string()};
};

}  // namespace tovalin
