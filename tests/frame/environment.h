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

// What names the directories of the settings and of the live files of the trace.
#if defined(_WIN32)
inline constexpr const char* kConfigurationVariable = "APPDATA";
inline constexpr const char* kRuntimeVariable = "LOCALAPPDATA";
#else
inline constexpr const char* kConfigurationVariable = "XDG_CONFIG_HOME";
inline constexpr const char* kRuntimeVariable = "XDG_RUNTIME_DIR";
#endif

/// Another value for a variable of the environment, for as long as one exists.
class EnvironmentChange {
 public:
  EnvironmentChange(const std::string& name, const std::string& value) : name_(name) {
    if (const char* before = std::getenv(name.c_str())) before_ = before;
    SetEnvironment(name, value);
  }
  EnvironmentChange(const EnvironmentChange&) = delete;
  EnvironmentChange& operator=(const EnvironmentChange&) = delete;
  ~EnvironmentChange() { SetEnvironment(name_, before_); }

 private:
  std::string name_;
  std::string before_;
};

}  // namespace tovalin
