#include <gtest/gtest.h>
#include <pthread.h>

#include <functional>

#include "tests/evaluator/formula_host.h"
#include "tovalin/enumerador.h"
#include "tovalin/formula.h"

// Error 28 comes before the stack of the thread ends, whatever its size and whatever
// the host's code does with it.

namespace tovalin {
namespace {

void RunOnThread(std::size_t stack_size, std::function<void()> work) {
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  ASSERT_EQ(pthread_attr_setstacksize(&attributes, stack_size), 0);
  pthread_t thread;
  const auto start = [](void* work) -> void* {
    (*static_cast<std::function<void()>*>(work))();
    return nullptr;
  };
  ASSERT_EQ(pthread_create(&thread, &attributes, start, &work), 0);
  pthread_join(thread, nullptr);
  pthread_attr_destroy(&attributes);
}

void Evaluate(Evaluador& evaluator, const Variant& formula) {
  Variant result;
  evaluator.EvaluatePosfijo(formula, result);
}

void EvaluateLateBound(Object& evaluator) {
  Variant result;
  Variant answer;
  std::array<Variant, 2> arguments{Variant(u"1 + OTRA( )"), Variant::ByReference(result)};
  if (const auto error =
          evaluator.Invoke(u"EvaluatePosfijo", MemberKind::Method, arguments, answer))
    throw *error;
}

// What calls itself without end through the library.
struct Recursion {
  const char* name;
  std::function<void(FormulaHost& host)> start;
};

void AttachHandler(FormulaHost& host, std::function<void(Evaluador&)> work) {
  host.evaluator->Evaluate.Attach(
      [&host, work](const Text&, Variant&, Ref<Collection>&) { work(*host.evaluator); });
}

const Recursion kRecursions[] = {
    {"a handler",
     [](FormulaHost& host) {
       AttachHandler(host, [](Evaluador& evaluator) { Evaluate(evaluator, u"OTRA( ) + 1"); });
       Evaluate(*host.evaluator, u"OTRA( )");
     }},
    {"a handler that evaluates by argument",
     [](FormulaHost& host) {
       AttachHandler(host, [](Evaluador& evaluator) {
         Evaluate(evaluator, u"FORMAT( IIF( A = 2 , OTRA( ) , X ) , '0.00' ) & X");
       });
       Evaluate(*host.evaluator, u"OTRA( )");
     }},
    {"a late-bound handler",
     [](FormulaHost& host) {
       host.evaluator->Object::Attach(
           u"Evaluate", [&host](std::span<Variant>) { EvaluateLateBound(*host.evaluator); });
       EvaluateLateBound(*host.evaluator);
     }},
    {"a prepared formula",
     [](FormulaHost& host) {
       const Ref<Formula> formula = host.evaluator->Preparar(u"OTRA( ) & X");
       Variant result;
       AttachHandler(host, [&](Evaluador&) { formula->Evaluar(result); });
       formula->Evaluar(result);
     }},
    {"a batch",
     [](FormulaHost& host) {
       const std::array<Text, 1> formulas{u"OTRA( )"};
       const auto run = [formulas](Evaluador& evaluator) {
         std::array<Evaluador::Outcome, 1> outcomes;
         evaluator.EvaluateBatch(formulas, outcomes);
         if (outcomes[0].error) throw *outcomes[0].error;
       };
       AttachHandler(host, run);
       run(*host.evaluator);
     }},
    {"a table",
     [](FormulaHost& host) {
       const Ref<Formula> formula = host.evaluator->Preparar(u"OTRA( )");
       std::array<Variant, 1> results;
       const auto run = [&](Evaluador&) {
         const auto errors = formula->EvaluarTabla({}, 1, std::span<Variant>(results));
         if (!errors.empty()) throw errors[0].error;
       };
       AttachHandler(host, run);
       run(*host.evaluator);
     }},
    {"a clock",
     [](FormulaHost& host) {
       host.evaluator->UseClock([&host] {
         Evaluate(*host.evaluator, u"DATE( )");
         return Date{2};
       });
       Evaluate(*host.evaluator, u"DATE( )");
     }},
    {"a formula variable that a handler reads",
     [](FormulaHost& host) {
       host.evaluator->AddVble(u"V", 0.0, u"", kNumeric, u"OTRA( )");
       host.evaluator->AddVble(u"Fila", 0.0, u"", kNumeric);
       AttachHandler(host, [](Evaluador& evaluator) {
         evaluator.SetVariable(u"Fila", 1.0);
         Evaluate(evaluator, u"V + OTRA( )");
       });
       Evaluate(*host.evaluator, u"V");
     }},
};

constexpr std::size_t kStacks[] = {256 << 10, 512 << 10, 1 << 20, 2 << 20};

TEST(SmallStack, RaisesOutOfStackInTime) {
  for (const Recursion& recursion : kRecursions)
    for (const std::size_t size : kStacks) {
      FormulaHost host;
      host.evaluator->AddFunction(u"OTRA(", u"OTRA", u"", u"");
      std::int32_t raised = 0;
      RunOnThread(size, [&] {
        try {
          recursion.start(host);
        } catch (const Error& error) {
          raised = error.number;
        }
      });
      EXPECT_EQ(raised, 28) << recursion.name << ' ' << size;
      EXPECT_EQ(host.Evaluate(u"A * 3"), "Double 6") << recursion.name << ' ' << size;
    }
}

// A chain of formula variables with a handler takes a level of the stack for each.
TEST(SmallStack, ComputesChainsAsFarAsTheStackGoes) {
  FormulaHost host;
  host.evaluator->AddFunction(u"OTRA(", u"OTRA", u"", u"");
  AttachHandler(host, [](Evaluador&) {});
  constexpr int kLength = 900;
  const auto name = [](int i) { return u"V" + FromUtf8(std::to_string(i)); };
  host.evaluator->AddVble(name(0), 1.0, u"", kNumeric);
  for (int i = 1; i <= kLength; ++i)
    host.evaluator->AddVble(name(i), 0.0, u"", kNumeric, name(i - 1) + u" + 1");
  const auto evaluate = [&](std::size_t stack, const Text& formula) {
    std::string value;
    RunOnThread(stack, [&] { value = host.Evaluate(formula); });
    return value;
  };
  EXPECT_EQ(evaluate(64 << 20, name(kLength)), "Double 901");
  EXPECT_EQ(evaluate(128 << 10, name(kLength)), "Error 28");
  EXPECT_EQ(evaluate(128 << 10, u"V9 + 1"), "Double 11");
  for (const std::size_t size : kStacks) {
    const std::string value = evaluate(size, name(kLength));
    EXPECT_TRUE(value == "Double 901" || value == "Error 28") << size << ": " << value;
  }
}

// A thread that has hardly any stack computes all the same.
TEST(SmallStack, ServesTheSmallestThreads) {
  FormulaHost host;
  std::string value;
  RunOnThread(64 << 10, [&] { value = host.Evaluate(u"MAX( A , B ) + LEN( 'abc' )"); });
  EXPECT_EQ(value, "Double 8");
}

// What holds itself through objects of every kind, one within the other, goes without
// recursion.
TEST(SmallStack, ReleasesLongChainsOfObjects) {
  FormulaHost host;
  const auto in_collection = [](Variant inner) {
    auto holder = Make<Collection>();
    holder->Add(inner);
    return holder;
  };
  const std::function<Variant(Variant)> holders[] = {
      [&](Variant inner) { return Variant(in_collection(inner)); },
      [&](Variant inner) { return Variant(in_collection(inner)->NewEnum()); },
      [&](Variant inner) {
        auto record = Make<Campo>(u"R");
        record->LetValue(inner);
        auto table = Make<Campos>();
        table->Add(record);
        return Variant(host.evaluator->Preparar(u"R", &table));
      },
  };
  for (const auto& hold : holders) {
    Variant chain = 1.0;
    for (int i = 0; i < 20'000; ++i) chain = hold(std::move(chain));
    RunOnThread(512 << 10, [&] { chain = 2.0; });
  }
}

// Values by reference, one behind the other, are read without recursion.
TEST(SmallStack, FollowsLongChainsOfReferences) {
  std::vector<Variant> chain(200'000);
  chain.back() = 7.0;
  // Each refers to the next one, which is still a value then.
  for (std::size_t i = 0; i + 1 < chain.size(); ++i) chain[i] = Variant::ByReference(chain[i + 1]);
  RunOnThread(128 << 10, [&] { EXPECT_EQ(chain.front().Value().AsDouble(), 7.0); });
}

}  // namespace
}  // namespace tovalin
