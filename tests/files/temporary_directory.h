#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

#include "tovalin/text.h"

namespace tovalin {

/// A directory for one test, gone with it.
class TemporaryDirectory {
 public:
  TemporaryDirectory() {
    std::random_device random;
    do {
      root_ = std::filesystem::temp_directory_path() / ("tovalin_" + std::to_string(random()));
    } while (!std::filesystem::create_directory(root_));
  }
  ~TemporaryDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(root_, ignored);
  }

  std::string operator/(const std::string& name) const { return (root_ / name).string(); }

  /// The path as a host writes it, with "\".
  Text Host(const std::string& name) const {
    Text path = FromUtf8(*this / name);
    for (char16_t& c : path)
      if (c == u'/') c = u'\\';
    return path;
  }

  void Write(const std::string& name, const std::string& bytes) const {
    std::ofstream(*this / name, std::ios::binary) << bytes;
  }

  std::string Read(const std::string& name) const {
    std::ifstream file(*this / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  bool Has(const std::string& name) const { return std::filesystem::exists(*this / name); }

 private:
  std::filesystem::path root_;
};

}  // namespace tovalin
