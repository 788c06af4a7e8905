#include <windows.h>

#include <string>

#include "files/process.h"

namespace tovalin {
namespace {

enum class Handles { Keep, Inherit };

/// The process's handle, or null. The system splits the command line itself.
HANDLE Start(TextView command_line, STARTUPINFOW& startup, Handles handles) {
  if (command_line.find(u'\0') != TextView::npos) return nullptr;  // would run another command
  std::wstring writable(command_line.begin(), command_line.end());
  PROCESS_INFORMATION process{};
  if (!CreateProcessW(nullptr, writable.data(), nullptr, nullptr, handles == Handles::Inherit,
                      NORMAL_PRIORITY_CLASS, nullptr, nullptr, &startup, &process))
    return nullptr;
  CloseHandle(process.hThread);
  return process.hProcess;
}

}  // namespace

void RunAndWait(TextView command_line) {
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  const HANDLE process = Start(command_line, startup, Handles::Inherit);
  if (!process) return;
  WaitForSingleObject(process, INFINITE);
  CloseHandle(process);
}

void Launch(TextView command_line) {
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  startup.dwFlags = STARTF_USESHOWWINDOW;
  startup.wShowWindow = SW_SHOWNORMAL;
  if (const HANDLE process = Start(command_line, startup, Handles::Keep)) CloseHandle(process);
}

}  // namespace tovalin
