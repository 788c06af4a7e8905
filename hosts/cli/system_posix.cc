#include <signal.h>

#include "hosts/cli/system.h"

namespace tovalin::tool {
namespace {

sigset_t EndSignals() {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGINT);
  sigaddset(&signals, SIGTERM);
  return signals;
}

}  // namespace

std::vector<std::string> Arguments(int count, char** values) {
  return {values + 1, values + count};
}

void UseBytes() {}

EndRequest::EndRequest() {
  const sigset_t signals = EndSignals();
  sigprocmask(SIG_BLOCK, &signals, nullptr);
}

EndRequest::~EndRequest() {
  const sigset_t signals = EndSignals();
  sigprocmask(SIG_UNBLOCK, &signals, nullptr);
}

bool EndRequest::CameWithin(long milliseconds) const {
  const sigset_t signals = EndSignals();
  const timespec time{0, milliseconds * 1'000'000};
  return sigtimedwait(&signals, nullptr, &time) > 0;
}

}  // namespace tovalin::tool
