#include "frame/settings/live_trace.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <filesystem>
#include <optional>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "frame/settings/ini_text.h"
#include "frame/settings/settings_file.h"
#include "frame/settings/settings_path.h"
#include "frame/settings_directory.h"
#include "tovalin/settings.h"

namespace tovalin {
namespace {

using Texts = std::array<Text, kLiveTexts>;

constexpr std::int64_t kNeverAgain = std::int64_t{1} << 40;

/// A LiveTrace that is used as an evaluator does: it knows which texts are the last ones.
class Writer {
 public:
  explicit Writer(std::int64_t look_every = 1000) : trace_(look_every) {}

  bool Put(const Texts& texts, std::size_t count = kLiveTexts) {
    LiveChanges changes;
    std::size_t same = 0;
    while (same < count && texts[same] == last_[same]) ++same;
    for (std::size_t i = 0; i < count; ++i) {
      last_[i] = texts[i];
      changes[i] = {last_[i]};
    }
    return trace_.Put(changes, same);
  }

  std::size_t Looks() const { return trace_.Looks(); }

 private:
  LiveTrace trace_;
  Texts last_;
};

/// Texts that belong together: each starts with the same number.
Texts TextsOf(unsigned number) {
  const Text digits = FromUtf8(std::to_string(number));
  Texts texts = {digits, digits, digits, digits};
  for (std::size_t i = 0; i < 3; ++i) texts[i].append(number * 7919 % (401 + 100 * i), u'.');
  return texts;
}

class LiveTraceTest : public SettingsDirectoryTest {
 protected:
  static Texts Shown() {
    Texts shown;
    const TraceTexts texts = ReadTrace();
    for (std::size_t i = 0; i < kLiveTexts; ++i) shown[i] = texts[i].value_or(u"(nada)");
    return shown;
  }

  static Text Get(TextView key) {
    return DefaultSettings()->Get(kTraceApplication, kTraceSection, key, u"(nada)");
  }

  static void ExpectOneMoment() {
    const Texts texts = Shown();
    ASSERT_NE(texts[3], u"(nada)");
    const auto number = static_cast<unsigned>(std::stoul(ToUtf8(texts[3])));
    ASSERT_EQ(texts, TextsOf(number)) << ToUtf8(texts[0]);
  }

  // Of one process's evaluations or of all.
  std::filesystem::path LiveFileOf(const std::string& suffix) const {
    for (const auto& entry : std::filesystem::directory_iterator(RuntimeDirectory() / "tovalin"))
      if (entry.path().extension() == suffix) return entry.path();
    return {};
  }
};

const Texts kTexts = {u"1+1", u"1 1 + ", u"2", u"1"};

TEST_F(LiveTraceTest, IsReadAsIfItStoodInTheSettings) {
  WriteFile("Evaluador.ini", "; mía\n[Otra]\nx=1\n[posfijo]\nExpresion=vieja\nnota=n\n");
  const std::string settings = ReadFile("Evaluador.ini");
  Writer writer;
  EXPECT_EQ(Get(u"Expresion"), u"vieja") << "nothing is opened before the first Put";
  ASSERT_TRUE(writer.Put(kTexts, 2));
  EXPECT_EQ(Shown(), (Texts{u"1+1", u"1 1 + ", u"(nada)", u"(nada)"}));
  ASSERT_TRUE(writer.Put(kTexts));
  EXPECT_EQ(Shown(), kTexts);
  EXPECT_EQ(Get(u"EXPRESION"), u"1+1");
  EXPECT_EQ(Get(u"nota"), u"n");
  EXPECT_EQ(ReadFile("Evaluador.ini"), settings);
  // A Save is seen until the next evaluation.
  DefaultSettings()->Save(u"Evaluador", u"POSFIJO", u"resultado", u"ajeno");
  EXPECT_EQ(Shown(), (Texts{u"1+1", u"1 1 + ", u"ajeno", u"1"}));
  ASSERT_TRUE(writer.Put(kTexts));
  EXPECT_EQ(Shown(), kTexts);
  EXPECT_EQ(ReadFile("Evaluador.ini"), settings);
}

TEST_F(LiveTraceTest, KeepsAnyTextAndNoRemainderOfIt) {
  Writer writer;
  const std::vector<Text> texts = {Text(700, u'L'),
                                   u"corto",
                                   u"",
                                   u" a=[b] ;c# ",
                                   u"1\r\n+2\\n\t",
                                   Text(u"a\0b", 3),
                                   u"Ñandú \U0001F600",
                                   Text{0xD83D, u'x', 0xDE00},
                                   Text(8168, u'm'),
                                   Text(8169, u'n'),
                                   Text(u" \\ \n") + Text(9000, u'ñ') + u" ",
                                   Text(9000, u'p'),
                                   Text(1 << 20, u'q'),
                                   Text(33, u'r'),
                                   u"fin"};
  for (const Text& text : texts) {
    for (int twice = 0; twice < 2; ++twice) {
      ASSERT_TRUE(writer.Put({u"1", text, text, text}));
      EXPECT_EQ(Shown(), (Texts{u"1", text, text, text})) << text.size();
      ASSERT_TRUE(writer.Put({text, u"2", text, u"3"}));
      EXPECT_EQ(Shown(), (Texts{text, u"2", text, u"3"})) << text.size();
    }
  }
  EXPECT_LT(ReadFile("Evaluador.ini").size(), 20u) << "long texts leave the settings";
}

// Two writers in this process, and one that starts again all the time, beside a model.
TEST_F(LiveTraceTest, ShowsTheLastTextsWhoeverWroteThem) {
  const std::vector<Text> texts = {u"1",           u"18.5",          u"A B + 3 * ",   u"",
                                   Text(90, u'x'), Text(8200, u'l'), Text(8201, u'm')};
  std::array<std::optional<Writer>, 3> writers;
  for (auto& writer : writers) writer.emplace();
  Texts model;
  model.fill(u"(nada)");
  std::minstd_rand random(7);
  for (int i = 0; i < 1500; ++i) {
    const std::size_t which = random() % 3;
    if (which == 2) writers[2].emplace();
    const std::size_t count = random() % 3 == 0 ? 2 : kLiveTexts;
    const std::size_t longest = random() % 16 == 0 ? texts.size() : texts.size() - 2;
    Texts put = kTexts;
    for (std::size_t key = 0; key < count; ++key)
      if (random() % 3 != 0) put[key] = texts[random() % longest];
    for (std::size_t key = 0; key < count; ++key) model[key] = put[key];
    ASSERT_TRUE(writers[which]->Put(put, count));
    ASSERT_EQ(Shown(), model) << i;
    if (random() % 64 == 0) DefaultSettings()->Save(u"Evaluador", u"Otra", u"x", u"1");
  }
}

TEST_F(LiveTraceTest, ReadersNeverSeeAMixOfTwoWriters) {
  std::atomic<bool> done = false;
  std::vector<std::thread> threads;
  for (unsigned start : {1u, 1'000'000u}) {
    threads.emplace_back([start, &done] {
      Writer writer;
      for (unsigned number = start; !done; ++number) writer.Put(TextsOf(number));
    });
  }
  while (Get(u"Resultado") == u"(nada)") std::this_thread::yield();
  Text before;
  for (int changes = 0; changes < 500;) {
    const Texts texts = Shown();
    const auto number = static_cast<unsigned>(std::stoul(ToUtf8(texts[3])));
    EXPECT_EQ(texts, TextsOf(number));
    if (texts[3] != before) ++changes;
    before = texts[3];
    if (HasFailure()) break;
  }
  done = true;
  for (std::thread& thread : threads) thread.join();
}

TEST_F(LiveTraceTest, ReadersNeverSeeAMixOfLongTexts) {
  std::atomic<bool> done = false;
  std::thread thread([&done] {
    Writer writer;
    for (unsigned number = 1; !done; ++number) {
      const Text digits = FromUtf8(std::to_string(number));
      const Text text = digits + Text(number % 3 == 0 ? 10 : 8200, u'.');
      writer.Put({text, text, digits, digits});
    }
  });
  while (Get(u"Resultado") == u"(nada)") std::this_thread::yield();
  Text before;
  for (int changes = 0; changes < 20;) {
    const Texts texts = Shown();
    EXPECT_EQ(texts[0].substr(0, texts[0].find(u'.')), texts[3]);
    EXPECT_EQ(texts[1].substr(0, texts[1].find(u'.')), texts[3]);
    if (texts[3] != before) ++changes;
    before = texts[3];
    if (HasFailure()) break;
  }
  done = true;
  thread.join();
}

TEST_F(LiveTraceTest, SettingsMayBecomeAnything) {
  Writer writer(0);
  const Texts with_long = {Text(9000, u'x'), u"p", u"r", u"1"};
  ASSERT_TRUE(writer.Put(with_long));
  std::filesystem::resize_file(File("Evaluador.ini"), 10);
  EXPECT_EQ(Shown()[2], u"r");
  ASSERT_TRUE(writer.Put(kTexts));
  EXPECT_EQ(Shown(), kTexts);
  WriteFile("Evaluador.ini", "");
  ASSERT_TRUE(writer.Put(with_long));
  EXPECT_EQ(Shown(), with_long);
  std::filesystem::remove(File("Evaluador.ini"));
  ASSERT_TRUE(writer.Put(kTexts));
  // What no evaluation needs is not read, whatever its size.
  std::filesystem::remove(File("Evaluador.ini"));
  std::filesystem::create_directories(File("Evaluador.ini"));
  Writer other;
  ASSERT_TRUE(other.Put(TextsOf(5)));
  EXPECT_EQ(Shown(), TextsOf(5));
}

TEST_F(LiveTraceTest, ALockedSettingsFileStopsNoEvaluation) {
  const Texts with_long = {Text(9000, u'x'), u"p", u"r", u"1"};
  Writer writer(kNeverAgain);
  ASSERT_TRUE(writer.Put(kTexts));
  {
    const FileLock lock(SettingsPath(u"Evaluador"));
    EXPECT_FALSE(writer.Put(with_long));
    EXPECT_EQ(Shown(), (Texts{u"", u"p", u"r", u"1"}));
    EXPECT_TRUE(writer.Put(kTexts));
    EXPECT_EQ(Shown(), kTexts);
  }
  Writer again;
  EXPECT_TRUE(again.Put(with_long));
  EXPECT_EQ(Shown(), with_long);
}

TEST_F(LiveTraceTest, ALongTextIsSavedOnce) {
  Writer writer(kNeverAgain);
  for (unsigned number = 0; number < 3; ++number) {
    const Text result = FromUtf8(std::to_string(number));
    ASSERT_TRUE(writer.Put({Text(9000, u'x'), u"p", result, u"1"}));
    EXPECT_EQ(Shown(), (Texts{Text(9000, u'x'), u"p", result, u"1"}));
    // The settings would have their own permissions again if they were written again.
    if (number == 0)
      std::filesystem::permissions(File("Evaluador.ini"), std::filesystem::perms(0400));
    EXPECT_EQ(std::filesystem::status(File("Evaluador.ini")).permissions(),
              std::filesystem::perms(0400));
  }
}

TEST_F(LiveTraceTest, DeletedFilesComeBack) {
  Writer writer(0);
  ASSERT_TRUE(writer.Put(kTexts));
  const std::filesystem::path file = LiveFileOf(".1");
  const auto size = std::filesystem::file_size(file);
  std::filesystem::remove_all(RuntimeDirectory());
  ASSERT_TRUE(writer.Put(kTexts));
  EXPECT_EQ(Shown(), kTexts);
  EXPECT_EQ(std::filesystem::file_size(file), size);
}

// A process that was forked may be killed in the middle of a write.
TEST_F(LiveTraceTest, AWriteThatNeverEndsIsLeftAlone) {
  Writer writer(kNeverAgain);
  ASSERT_TRUE(writer.Put(kTexts));
  std::optional<Mapping> file = Mapping::Make(LiveFileOf(".1"), 16);
  ASSERT_TRUE(file);
  file->Store(0, file->Load(0) + 1);
  EXPECT_EQ(Shown(), kTexts);
  ASSERT_TRUE(writer.Put(TextsOf(3)));
  EXPECT_EQ(Shown(), TextsOf(3));
  EXPECT_EQ(LiveFileOf(".2").extension(), ".2");
}

// Version 1.0 wrote two slots in front of the entries, at every evaluation.
TEST_F(LiveTraceTest, TakesTheFormerTraceOutOfTheSettings) {
  const std::string rest = "; mía\n[Otra]\nx=1\n[posfijo]\nnota=n\n";
  std::string former =
      "; vivo: 00000002, cupo: 000007C0, usos: 00000058 y      00000060, tema: 00000007\n";
  former.append("; Tovalin escribe en vivo lo que sigue.").resize(127, ' ');
  for (const char* heading : {"\n[Posfijo]\nResultado=5\n", "\n[Posfijo anterior]\n"}) {
    const std::size_t start = former.size();
    former.append(heading).resize(start + 0x7C0, ' ');
  }
  former += '\n';
  const struct {
    const char* what;
    std::string before;
    std::string after;
  } rows[] = {
      {"as it was written", former + rest, rest},
      {"edited, so that the sizes are wrong", former.substr(0, 3000) + rest,
       former.substr(0, 3000) + rest},
      {"cut off", former.substr(0, 20), former.substr(0, 20)},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    std::filesystem::remove_all(RuntimeDirectory());
    WriteFile("Evaluador.ini", row.before);
    Writer writer;
    ASSERT_TRUE(writer.Put(kTexts));
    EXPECT_EQ(ReadFile("Evaluador.ini"), row.after);
  }
}

}  // namespace
}  // namespace tovalin
