#pragma once

#include <cstdlib>
#include <string>

namespace tovalin {

/// Sets a variable of this process's environment; an empty text removes it.
inline void SetEnvironment(const std::string& name, const std::string& value) {
#if defined(_WIN32)
  _putenv_s(name.c_str(), value.c_str());
#else
  if (value.empty())
    unsetenv(name.c_str());
  else
    setenv(name.c_str(), value.c_str(), 1);
#endif
}

#if defined(_WIN32)
inline constexpr const char* kConfigurationVariable = "APPDATA";
#else
inline constexpr const char* kConfigurationVariable = "XDG_CONFIG_HOME";
#endif

}  // namespace tovalin
