#include <fcntl.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

#include "files/temporary_directory.h"
#include "tovalin/lib_file.h"

namespace tovalin {
namespace {

void Execute(const Text& command, bool wait) { Make<LibFile>()->Ejecutar(command, wait); }

/// A command whose script sees "$@" as its own arguments.
Text Script(const std::string& script) { return FromUtf8("sh -c \"" + script + "\" guion "); }

bool HasChildren() {
  siginfo_t info;
  return waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT) == 0 || errno != ECHILD;
}

/// While one exists, a process whose parent ends becomes a child of this one.
class Adoption {
 public:
  Adoption() { prctl(PR_SET_CHILD_SUBREAPER, 1); }
  ~Adoption() { prctl(PR_SET_CHILD_SUBREAPER, 0); }
  Adoption(const Adoption&) = delete;
  Adoption& operator=(const Adoption&) = delete;

  /// Returns when no process is left that was started.
  void WaitForAll() const {
    while (waitpid(-1, nullptr, 0) > 0 || errno == EINTR) {
    }
  }
};

/// A named pipe, open here for both directions, so that nobody waits to open it.
class Pipe {
 public:
  explicit Pipe(const std::string& path) {
    mkfifo(path.c_str(), 0600);
    descriptor_ = open(path.c_str(), O_RDWR | O_CLOEXEC);
  }
  ~Pipe() { close(descriptor_); }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;

  int Descriptor() const { return descriptor_; }
  void WriteLine() const { EXPECT_EQ(write(descriptor_, "\n", 1), 1); }
  /// Waits until somebody writes.
  void ReadLine() const {
    char line = 0;
    EXPECT_EQ(read(descriptor_, &line, 1), 1);
  }

 private:
  int descriptor_;
};

TEST(Ejecutar, PassesTheWordsAsTheyStand) {
  const TemporaryDirectory here;
  const Adoption adoption;
  for (const bool wait : {true, false}) {
    const std::string out = wait ? "espera" : "sigue";
    Execute(Script("printf '<%s>' \\\"$@\\\" > '" + (here / out) + "'") +
                u"\"a b\" C:\\x\\ \\\"q\\\" $HOME * ñ",
            wait);
    adoption.WaitForAll();
    EXPECT_EQ(here.Read(out), "<a b><C:\\x\\><\"q\"><$HOME><*><ñ>");
  }
}

TEST(Ejecutar, FindsTheProgramUnderItsPath) {
  const TemporaryDirectory here;
  const Adoption adoption;
  here.Write("un guion", "#!/bin/sh\necho hecho > \"$1\"\n");
  std::filesystem::permissions(here / "un guion", std::filesystem::perms::all);
  for (const bool wait : {true, false}) {
    const std::string out = wait ? "a" : "b";
    Execute(u"\"" + here.Host("un guion") + u"\" \"" + FromUtf8(here / out) + u"\"", wait);
    adoption.WaitForAll();
    EXPECT_TRUE(here.Has(out));
  }
}

TEST(Ejecutar, WaitsForTheProgramAlone) {
  const TemporaryDirectory here;
  const pid_t other = fork();
  if (other == 0) {
    pause();
    _exit(0);
  }
  Execute(Script("sleep 0.3; : > '" + (here / "fin") + "'"), true);
  EXPECT_TRUE(here.Has("fin"));
  kill(other, SIGKILL);
  EXPECT_EQ(waitpid(other, nullptr, 0), other);  // still there to be collected
}

// What a handler needs; a signal has no other way to hand it over.
int alarms_descriptor = -1;
const char* start_of_alarms = nullptr;
volatile sig_atomic_t alarms = 0;

TEST(Ejecutar, ASignalDoesNotEndTheWait) {
  const TemporaryDirectory here;
  const Pipe pipe(here / "alarmas");
  const std::string start = here / "inicio";
  start_of_alarms = start.c_str();
  alarms_descriptor = pipe.Descriptor();
  struct sigaction action {};
  struct sigaction before {};
  action.sa_handler = [](int) {  // without SA_RESTART
    if (access(start_of_alarms, F_OK) == 0 && write(alarms_descriptor, "\n", 1) == 1)
      alarms = alarms + 1;
  };
  sigaction(SIGALRM, &action, &before);
  const itimerval often{{0, 20'000}, {0, 20'000}};
  const itimerval never{};
  setitimer(ITIMER_REAL, &often, nullptr);
  Execute(Script(": > '" + start + "'; head -c 3 '" + (here / "alarmas") + "' > /dev/null; : > '" +
                 (here / "fin") + "'"),
          true);
  setitimer(ITIMER_REAL, &never, nullptr);
  sigaction(SIGALRM, &before, nullptr);
  EXPECT_GE(alarms, 3);
  EXPECT_TRUE(here.Has("fin"));
}

TEST(Ejecutar, WaitsAlsoWhenTheHostIgnoresItsChildren) {
  const TemporaryDirectory here;
  const Adoption adoption;
  const auto before = signal(SIGCHLD, SIG_IGN);
  Execute(Script("sleep 0.2; : > '" + (here / "fin") + "'"), true);
  EXPECT_TRUE(here.Has("fin"));
  Execute(Script(": > '" + (here / "suelto") + "'"), false);
  adoption.WaitForAll();
  EXPECT_TRUE(here.Has("suelto"));
  signal(SIGCHLD, before);
}

// The program waits for what its host does after the call.
TEST(Ejecutar, WithoutWaitingLeavesNoChild) {
  const TemporaryDirectory here;
  const Pipe go_on(here / "sigue");
  const Pipe end(here / "fin");
  Execute(Script("read x < '" + (here / "sigue") + "'; echo > '" + (here / "fin") + "'"), false);
  EXPECT_FALSE(HasChildren());
  go_on.WriteLine();
  end.ReadLine();
}

TEST(Ejecutar, TheProgramOutlivesTheHostAndItsTerminal) {
  const TemporaryDirectory here;
  const Adoption adoption;
  const Pipe start(here / "inicio");
  const Pipe go_on(here / "sigue");
  const pid_t host = fork();
  if (host == 0) {
    setpgid(0, 0);
    Execute(Script("echo > '" + (here / "inicio") + "'; read x < '" + (here / "sigue") +
                   "'; : > '" + (here / "fin") + "'"),
            false);
    pause();
    _exit(0);
  }
  start.ReadLine();
  kill(-host, SIGHUP);
  kill(-host, SIGKILL);
  EXPECT_EQ(waitpid(host, nullptr, 0), host);
  go_on.WriteLine();
  adoption.WaitForAll();
  EXPECT_TRUE(here.Has("fin"));
}

TEST(Ejecutar, TheProgramHasTheSignalsOfTheHost) {
  const TemporaryDirectory here;
  const Adoption adoption;
  sigset_t one;
  sigset_t before;
  sigemptyset(&one);
  sigaddset(&one, SIGUSR1);
  pthread_sigmask(SIG_SETMASK, &one, &before);
  for (const bool wait : {true, false}) {
    const std::string out = wait ? "espera" : "sigue";
    Execute(u"cp /proc/self/status \"" + FromUtf8(here / out) + u"\"", wait);
    adoption.WaitForAll();
    EXPECT_NE(here.Read(out).find("SigBlk:\t0000000000000200\n"), std::string::npos);
  }
  sigset_t after;
  pthread_sigmask(SIG_SETMASK, &before, &after);
  EXPECT_TRUE(sigismember(&after, SIGUSR1));
  EXPECT_FALSE(sigismember(&after, SIGTERM));
}

int forks = 0;

// A fork copies what describes the host's memory: a quarter of a second for 1.5 GB.
TEST(Ejecutar, StartsWithoutAFork) {
  const Adoption adoption;
  ASSERT_EQ(pthread_atfork([] { ++forks; }, nullptr, nullptr), 0);
  for (const bool wait : {true, false}) Execute(u"true", wait);
  adoption.WaitForAll();
  EXPECT_EQ(forks, 0);
}

TEST(Ejecutar, EndsQuietlyWhenItCannotStart) {
  const TemporaryDirectory here;
  const Adoption adoption;
  here.Write("sin_permiso", "#!/bin/sh\n");
  here.Write("sin_cabecera", ": > '" + (here / "huella") + "'\n");
  std::filesystem::permissions(here / "sin_cabecera", std::filesystem::perms::all);
  const Text with_nul = Script(": > '" + (here / "huella") + "'") + u'\0' + u"x";
  for (const bool wait : {true, false})
    for (const Text& command :
         {Text(), Text(u"  "), Text(u"\"\""), Text(u"no_hay_tal_programa x"), here.Host("nada"),
          here.Host(""), here.Host("sin_permiso"), here.Host("sin_cabecera"), with_nul})
      EXPECT_NO_THROW(Execute(command, wait)) << ToUtf8(command);
  EXPECT_FALSE(HasChildren());
  EXPECT_FALSE(here.Has("huella"));
}

}  // namespace
}  // namespace tovalin
