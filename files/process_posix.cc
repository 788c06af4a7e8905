#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "files/command_line.h"
#include "files/process.h"
#include "frame/host_file.h"

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

constexpr std::string_view kDefaultPath = "/usr/local/bin:/usr/bin:/bin";

/// Where a program may be: under its own path, or in the directories of PATH.
std::vector<std::string> Candidates(const std::string& program) {
  if (program.empty() || program.find('/') != std::string::npos) return {program};
  const char* path = std::getenv("PATH");
  std::string_view rest = path ? std::string_view(path) : kDefaultPath;
  std::vector<std::string> candidates;
  for (bool more = true; more;) {
    const std::size_t end = rest.find(':');
    std::string directory(rest.substr(0, end));
    candidates.push_back(directory.empty() ? program : directory + "/" + program);
    more = end != std::string_view::npos;
    if (more) rest.remove_prefix(end + 1);
  }
  return candidates;
}

/// A signal does not end the wait. ECHILD does: the host collected the process.
void WaitFor(pid_t process) {
  while (waitpid(process, nullptr, 0) < 0 && errno == EINTR) {
  }
}

}  // namespace

void RunAndWait(TextView command_line) {
  const Command command(command_line);
  pid_t process = 0;
  if (!command || posix_spawnp(&process, command.Program().c_str(), nullptr, nullptr,
                               command.Arguments(), environ) != 0)
    return;
  WaitFor(process);
}

// The process is the child of a short-lived one, so that it belongs to the system
// when that one ends, and of a session of its own, so that a closing terminal
// leaves it alone. Between fork and execve only calls that are safe there: another
// thread of the host may hold any lock.
void Launch(TextView command_line) {
  const Command command(command_line);
  if (!command) return;
  const std::vector<std::string> candidates = Candidates(command.Program());
  const pid_t middle = fork();
  if (middle > 0) WaitFor(middle);
  if (middle != 0) return;

  setsid();
  if (fork() == 0)
    for (const std::string& candidate : candidates)
      execve(candidate.c_str(), command.Arguments(), environ);
  _exit(0);
}

}  // namespace tovalin
