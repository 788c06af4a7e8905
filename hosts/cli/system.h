#pragma once

#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "frame/system/host_file.h"

// What the tool asks of the system that it runs on.

namespace tovalin::tool {

/// What main was called with, in UTF-8 and without the program.
std::vector<std::string> Arguments(int count, char** values);

/// Makes the standard streams take and give bytes as they are, and the console show
/// them as UTF-8.
void UseBytes();

/// The path that a text in UTF-8 writes.
inline std::filesystem::path PathOf(std::string_view utf8) {
  return std::u8string(utf8.begin(), utf8.end());
}

/// While one exists, being asked to end waits to be noticed.
class EndRequest {
 public:
  EndRequest();
  ~EndRequest();
  EndRequest(const EndRequest&) = delete;
  EndRequest& operator=(const EndRequest&) = delete;

  bool CameWithin(long milliseconds) const;
};

}  // namespace tovalin::tool
