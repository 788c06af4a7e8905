#include "frame/live_section.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>

#include <array>
#include <chrono>
#include <optional>
#include <random>
#include <thread>

#include "frame/child_process.h"
#include "frame/ini_text.h"
#include "frame/live_file.h"
#include "frame/settings_content.h"
#include "frame/settings_directory.h"
#include "frame/settings_path.h"
#include "tovalin/settings.h"

namespace tovalin {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

const std::vector<std::string> kKeys = {"Expresion", "Posfijo", "Resultado", "ElementosPila"};

class LiveSectionTest : public SettingsDirectoryTest {
 protected:
  static LiveSection Make() { return LiveSection(u"Evaluador", u"Posfijo", kKeys.size(), kKeys); }

  static bool Put(LiveSection& section, std::size_t first, std::vector<std::string_view> values) {
    for (std::size_t i = 0; i < values.size() && first + i < kKeys.size(); ++i) {
      std::string line = kKeys[first + i] + "=";
      line.append(values[i]);
      EscapeIniTextFrom(kKeys[first + i].size() + 1, line);
      line += '\n';
      if (values.size() == 1 && first + 1 == kKeys.size())
        section.RewriteLast() += line;
      else
        section.Set(first + i, line);
    }
    return section.Put();
  }

  // The same text under the four keys, of a length that changes with it.
  static bool PutSame(LiveSection& section, unsigned number) {
    std::string text = std::to_string(number);
    text.append(number * 7919 % 593, '.');
    return Put(section, 0, {text, text, text, text});
  }

  static std::string Get(const std::string& key) {
    return ToUtf8(DefaultSettings()->Get(u"Evaluador", u"Posfijo", FromUtf8(key), u"(nada)"));
  }

  static std::vector<std::string> GetAll() {
    std::vector<std::string> texts;
    const SettingsContent content = ReadContent(SettingsPath(u"Evaluador"));
    for (const std::string& key : kKeys) {
      texts.push_back(ToUtf8(content.Find(u"Posfijo", FromUtf8(key)).value_or(u"(nada)")));
    }
    return texts;
  }

  static void ExpectAllTheSame() {
    const std::vector<std::string> texts = GetAll();
    ASSERT_EQ(texts, std::vector<std::string>(4, texts[0]));
    ASSERT_NE(texts[0], "(nada)");
  }

  // Whether the lines of a body give every key the same text.
  static bool HasOneText(const std::string& body) {
    const std::size_t start = body.find('=') + 1;
    const std::string text = body.substr(start, body.find('\n') - start);
    std::string expected;
    for (const std::string& key : kKeys) expected.append(key).append("=").append(text) += '\n';
    return body == expected;
  }

  // A process that writes until it is killed, at the end of the scope at the latest.
  class Writer {
   public:
    explicit Writer(unsigned start)
        : process_(Spawn([start] {
            LiveSection section = Make();
            for (unsigned i = start;; ++i) PutSame(section, i);
            return 0;
          })) {}
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;
    ~Writer() { Kill(); }

    void Kill() {
      if (process_ == 0) return;
      kill(process_, SIGKILL);
      WaitFor(process_);
      process_ = 0;
    }

   private:
    pid_t process_;
  };
};

TEST_F(LiveSectionTest, StandsInTheFileAmongOtherEntries) {
  WriteFile("Evaluador.ini", "; mía\n[Otra]\nx=1\n[posfijo]\nExpresion=vieja\nnota=n\n");
  LiveSection section = Make();
  EXPECT_EQ(Get("Expresion"), "vieja") << "nothing is opened before the first Put";
  ASSERT_TRUE(Put(section, 0, {"1+1", "1 1 +"}));
  EXPECT_EQ(GetAll(), (std::vector<std::string>{"1+1", "1 1 +", "(nada)", "(nada)"}));
  ASSERT_TRUE(Put(section, 2, {"2", "1", "beyond the last key"}));
  EXPECT_EQ(GetAll(), (std::vector<std::string>{"1+1", "1 1 +", "2", "1"}));
  EXPECT_EQ(Get("nota"), "n");
  EXPECT_EQ(DefaultSettings()->Get(u"Evaluador", u"Otra", u"x", u"-"), u"1");
  const std::string file = ReadFile("Evaluador.ini");
  EXPECT_NE(file.find("\n[Posfijo]  "), file.npos);
  EXPECT_NE(file.find("\nExpresion=1+1\nPosfijo=1 1 +\nResultado=2\nElementosPila=1\n "),
            file.npos);
  EXPECT_TRUE(file.ends_with("\n; mía\n[Otra]\nx=1\n[posfijo]\nnota=n\n"));
}

TEST_F(LiveSectionTest, KeepsAnyTextAndLeavesNoRemainder) {
  LiveSection section = Make();
  const std::vector<std::string> texts = {std::string(700, 'L'),
                                          "corto",
                                          "",
                                          " a=[b] ;c# ",
                                          "1\r\n+2\\n\t",
                                          std::string("a\0b", 3),
                                          "Ñandú \U0001F600",
                                          "\x7F",
                                          "seis\\siete",
                                          "12345678",
                                          "A B + 3 * B A / - ",
                                          " ",
                                          "  ",
                                          "\\s ",
                                          "1234567\n",
                                          "1234\n678 ",
                                          "12345\t",
                                          "\x1F"
                                          "234",
                                          "12345678\\9012345678",
                                          "1234567890123456\r8"};
  for (const std::string& text : texts) {
    for (int twice = 0; twice < 2; ++twice) ASSERT_TRUE(Put(section, 2, {text}));
    EXPECT_EQ(Get("Resultado"), text);
  }
  EXPECT_EQ(ReadFile("Evaluador.ini").find('L'), std::string::npos);
}

TEST_F(LiveSectionTest, GrowsWithItsValues) {
  DefaultSettings()->Save(u"Evaluador", u"Otra", u"x", u"1");
  LiveSection section = Make();
  LiveSection other = Make();
  for (std::size_t size = 1; size <= (8u << 20); size = size * 7 + 3) {
    const std::string text(size, static_cast<char>('a' + size % 26));
    ASSERT_TRUE(Put(other, 0, {"b", "b", "b", "b"}));
    ASSERT_TRUE(Put(section, 0, {text, "p", "r", "e"}));
    EXPECT_EQ(GetAll(), (std::vector<std::string>{text, "p", "r", "e"}));
  }
  EXPECT_TRUE(Put(other, 3, {"fin"}));
  EXPECT_EQ(GetAll(), (std::vector<std::string>{"b", "b", "b", "fin"}));
  EXPECT_EQ(DefaultSettings()->Get(u"Evaluador", u"Otra", u"x", u"-"), u"1");
}

TEST_F(LiveSectionTest, TheLastWriterWinsAsAWhole) {
  LiveSection one = Make();
  LiveSection two = Make();
  ASSERT_TRUE(Put(one, 0, {"1a", "1b", "1c", "1d"}));
  ASSERT_TRUE(Put(two, 0, {"2a", "2b", "2c"}));
  EXPECT_EQ(GetAll(), (std::vector<std::string>{"2a", "2b", "2c", "(nada)"}));
  ASSERT_TRUE(Put(one, 3, {"1D"}));
  EXPECT_EQ(GetAll(), (std::vector<std::string>{"1a", "1b", "1c", "1D"}));
}

// Each writes only what it does not know to be there.
TEST_F(LiveSectionTest, WritersInAnyOrderLeaveTheLastValues) {
  const std::vector<std::string> texts = {"1", "18.5", "A B + 3 * ", "", std::string(90, 'x')};
  std::array<LiveSection, 2> sections = {Make(), Make()};
  std::array<std::vector<std::string>, 2> expected;
  expected.fill(std::vector<std::string>(4, "(nada)"));
  std::minstd_rand random(7);
  std::size_t writer = 0;
  for (int i = 0; i < 3000; ++i) {
    if (random() % 8 == 0) writer = 1 - writer;
    const std::size_t first = random() % 4;
    std::vector<std::string_view> values;
    for (std::size_t key = first; key < 4 && key < first + 2; ++key) {
      expected[writer][key] = texts[random() % texts.size()];
      values.push_back(expected[writer][key]);
    }
    ASSERT_TRUE(Put(sections[writer], first, values));
    ASSERT_EQ(GetAll(), expected[writer]) << i;
    if (random() % 64 == 0) TakeContent(SettingsPath(u"Evaluador"));
    if (random() % 64 == 0) DefaultSettings()->Save(u"Evaluador", u"Otra", u"x", u"1");
  }
}

TEST_F(LiveSectionTest, APutOfTheSameValuesWritesNothing) {
  LiveSection section = Make();
  ASSERT_TRUE(Put(section, 0, {"a", "b", "c", "d"}));
  const std::string file = ReadFile("Evaluador.ini");
  ASSERT_TRUE(Put(section, 0, {"a", "b", "c", "d"}));
  EXPECT_EQ(ReadFile("Evaluador.ini"), file);
  LiveSection other = Make();
  ASSERT_TRUE(Put(other, 0, {"x", "x", "x", "x"}));
  ASSERT_TRUE(Put(section, 2, {"c"}));
  EXPECT_EQ(GetAll(), (std::vector<std::string>{"a", "b", "c", "d"}));
}

TEST_F(LiveSectionTest, ReadersNeverSeeAMixOfTwoWriters) {
  LiveSection section = Make();
  const std::string room(600, '.');
  ASSERT_TRUE(Put(section, 0, {room, room, room, room}));
  const auto file = LiveFile::Open(SettingsPath(u"Evaluador"), Mapping::Access::kRead);
  ASSERT_TRUE(file);
  Writer one(10);
  Writer two(1'000'000);
  std::string before;
  int changes = 0;
  const auto end = steady_clock::now() + milliseconds(1500);
  while (steady_clock::now() < end) {
    const std::optional<std::string> body = file->Read();
    ASSERT_TRUE(body);
    ASSERT_TRUE(HasOneText(*body)) << *body;
    changes += *body != before;
    before = *body;
  }
  EXPECT_GT(changes, 100) << "the writers were at work";
  for (int i = 0; i < 300; ++i) ExpectAllTheSame();
}

TEST_F(LiveSectionTest, AKilledProcessLeavesItsLastValues) {
  for (unsigned round = 0; round < 60; ++round) {
    Writer writer(1000 * round);
    while (Get("Resultado") == "(nada)") std::this_thread::yield();
    std::this_thread::sleep_for(std::chrono::microseconds(1500 + 37 * round));
    writer.Kill();
    ExpectAllTheSame();
    LiveSection section = Make();
    ASSERT_TRUE(PutSame(section, round)) << "nobody is blocked";
    ASSERT_EQ(Get("Resultado").substr(0, std::to_string(round).size()), std::to_string(round));
  }
}

// The first line tells the state that a writer leaves that dies at work.
TEST_F(LiveSectionTest, TakesOverFromAWriterThatDiedAtWork) {
  LiveSection section = Make();
  ASSERT_TRUE(Put(section, 0, {"a", "b", "c", "d"}));
  std::fstream file(File("Evaluador.ini"), std::ios::in | std::ios::out | std::ios::binary);
  file.seekg(15);
  const char digit = static_cast<char>(file.get());
  file.seekp(15);
  file.put(static_cast<char>(digit + 1)).flush();
  EXPECT_EQ(GetAll(), (std::vector<std::string>{"a", "b", "c", "d"}));
  const auto start = steady_clock::now();
  EXPECT_TRUE(Put(section, 2, {"C"}));
  EXPECT_LT(steady_clock::now() - start, milliseconds(2000));
  EXPECT_EQ(GetAll(), (std::vector<std::string>{"a", "b", "C", "d"}));
}

TEST_F(LiveSectionTest, SavesAndWritersLeaveOneAnotherWhole) {
  Writer writer(1);
  while (Get("Resultado") == "(nada)") std::this_thread::yield();
  for (int i = 0; i < 40; ++i) {
    DefaultSettings()->Save(u"Evaluador", u"Otra", FromUtf8(std::to_string(i)), u"sí");
    ExpectAllTheSame();
  }
  const std::string seen = Get("Resultado");
  const auto end = steady_clock::now() + milliseconds(3000);
  while (Get("Resultado") == seen && steady_clock::now() < end) std::this_thread::yield();
  EXPECT_NE(Get("Resultado"), seen) << "the writer goes on in the new file";
  writer.Kill();
  for (int i = 0; i < 40; ++i) {
    EXPECT_EQ(DefaultSettings()->Get(u"Evaluador", u"Otra", FromUtf8(std::to_string(i)), u"-"),
              u"sí");
  }
}

TEST_F(LiveSectionTest, SaveMayWriteTheLiveSectionToo) {
  LiveSection section = Make();
  ASSERT_TRUE(Put(section, 0, {"a", "b", "c", "d"}));
  DefaultSettings()->Save(u"Evaluador", u"POSFIJO", u"resultado", u"ajeno");
  DefaultSettings()->Save(u"Evaluador", u"Posfijo", u"Nueva", u"n");
  EXPECT_EQ(GetAll(), (std::vector<std::string>{"a", "b", "ajeno", "d"}));
  ASSERT_TRUE(Put(section, 0, {"A"}));
  EXPECT_EQ(GetAll(), (std::vector<std::string>{"A", "b", "c", "d"}));
  EXPECT_EQ(Get("Nueva"), "n");
}

// A Save that died, or failed, between its mark and its new file.
TEST_F(LiveSectionTest, AStaleMarkStopsNobody) {
  LiveSection section = Make();
  ASSERT_TRUE(Put(section, 0, {"a", "b", "c", "d"}));
  TakeContent(SettingsPath(u"Evaluador"));
  EXPECT_EQ(GetAll(), (std::vector<std::string>{"a", "b", "c", "d"}));
  ASSERT_TRUE(Put(section, 0, {"A"}));
  EXPECT_EQ(GetAll(), (std::vector<std::string>{"A", "b", "c", "d"}));
}

TEST_F(LiveSectionTest, ADeletedFileComesBack) {
  LiveSection section = Make();
  ASSERT_TRUE(Put(section, 0, {"a", "b", "c", "d"}));
  std::filesystem::remove_all(directory_ / "tovalin");
  std::this_thread::sleep_for(milliseconds(1100));
  ASSERT_TRUE(Put(section, 0, {"A"}));
  EXPECT_EQ(GetAll(), (std::vector<std::string>{"A", "b", "c", "d"}));
}

TEST_F(LiveSectionTest, AnEditorMayChangeTheFile) {
  {
    LiveSection section = Make();
    ASSERT_TRUE(Put(section, 0, {"a", "b", "c", "d"}));
    DefaultSettings()->Save(u"Evaluador", u"Otra", u"x", u"1");
  }
  std::string file = ReadFile("Evaluador.ini");
  file.replace(file.find("Resultado=c"), 11, "Resultado=cambiado a mano");
  std::filesystem::remove(File("Evaluador.ini"));
  WriteFile("Evaluador.ini", file);
  EXPECT_EQ(Get("Resultado"), "cambiado a mano");
  EXPECT_EQ(DefaultSettings()->Get(u"Evaluador", u"Otra", u"x", u"-"), u"1");
  LiveSection section = Make();
  ASSERT_TRUE(Put(section, 0, {"A", "B", "C", "D"}));
  EXPECT_EQ(GetAll(), (std::vector<std::string>{"A", "B", "C", "D"}));
  EXPECT_EQ(DefaultSettings()->Get(u"Evaluador", u"Otra", u"x", u"-"), u"1");
  EXPECT_LT(ReadFile("Evaluador.ini").size(), 4500u) << "the old padding is gone";
}

TEST_F(LiveSectionTest, AFileThatCannotBeWrittenCostsLittle) {
  std::filesystem::create_directories(File("Evaluador.ini"));
  {
    LiveSection section = Make();
    const auto start = steady_clock::now();
    for (unsigned i = 0; i < 100'000; ++i) ASSERT_FALSE(PutSame(section, i));
    EXPECT_LT(steady_clock::now() - start, milliseconds(2000));
    std::filesystem::remove(File("Evaluador.ini"));
    std::this_thread::sleep_for(milliseconds(1100));
    EXPECT_TRUE(Put(section, 0, {"a"}));
    EXPECT_EQ(Get("Expresion"), "a");
    std::filesystem::remove(File("Evaluador.ini"));
    std::filesystem::create_directories(File("Evaluador.ini"));
    std::this_thread::sleep_for(milliseconds(1100));
    EXPECT_FALSE(Put(section, 0, {"b"}));
    std::filesystem::remove(File("Evaluador.ini"));
  }
  EXPECT_EQ(Get("Expresion"), "b") << "written at the end of the object";
}

TEST_F(LiveSectionTest, AFullDiskLeavesTheFormerValues) {
  LiveSection section = Make();
  ASSERT_TRUE(Put(section, 0, {"a", "b", "c", "d"}));
  const pid_t child = Spawn([&] {
    signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{100'000, 100'000};
    setrlimit(RLIMIT_FSIZE, &limit);
    const std::string large(1 << 20, 'x');
    return Put(section, 0, {large}) ? 1 : 0;
  });
  EXPECT_EQ(WaitFor(child), 0);
  EXPECT_EQ(GetAll(), (std::vector<std::string>{"a", "b", "c", "d"}));
  EXPECT_TRUE(Put(section, 0, {"A"}));
  EXPECT_EQ(Get("Expresion"), "A");
}

}  // namespace
}  // namespace tovalin
