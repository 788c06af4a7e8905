#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "files/temporary_directory.h"
#include "frame/environment.h"

namespace tovalin {

/// A test with a configuration directory of its own.
class SettingsDirectoryTest : public testing::Test {
 protected:
  void SetUp() override {
    if (const char* before = std::getenv(kConfigurationVariable)) before_ = before;
    SetEnvironment(kConfigurationVariable, directory_.string());
  }

  void TearDown() override { SetEnvironment(kConfigurationVariable, before_); }

  std::filesystem::path File(const std::string& name) const {
    return directory_ / "tovalin" / name;
  }

  void WriteFile(const std::string& name, const std::string& bytes) const {
    std::filesystem::create_directories(directory_ / "tovalin");
    here_.Write("tovalin/" + name, bytes);
  }

  std::string ReadFile(const std::string& name) const { return here_.Read("tovalin/" + name); }

  const TemporaryDirectory here_;
  const std::filesystem::path directory_ = here_ / "";
  std::string before_;
};

}  // namespace tovalin
