#pragma once

#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

namespace tovalin {

/// Runs `work` in a child process and answers its process number.
template <class Work>
pid_t Spawn(Work work) {
  const pid_t child = fork();
  if (child != 0) return child;
  _exit(work());
}

/// The exit code of a child, or -1 when a signal ended it.
inline int WaitFor(pid_t child) {
  int status = 0;
  while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace tovalin
