#include <gtest/gtest.h>
#include <signal.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <thread>

#include "files/temporary_directory.h"
#include "tovalin/lib_file.h"

namespace tovalin {
namespace {

using namespace std::chrono_literals;
using Moment = std::chrono::steady_clock;

void Execute(const Text& command, bool wait) { Make<LibFile>()->Ejecutar(command, wait); }

/// A command whose script sees "$@" as its own arguments.
Text Script(const std::string& script) { return FromUtf8("sh -c \"" + script + "\" guion "); }

bool Appears(const TemporaryDirectory& here, const std::string& name) {
  for (int i = 0; i < 500 && !here.Has(name); ++i) std::this_thread::sleep_for(10ms);
  return here.Has(name);
}

bool HasChildren() {
  siginfo_t info;
  return waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT) == 0 || errno != ECHILD;
}

TEST(Ejecutar, PassesTheWordsAsTheyStand) {
  const TemporaryDirectory here;
  for (const bool wait : {true, false}) {
    const std::string name = wait ? "espera" : "sigue";
    const std::string out = here / name;
    Execute(FromUtf8("sh -c \"printf '<%s>' \\\"$@\\\" > '" + out + "_' && mv '" + out + "_' '" +
                     out + "'\" guion \"a b\" C:\\x\\ \\\"q\\\" $HOME * ñ"),
            wait);
    ASSERT_TRUE(Appears(here, name));
    EXPECT_EQ(here.Read(name), "<a b><C:\\x\\><\"q\"><$HOME><*><ñ>");
  }
}

TEST(Ejecutar, FindsTheProgramUnderItsPath) {
  const TemporaryDirectory here;
  here.Write("un guion", "#!/bin/sh\necho hecho > \"$1\"\n");
  std::filesystem::permissions(here / "un guion", std::filesystem::perms::all);
  for (const bool wait : {true, false}) {
    const std::string out = wait ? "a" : "b";
    Execute(u"\"" + here.Host("un guion") + u"\" \"" + FromUtf8(here / out) + u"\"", wait);
    EXPECT_TRUE(Appears(here, out));
  }
}

TEST(Ejecutar, WaitsForTheProgramAlone) {
  const TemporaryDirectory here;
  const pid_t other = fork();
  if (other == 0) {
    sleep(30);
    _exit(0);
  }
  const auto start = Moment::now();
  Execute(Script("sleep 0.3; : > '" + (here / "fin") + "'"), true);
  EXPECT_TRUE(here.Has("fin"));
  EXPECT_LT(Moment::now() - start, 10s);
  kill(other, SIGKILL);
  EXPECT_EQ(waitpid(other, nullptr, 0), other);  // still there to be collected
}

volatile sig_atomic_t alarms = 0;

TEST(Ejecutar, ASignalDoesNotEndTheWait) {
  const TemporaryDirectory here;
  struct sigaction action {};
  struct sigaction before {};
  action.sa_handler = [](int) { alarms = alarms + 1; };  // without SA_RESTART
  sigaction(SIGALRM, &action, &before);
  const itimerval often{{0, 20'000}, {0, 20'000}};
  const itimerval never{};
  setitimer(ITIMER_REAL, &often, nullptr);
  Execute(Script("sleep 0.3; : > '" + (here / "fin") + "'"), true);
  setitimer(ITIMER_REAL, &never, nullptr);
  sigaction(SIGALRM, &before, nullptr);
  EXPECT_GT(alarms, 2);
  EXPECT_TRUE(here.Has("fin"));
}

TEST(Ejecutar, WaitsAlsoWhenTheHostIgnoresItsChildren) {
  const TemporaryDirectory here;
  const auto before = signal(SIGCHLD, SIG_IGN);
  Execute(Script("sleep 0.2; : > '" + (here / "fin") + "'"), true);
  EXPECT_TRUE(here.Has("fin"));
  Execute(Script(": > '" + (here / "suelto") + "'"), false);
  EXPECT_TRUE(Appears(here, "suelto"));
  signal(SIGCHLD, before);
}

TEST(Ejecutar, WithoutWaitingLeavesNoChild) {
  const TemporaryDirectory here;
  const auto start = Moment::now();
  Execute(Script("sleep 1; : > '" + (here / "fin") + "'"), false);
  EXPECT_LT(Moment::now() - start, 900ms);
  EXPECT_FALSE(here.Has("fin"));
  EXPECT_FALSE(HasChildren());
  EXPECT_TRUE(Appears(here, "fin"));
}

TEST(Ejecutar, TheProgramOutlivesTheHostAndItsTerminal) {
  const TemporaryDirectory here;
  const pid_t host = fork();
  if (host == 0) {
    setpgid(0, 0);
    Execute(Script(": > '" + (here / "inicio") + "'; sleep 0.3; : > '" + (here / "fin") + "'"),
            false);
    pause();
    _exit(0);
  }
  ASSERT_TRUE(Appears(here, "inicio"));
  kill(-host, SIGHUP);
  kill(-host, SIGKILL);
  waitpid(host, nullptr, 0);
  EXPECT_TRUE(Appears(here, "fin"));
}

TEST(Ejecutar, EndsQuietlyWhenItCannotStart) {
  const TemporaryDirectory here;
  here.Write("sin_permiso", "#!/bin/sh\n");
  here.Write("sin_cabecera", ": > '" + (here / "huella") + "'\n");
  std::filesystem::permissions(here / "sin_cabecera", std::filesystem::perms::all);
  const Text with_nul = Script(": > '" + (here / "huella") + "'") + u'\0' + u"x";
  for (const bool wait : {true, false})
    for (const Text& command :
         {Text(), Text(u"  "), Text(u"\"\""), Text(u"no_hay_tal_programa x"), here.Host("nada"),
          here.Host(""), here.Host("sin_permiso"), here.Host("sin_cabecera"), with_nul})
      EXPECT_NO_THROW(Execute(command, wait)) << ToUtf8(command);
  std::this_thread::sleep_for(100ms);
  EXPECT_FALSE(here.Has("huella"));
  EXPECT_FALSE(HasChildren());
}

}  // namespace
}  // namespace tovalin
