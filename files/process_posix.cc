#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <vector>

#include "files/command_line.h"
#include "files/process.h"
#include "frame/system/host_file.h"

extern char** environ;

namespace tovalin {
namespace {

/// A command ready for the system: everything is made before a process is.
class Command {
 public:
  explicit Command(TextView command_line) {
    if (command_line.find(u'\0') != TextView::npos) return;  // would run another command
    for (const Text& word : SplitCommandLine(command_line))
      words_.push_back(words_.empty() ? ToNativePath(word) : ToUtf8(word));
    if (words_.empty()) return;
    for (std::string& word : words_) arguments_.push_back(word.data());
    arguments_.push_back(nullptr);
  }

  explicit operator bool() const { return !arguments_.empty(); }
  const std::string& Program() const { return words_[0]; }
  char* const* Arguments() const { return arguments_.data(); }

 private:
  std::vector<std::string> words_;
  std::vector<char*> arguments_;
};

/// A signal does not end the wait. ECHILD does: the host collected the process.
void WaitFor(pid_t process) {
  while (waitpid(process, nullptr, 0) < 0 && errno == EINTR) {
  }
}

/// The process that runs the command, or -1. It starts with the signals blocked that
/// `blocked` names, or with those of this thread.
pid_t Spawn(const Command& command, const sigset_t* blocked = nullptr) {
  posix_spawnattr_t attributes;
  if (posix_spawnattr_init(&attributes) != 0) return -1;
  if (blocked) {
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
    posix_spawnattr_setsigmask(&attributes, blocked);
  }
  pid_t process = -1;
  const int error = posix_spawnp(&process, command.Program().c_str(), nullptr, &attributes,
                                 command.Arguments(), environ);
  posix_spawnattr_destroy(&attributes);
  return error == 0 ? process : -1;
}

/// No signal arrives while one exists.
class SignalsBlocked {
 public:
  SignalsBlocked() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before_);
  }
  SignalsBlocked(const SignalsBlocked&) = delete;
  SignalsBlocked& operator=(const SignalsBlocked&) = delete;
  ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
  const sigset_t& Before() const { return before_; }

 private:
  sigset_t before_;
};

}  // namespace

void RunAndWait(TextView command_line) {
  const Command command(command_line);
  if (!command) return;
  if (const pid_t process = Spawn(command); process > 0) WaitFor(process);
}

// The process is the child of a short-lived one, so that it belongs to the system
// when that one ends, and of a session of its own, so that a closing terminal
// leaves it alone. The short-lived one uses the memory of this one, whose thread stands
// still meanwhile: a copy would take long in a large host.
void Launch(TextView command_line) {
  const Command command(command_line);
  if (!command) return;
  const SignalsBlocked signals;  // a handler of the host would run in both
  const pid_t middle = vfork();
  if (middle == 0) {
    setsid();
    Spawn(command, &signals.Before());
    _exit(0);
  }
  if (middle > 0) WaitFor(middle);
}

}  // namespace tovalin
