#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <cstring>
#include <memory>

#include "hosts/cli/system.h"
#include "tovalin/text.h"

namespace tovalin::tool {
namespace {

struct LocalFreer {
  void operator()(wchar_t** memory) const { LocalFree(memory); }
};

// The console gets its code page back.
class Utf8Console {
 public:
  Utf8Console() : before_(GetConsoleOutputCP()) { SetConsoleOutputCP(CP_UTF8); }
  Utf8Console(const Utf8Console&) = delete;
  Utf8Console& operator=(const Utf8Console&) = delete;
  ~Utf8Console() {
    if (before_ != 0) SetConsoleOutputCP(before_);
  }

 private:
  UINT before_;  // 0 without a console
};

// Set when this process is asked to end: the system calls a function without context.
HANDLE end_event = nullptr;

BOOL WINAPI OnEnd(DWORD) { return SetEvent(end_event); }

}  // namespace

// main has them in the code page of the system, and with wildcards replaced.
std::vector<std::string> Arguments(int, char**) {
  int count = 0;
  const std::unique_ptr<wchar_t*, LocalFreer> values(CommandLineToArgvW(GetCommandLineW(), &count));
  std::vector<std::string> arguments;
  for (int i = 1; i < count; ++i) {
    const wchar_t* const value = values.get()[i];
    arguments.push_back(ToUtf8(Text(value, value + std::wcslen(value))));
  }
  return arguments;
}

void UseBytes() {
  for (std::FILE* stream : {stdin, stdout, stderr}) _setmode(_fileno(stream), _O_BINARY);
  static const Utf8Console console;
}

EndRequest::EndRequest() {
  end_event = CreateEventW(nullptr, true, false, nullptr);
  SetConsoleCtrlHandler(&OnEnd, true);
}

EndRequest::~EndRequest() {
  SetConsoleCtrlHandler(&OnEnd, false);
  CloseHandle(end_event);
}

bool EndRequest::CameWithin(long milliseconds) const {
  return WaitForSingleObject(end_event, static_cast<DWORD>(milliseconds)) == WAIT_OBJECT_0;
}

}  // namespace tovalin::tool
