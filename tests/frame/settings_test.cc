#include "tovalin/settings.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <functional>
#include <map>
#include <random>
#include <set>
#include <thread>
#include <vector>

#include "frame/ini_text.h"
#include "frame/settings_directory.h"
#include "frame/settings_file.h"
#include "frame/settings_path.h"
#include "frame/settings_store.h"
#include "tovalin/error.h"

namespace tovalin {
namespace {

std::int32_t SaveError(TextView application = u"Prueba") {
  try {
    DefaultSettings()->Save(application, u"Seccion", u"Clave", u"nuevo");
    return 0;
  } catch (const Error& error) {
    return error.number;
  }
}

TEST(IniText, EscapesNoMoreThanNeeded) {
  const struct {
    const char* what;
    Text key;
    Text text;
    const char* line;
  } rows[] = {
      {"plain text", u"Año", u"Niño; #1 [x] = \"á\"", "Año=Niño; #1 [x] = \"á\"\n"},
      {"line breaks", u"k", u"a\r\nb\tc", "k=a\\r\\nb\\tc\n"},
      {"outer blanks only", u"k", u"  a b  ", "k=\\s a b \\s\n"},
      {"one blank", u"k", u" ", "k=\\s\n"},
      {"backslash", u"k", u"C:\\temp", "k=C:\\\\temp\n"},
      {"control characters", u"k", Text(1, u'\0') + u"\x1F", "k=\\u0000\\u001F\n"},
      {"half a surrogate pair", u"k", Text{0xD83D, u'x', 0xDE00}, "k=\\uD83Dx\\uDE00\n"},
      {"a whole pair", u"k", u"\U0001F600", "k=\U0001F600\n"},
      {"key that looks like a heading", u"[a]=b", u"", "\\[a]\\=b=\n"},
      {"key that looks like a comment", u";#", u"v", "\\;#=v\n"},
      {"empty key", u"", u"v", "=v\n"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    const std::string file = WithEntry("", u"s]", row.key, row.text);
    EXPECT_EQ(file, std::string("[s\\]]\n") + row.line);
    EXPECT_EQ(FindEntry(file, u"s]", row.key), row.text);
  }
}

TEST(IniText, ReadsWhatPeopleWrite) {
  constexpr std::string_view kFile =
      "\xEF\xBB\xBFsuelta = 1\r\n"
      "; Uno=comentario\r\n"
      "  [ Opciones ]  ; las de siempre\r\n"
      "\tCOLOR  =  azul = rojo  \r\n"
      "ruta=C:\\dir\\x\\u00Z\\\r\n"
      "sin igual\r\n"
      "#otra=2\r\n"
      "[rota\r\n"
      "Color=segunda vez\r\n"
      "[otra]\r\n"
      "Color=verde\r\n"
      "[opciones]\r\n"
      "ÑANDÚ=sí";
  const struct {
    TextView section;
    TextView key;
    const char16_t* text;  // null when there is none
  } rows[] = {
      {u"", u"Suelta", u"1"},
      {u"opciones", u"color", u"azul = rojo"},
      {u"Opciones", u"Ruta", u"C:\\dir\\x\\u00Z\\"},
      {u"OTRA", u"Color", u"verde"},
      {u"Opciones", u"ñandú", u"sí"},
      {u"Opciones", u"nandu", nullptr},
      {u"Opciones", u"Uno", nullptr},
      {u"Opciones", u"otra", nullptr},
      {u"Opciones", u"sin igual", nullptr},
      {u"Otra", u"ñandú", nullptr},
  };
  for (const auto& row : rows) {
    const auto found = FindEntry(kFile, row.section, row.key);
    EXPECT_EQ(found.has_value(), row.text != nullptr) << ToUtf8(row.key);
    if (found && row.text) {
      EXPECT_EQ(*found, row.text) << ToUtf8(row.key);
    }
  }
}

Text RandomText(std::mt19937& random, std::size_t longest) {
  constexpr TextView kTroublemakers = u" \t\r\n\\=[];#snrtu0AñÑ\u00A0\u0085\u2028\uFEFF\x01\x7F";
  Text text;
  for (std::size_t i = random() % (longest + 1); i > 0; --i) {
    const bool any = random() % 4 == 0;
    text +=
        any ? static_cast<char16_t>(random()) : kTroublemakers[random() % kTroublemakers.size()];
  }
  return text;
}

TEST(IniText, KeepsRandomEntriesLikeAMap) {
  std::mt19937 random(20240601);
  std::map<std::pair<Text, Text>, Text> model;
  std::string file = "; a comment\n";
  for (int i = 0; i < 1500; ++i) {
    const Text section = ToLower(RandomText(random, 2));
    const Text key = ToLower(RandomText(random, 3));
    const Text text = RandomText(random, 12);
    if (random() % 8 == 0) {
      file = WithoutEntry(file, section, key);
      model.erase({section, key});
    } else {
      file = WithEntry(file, section, key, text);
      // Names that differ in case alone are one name.
      std::erase_if(model, [&](const auto& entry) {
        return EqualFolded(entry.first.first, section) && EqualFolded(entry.first.second, key);
      });
      model[{section, key}] = text;
    }
    if (i % 250 != 0) continue;
    for (const auto& [name, kept] : model) {
      ASSERT_EQ(FindEntry(file, name.first, name.second), kept) << file;
    }
  }
  EXPECT_TRUE(file.starts_with("; a comment\n"));
}

TEST(SettingsPath, GivesEveryApplicationItsOwnHarmlessName) {
  const std::vector<Text> names = {
      u"",        u".",     u"..",        u"../x",      u"a/b",
      u"a\\b",    u"a%2Fb", u"a:b",       u" a",        u"a ",
      u"a",       u"CON",   u"con",       u"NUL.x",     u"%43ON",
      u"CONTA",   u"%",     u"%u",        u"COM1",      u"COM",
      u"Ñ\n",     u"*?",    Text{0xD800}, Text{0xDC00}, Text{u'a', u'\0', u'b'},
      u"%uD800",  u".a",    u"a.",        u"a.ini",     u"\U0001F600",
      u"lpt9.txt"};
  std::set<std::u8string> seen;
  for (const Text& name : names) {
    const std::u8string file = FileNameOf(name);
    EXPECT_TRUE(seen.insert(file).second) << ToUtf8(name);
    EXPECT_TRUE(file.find_first_of(u8"/\\:*?\"<>|\n") == file.npos) << ToUtf8(name);
    EXPECT_FALSE(file.empty() || file.front() == u8'.') << ToUtf8(name);
  }
  EXPECT_TRUE(FileNameOf(u"Nómina 2024") == u8"Nómina 2024");
  EXPECT_TRUE(FileNameOf(u"aux.x") == u8"%61ux.x");
}

using SettingsTest = SettingsDirectoryTest;

TEST_F(SettingsTest, KeepsTextsApart) {
  const auto store = DefaultSettings();
  EXPECT_EQ(store->Get(u"Uno", u"S", u"K", u"nada"), u"nada");
  store->Save(u"Uno", u"S", u"K", u"1");
  store->Save(u"Uno", u"S", u"Otra", u"línea 1\nlínea 2");
  store->Save(u"Uno", u"T", u"K", u"3");
  store->Save(u"Dos", u"S", u"K", u"4");
  store->Save(u"Uno", u"s", u"k", u"5");
  EXPECT_EQ(DefaultSettings()->Get(u"Uno", u"S", u"K", u"nada"), u"5");
  EXPECT_EQ(store->Get(u"Dos", u"S", u"K", u"nada"), u"4");
  EXPECT_EQ(ReadFile("Uno.ini"), "[S]\nk=5\nOtra=línea 1\\nlínea 2\n\n[T]\nK=3\n");
}

TEST_F(SettingsTest, KeepsTheLinesOfAPerson) {
  WriteFile("Uno.ini",
            "# mis ajustes\r\n\r\n[Vista]\r\n; ancho en puntos\r\nAncho = 10\r\nalgo raro\r\n"
            "\r\n; la otra\r\n[Otra]\r\nx=1");
  DefaultSettings()->Save(u"Uno", u"Vista", u"Ancho", u"20");
  DefaultSettings()->Save(u"Uno", u"Vista", u"Alto", u"30");
  DefaultSettings()->Save(u"Uno", u"Otra", u"y", u"2");
  EXPECT_EQ(ReadFile("Uno.ini"),
            "# mis ajustes\r\n\r\n[Vista]\r\n; ancho en puntos\r\nAncho=20\nAlto=30\nalgo raro\r\n"
            "\r\n; la otra\r\n[Otra]\r\nx=1\ny=2\n");
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

TEST_F(SettingsTest, ALockThatIsNotReleasedIsAnError) {
  const FileLock held(File("Prueba.ini"));
  try {
    MakeFileSettings(3)->Save(u"Prueba", u"Seccion", u"Clave", u"nuevo");
    ADD_FAILURE() << "saved in spite of the lock";
  } catch (const Error& error) {
    EXPECT_EQ(error.number, 70);
  }
  EXPECT_FALSE(std::filesystem::exists(File("Prueba.ini")));
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
