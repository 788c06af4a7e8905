#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "evaluator/formula_host.h"
#include "frame/settings/live_trace.h"
#include "frame/settings_directory.h"
#include "tovalin/error.h"

namespace tovalin {
namespace {

class TraceTest : public SettingsDirectoryTest {};

/// A store of a host that fails in every way.
class FailingSettings : public SettingsStore {
 public:
  explicit FailingSettings(std::function<void()> fail) : fail_(std::move(fail)) {}
  void Save(TextView, TextView, TextView, TextView) override { fail_(); }
  Text Get(TextView, TextView, TextView, TextView otherwise) const override {
    return Text(otherwise);
  }

 private:
  std::function<void()> fail_;
};

TEST_F(TraceTest, IsTheSameInEveryStore) {
  const auto memory = Make<MemorySettings>();
  const struct {
    const char* what;
    Ref<SettingsStore> given;
    Ref<SettingsStore> read;
  } stores[] = {
      {"the host's", memory, memory},
      {"none given", nullptr, DefaultSettings()},
      {"the default one given", DefaultSettings(), DefaultSettings()},
  };
  // Each by a new evaluator.
  const std::vector<std::pair<Text, Text>> steps = {
      {u"'a' * 2", u"'a' * 2|\"a\" 2 * |-|-"},
      {u"6 * 7", u"6 * 7|6 7 * |42|1"},
      {u"'b' * 2", u"'b' * 2|\"b\" 2 * |42|1"},
      {u"'sí' & 'ñ'", u"'sí' & 'ñ'|\"sí\" \"ñ\" & |síñ|1"},
      {u"1 +", u"1 +||0|0"},
  };
  for (const auto& store : stores) {
    SCOPED_TRACE(store.what);
    std::filesystem::remove_all(RuntimeDirectory());
    for (const auto& [formula, expected] : steps) {
      const auto evaluator = Make<Evaluador>();
      evaluator->UseSettings(store.given);
      Variant result;
      try {
        evaluator->EvaluatePosfijo(formula, result);
      } catch (const Error&) {
      }
      Text shown;
      for (TextView key : kTraceKeys) {
        if (!shown.empty()) shown += u'|';
        shown += store.read->Get(kTraceApplication, kTraceSection, key, u"-");
      }
      EXPECT_EQ(ToUtf8(shown), ToUtf8(expected));
    }
  }
  EXPECT_FALSE(std::filesystem::exists(File("Evaluador.ini")));
}

// Two evaluators that take turns in one store each leave all of their own entries.
TEST_F(TraceTest, IsWholeWhoeverWroteBefore) {
  const auto memory = Make<MemorySettings>();
  const Ref<Evaluador> evaluators[] = {Make<Evaluador>(), Make<Evaluador>()};
  for (const auto& evaluator : evaluators) evaluator->UseSettings(memory);
  for (int round = 0; round < 3; ++round) {
    for (int i = 0; i < 2; ++i) {
      Variant result;
      const Text formula = i == 0 ? u"1 + 1" : u"2 + 2";
      evaluators[i]->EvaluatePosfijo(formula, result);
      EXPECT_EQ(memory->values["Evaluador/Posfijo/Expresion"], ToUtf8(formula));
    }
  }
}

TEST_F(TraceTest, NeverFailsAnEvaluation) {
  const std::function<void()> failures[] = {
      [] { Raise(Failure::DiskFull); },
      [] { throw std::runtime_error("of the host"); },
      [] { throw std::bad_alloc(); },
      [] { throw 5; },
  };
  for (const auto& fail : failures) {
    const auto evaluator = Make<Evaluador>();
    evaluator->UseSettings(Make<FailingSettings>(fail));
    Variant result;
    EXPECT_TRUE(evaluator->EvaluatePosfijo(Text(u"6 * 7"), result));
    EXPECT_EQ(result.AsDouble(), 42);
  }
}

}  // namespace
}  // namespace tovalin
