#include "tovalin/settings.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <set>
#include <vector>

#include "frame/settings/ini_text.h"
#include "frame/settings/settings_file.h"
#include "frame/settings/settings_path.h"
#include "frame/settings/settings_store.h"
#include "frame/settings_directory.h"
#include "tovalin/error.h"

namespace tovalin {
namespace {

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

}  // namespace
}  // namespace tovalin
