#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "frame/child_process.h"
#include "frame/settings/live_trace.h"
#include "frame/settings/settings_file.h"
#include "frame/settings_directory.h"

namespace tovalin {
namespace {

LiveChanges ChangesOf(TextView text) {
  LiveChanges changes;
  for (auto& change : changes) change = {text};
  return changes;
}

bool Put(TextView text) { return LiveTrace().Put(ChangesOf(text), 0); }

std::string Shown() {
  const TraceTexts texts = ReadTrace();
  for (const auto& text : texts)
    if (!text || *text != texts[0]) return "a mix";
  return ToUtf8(*texts[0]);
}

/// A process that writes numbers from `start` on, higher than all before it, until it is
/// killed at the end of the scope at the latest.
class WritingProcess {
 public:
  explicit WritingProcess(unsigned start)
      : process_(Spawn([start] {
          LiveTrace trace;
          for (unsigned number = start;; ++number) {
            Text text = FromUtf8(std::to_string(number));
            text.resize(text.size() + number * 7919 % 20, u'.');
            trace.Put(ChangesOf(text), 0);
          }
          return 0;
        })) {
    while (std::strtoul(Shown().c_str(), nullptr, 10) < start) std::this_thread::yield();
  }
  WritingProcess(const WritingProcess&) = delete;
  WritingProcess& operator=(const WritingProcess&) = delete;
  ~WritingProcess() {
    kill(process_, SIGKILL);
    WaitFor(process_);
  }

 private:
  pid_t process_;
};

class LiveTraceProcessTest : public SettingsDirectoryTest {
 protected:
  std::vector<std::filesystem::path> LiveFiles() const {
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(RuntimeDirectory() / "tovalin"))
      files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    return files;
  }
};

TEST_F(LiveTraceProcessTest, AKilledProcessLeavesItsLastTexts) {
  std::string last;
  for (unsigned round = 0; round < 40; ++round) {
    {
      const WritingProcess writer(1'000'000 * (round + 1));
      std::this_thread::sleep_for(std::chrono::microseconds(37 * round));
    }
    EXPECT_NE(Shown(), "a mix");
    EXPECT_NE(Shown(), last);
    last = Shown();
  }
  EXPECT_EQ(LiveFiles().size(), 2u) << "each took over the file of the one before";
}

TEST_F(LiveTraceProcessTest, EveryProcessHasAFileOfItsOwn) {
  ASSERT_EQ(WaitFor(Spawn([] { return Put(u"uno") ? 0 : 1; })), 0);
  EXPECT_EQ(Shown(), "uno");
  ASSERT_EQ(WaitFor(Spawn([] { return Put(u"dos") ? 0 : 1; })), 0);
  EXPECT_EQ(Shown(), "dos");
  EXPECT_EQ(LiveFiles().size(), 2u);
  {
    const WritingProcess one(1);
    const WritingProcess two(1'000'000);
    EXPECT_EQ(LiveFiles().size(), 3u);
    for (int i = 0; i < 300; ++i) ASSERT_NE(Shown(), "a mix");
  }
  ASSERT_EQ(WaitFor(Spawn([] { return Put(u"tres") ? 0 : 1; })), 0);
  EXPECT_EQ(Shown(), "tres");
  EXPECT_EQ(LiveFiles().size(), 3u);
  for (const auto& file : LiveFiles()) {
    struct stat status {};
    ASSERT_EQ(stat(file.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0400u) << file;
    EXPECT_LE(status.st_size, 100'000) << file;
    EXPECT_GE(status.st_blocks * 512, status.st_size) << "the room on the disk is taken";
  }
}

// A process that is forked goes on in its parent's file.
TEST_F(LiveTraceProcessTest, AForkedProcessIsTheLatestToo) {
  LiveTrace trace;
  const auto put = [&trace](TextView text) { return trace.Put(ChangesOf(text), 0); };
  ASSERT_TRUE(put(u"padre"));
  ASSERT_EQ(WaitFor(Spawn([&] { return put(u"hijo") ? 0 : 1; })), 0);
  EXPECT_EQ(Shown(), "hijo");
  ASSERT_TRUE(put(u"padre"));
  EXPECT_EQ(Shown(), "padre");
}

TEST_F(LiveTraceProcessTest, AFullDiskFailsNoEvaluation) {
  ASSERT_TRUE(Put(u"antes"));
  const pid_t child = Spawn([&] {
    signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{100'000, 100'000};
    setrlimit(RLIMIT_FSIZE, &limit);
    LiveChanges changes = ChangesOf(u"x");
    const Text large(1 << 20, u'L');
    changes[kTraceExpression] = {large};
    return LiveTrace().Put(changes, 0) ? 1 : 0;
  });
  EXPECT_EQ(WaitFor(child), 0);
  const TraceTexts texts = ReadTrace();
  EXPECT_EQ(texts[kTraceExpression], u"");
  EXPECT_EQ(texts[kTraceResult], u"x");
  EXPECT_FALSE(std::filesystem::exists(File("Evaluador.ini.tmp")));
  EXPECT_TRUE(Put(u"después"));
  EXPECT_EQ(Shown(), "después");
}

TEST_F(LiveTraceProcessTest, AFileThatCannotBeWrittenCostsLittle) {
  // In place of every directory where the file could be.
  std::ofstream(RuntimeDirectory()) << "x";
  std::ofstream(directory_ / "state") << "x";
  std::ofstream(directory_ / "tovalin") << "x";
  setenv("XDG_STATE_HOME", (directory_ / "state").c_str(), 1);
  constexpr std::int64_t kNeverAgain = std::int64_t{1} << 40;
  LiveTrace trace(kNeverAgain);
  for (unsigned i = 0; i < 1000; ++i) ASSERT_FALSE(trace.Put(ChangesOf(u"x"), 0));
  EXPECT_EQ(trace.Looks(), 1u);
  LiveTrace searching(0);
  ASSERT_FALSE(searching.Put(ChangesOf(u"x"), 0));
  std::filesystem::remove(directory_ / "tovalin");
  EXPECT_TRUE(searching.Put(ChangesOf(u"x"), 0));
  EXPECT_EQ(searching.Looks(), 2u);
  EXPECT_EQ(Shown(), "x");
  unsetenv("XDG_STATE_HOME");
}

// As those of a run at night, without a session, and of the person who looks at them.
TEST_F(LiveTraceProcessTest, PlacesOfOtherSessionsCountToo) {
  setenv("XDG_STATE_HOME", (directory_ / "state").c_str(), 1);
  const std::filesystem::path runtime = RuntimeDirectory();
  LiveTrace trace(0);
  for (const bool has_session : {false, true, false, true}) {
    if (!has_session) unsetenv("XDG_RUNTIME_DIR");
    const Text text = has_session ? u"sesión" : u"noche";
    EXPECT_TRUE(trace.Put(ChangesOf(text), 0));
    setenv("XDG_RUNTIME_DIR", runtime.c_str(), 1);
    EXPECT_EQ(Shown(), ToUtf8(text));
  }
  EXPECT_EQ(LiveFiles().size(), 2u);
  unsetenv("XDG_STATE_HOME");
}

}  // namespace
}  // namespace tovalin
