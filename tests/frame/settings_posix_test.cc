#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <functional>
#include <thread>
#include <vector>

#include "frame/child_process.h"
#include "frame/settings/settings_file.h"
#include "frame/settings_directory.h"
#include "tovalin/error.h"
#include "tovalin/settings.h"

namespace tovalin {
namespace {

using SettingsTest = SettingsDirectoryTest;

std::int32_t SaveError(TextView application = u"Prueba") {
  try {
    DefaultSettings()->Save(application, u"Seccion", u"Clave", u"nuevo");
    return 0;
  } catch (const Error& error) {
    return error.number;
  }
}

TEST_F(SettingsTest, KeepsTheLinkAndNoRightsOfOthers) {
  WriteFile("real", "[a]\nb=1\n");
  chmod(File("real").c_str(), 0644);
  std::filesystem::create_symlink("real", File("Uno.ini"));
  DefaultSettings()->Save(u"Uno", u"a", u"b", u"2");
  EXPECT_TRUE(std::filesystem::is_symlink(File("Uno.ini")));
  EXPECT_EQ(ReadFile("real"), "[a]\nb=2\n");
  // What is written is for the user alone, whoever could read what stood there.
  EXPECT_EQ(static_cast<int>(std::filesystem::status(File("real")).permissions()), 0600);
}

// What a process leaves that is killed while it saves goes with the next look at the file.
TEST_F(SettingsTest, RemovesWhatKilledSavesLeft) {
  const auto store = DefaultSettings();
  store->Save(u"Uno", u"S", u"K", u"1");
  const auto is_removed_by = [&](const std::function<void()>& look) {
    WriteFile("Uno.ini.tmp", "[S]\nsueldo=");
    chmod(File("Uno.ini.tmp").c_str(), 0644);
    look();
    return !std::filesystem::exists(File("Uno.ini.tmp"));
  };
  EXPECT_TRUE(is_removed_by([&] { EXPECT_EQ(store->Get(u"Uno", u"S", u"K", u""), u"1"); }));
  EXPECT_TRUE(is_removed_by([&] { store->Save(u"Uno", u"S", u"K", u"2"); }));
  EXPECT_EQ(static_cast<int>(std::filesystem::status(File("Uno.ini")).permissions()), 0600);
  const FileLock saving(File("Uno.ini"));
  EXPECT_FALSE(is_removed_by([&] { EXPECT_EQ(store->Get(u"Uno", u"S", u"K", u""), u"2"); }));
}

TEST_F(SettingsTest, TellsWhyItCannotBeWritten) {
  const struct {
    const char* what;
    std::int32_t number;
    std::function<void()> prepare;
    const char* needs = "/";  // what must be there: a bare root has no /sys
  } rows[] = {
      {"directory in place of the file", 75,
       [&] { std::filesystem::create_directories(File("Prueba.ini")); }},
      {"directory in place of the new file", 75,
       [&] { std::filesystem::create_directories(File("Prueba.ini.tmp")); }},
      {"directory in place of the lock", 75,
       [&] { std::filesystem::create_directories(File("Prueba.ini.lock")); }},
      {"file in place of the directory", 75, [&] { std::ofstream(directory_ / "tovalin") << "x"; }},
      {"directory that cannot be made", 76, [] { setenv("XDG_CONFIG_HOME", "/proc/nada", 1); },
       "/proc/self"},
      {"directory that may not be made", 70, [] { setenv("XDG_CONFIG_HOME", "/sys/nada", 1); },
       "/sys/kernel"},
      {"no directory named", 76,
       [] {
         unsetenv("HOME");
         setenv("XDG_CONFIG_HOME", "relativo", 1);
       }},
  };
  for (const auto& row : rows) {
    if (!std::filesystem::exists(row.needs)) continue;
    SCOPED_TRACE(row.what);
    std::filesystem::remove_all(directory_ / "tovalin");
    const pid_t child = Spawn([&] {
      row.prepare();
      const bool kept = DefaultSettings()->Get(u"Prueba", u"Seccion", u"Clave", u"x") == u"x";
      return kept ? SaveError() : 1;
    });
    EXPECT_EQ(WaitFor(child), row.number);
  }
  EXPECT_EQ(SaveError(Text(300, u'n')), 76) << "a name too long for a file";
}

TEST_F(SettingsTest, KeepsTheOldFileWhenTheDiskIsFull) {
  DefaultSettings()->Save(u"Prueba", u"Seccion", u"Clave", u"viejo");
  const std::string before = ReadFile("Prueba.ini");
  const pid_t child = Spawn([&] {
    signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{20, 20};
    setrlimit(RLIMIT_FSIZE, &limit);
    return SaveError();
  });
  EXPECT_EQ(WaitFor(child), 61);
  EXPECT_EQ(ReadFile("Prueba.ini"), before);
  EXPECT_FALSE(std::filesystem::exists(File("Prueba.ini.tmp")));
}

Text KeyOf(int writer, int i) {
  std::string key = std::to_string(writer);
  key += '_';
  key += std::to_string(i);
  return FromUtf8(key);
}

void SaveKeys(int writer, int count) {
  for (int i = 0; i < count; ++i) {
    const Text key = KeyOf(writer, i);
    DefaultSettings()->Save(u"Varios", u"Todos", key, key);
  }
}

TEST_F(SettingsTest, LosesNoEntryAmongManyWriters) {
  constexpr int kWriters = 8;
  constexpr int kKeys = 25;
  std::vector<pid_t> children;
  for (int writer = 0; writer < kWriters; writer += 2) {
    children.push_back(Spawn([=] {
      std::thread other(SaveKeys, writer + 1, kKeys);
      SaveKeys(writer, kKeys);
      other.join();
      return 0;
    }));
  }
  for (const pid_t child : children) EXPECT_EQ(WaitFor(child), 0);
  for (int i = 0; i < kWriters * kKeys; ++i) {
    const Text key = KeyOf(i / kKeys, i % kKeys);
    EXPECT_EQ(DefaultSettings()->Get(u"Varios", u"Todos", key, u"-"), key);
  }
}

TEST_F(SettingsTest, SurvivesKilledWriters) {
  const Text big(20000, u'x');
  DefaultSettings()->Save(u"Varios", u"Fijo", u"Clave", u"sigue");
  for (int round = 0; round < 15; ++round) {
    const pid_t child = Spawn([&] {
      for (;;) DefaultSettings()->Save(u"Varios", u"Todos", u"Grande", big);
      return 0;
    });
    std::this_thread::sleep_for(std::chrono::microseconds(3000 + 700 * round));
    kill(child, SIGKILL);
    WaitFor(child);
    ASSERT_EQ(DefaultSettings()->Get(u"Varios", u"Fijo", u"Clave", u"-"), u"sigue");
    const Text kept = DefaultSettings()->Get(u"Varios", u"Todos", u"Grande", big);
    ASSERT_EQ(kept.size(), big.size());
    DefaultSettings()->Save(u"Varios", u"Todos", u"Vivo", u"sí");
  }
}

}  // namespace
}  // namespace tovalin
