#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <random>
#include <set>
#include <vector>

#include "tests/evaluator/formula_host.h"

namespace tovalin {
namespace {

Text Named(const char16_t* stem, std::size_t number) {
  return Text(stem) + FromUtf8(std::to_string(number));
}

// What the formula variables hold by the rules, told by sets: what an evaluation computes,
// and what depends on that and was not computed, and so on until nothing is due.
class Net {
 public:
  static constexpr std::size_t kInputs = 4;

  Net(std::mt19937& random, std::size_t formulas, bool with_handler) : inputs_(kInputs, 1) {
    for (std::size_t i = 0; i < formulas; ++i) {
      Node node;
      node.input = random() % kInputs;
      node.adds = static_cast<double>(random() % 5);
      node.fails = random() % 8 == 0;
      node.failed_at_end = random() % 2 == 0;
      if (i > 0)
        for (auto count = random() % 4; count > 0; --count) node.reads.push_back(random() % i);
      KeepDoomedApart(node);
      node.asks = with_handler && random() % 6 == 0;
      nodes_.push_back(node);
    }
  }

  struct Node {
    std::size_t input = 0;
    double adds = 0;
    bool fails = false;
    bool failed_at_end = false;  // after what it reads
    bool doomed = false;         // it fails, or reads what does
    bool asks = false;           // its handler has the dependants of the input computed
    std::vector<std::size_t> reads;
    double value = 0;
  };

  std::size_t Size() const { return nodes_.size(); }
  const Node& At(std::size_t node) const { return nodes_[node]; }
  double& Input(std::size_t input) { return inputs_[input]; }

  // "CUENTA( 3 ) + E1 + 2 + F0 + F2 + PIDE( 3 )", with a text added where it fails.
  Text FormulaOf(std::size_t node, bool with_handler) const {
    const Node& at = nodes_[node];
    Text formula = Named(u"E", at.input) + u" + " + Named(u"", static_cast<std::size_t>(at.adds));
    if (with_handler) formula = u"CUENTA( " + Named(u"", node) + u" ) + " + formula;
    if (at.fails && !at.failed_at_end) formula += u" + Letra";
    for (const std::size_t read : at.reads) formula += u" + " + Named(u"F", read);
    if (at.asks) formula += u" + PIDE( " + Named(u"", node) + u" )";
    if (at.fails && at.failed_at_end) formula += u" + Letra";
    return formula;
  }

  void Evaluate(std::size_t node) {
    Try(node);
    Settle();
  }
  void TouchInput(std::size_t input) {
    asked_.insert(input);
    Settle();
  }
  std::set<std::size_t> Computed() const {
    std::set<std::size_t> computed;
    std::ranges::set_difference(done_, failed_, std::inserter(computed, computed.end()));
    return computed;
  }
  void Forget() {
    done_.clear();
    failed_.clear();
    asked_.clear();
  }

 private:
  // Whether what cannot be computed is tried as a dependant of a dependant is of no
  // consequence: it reads nothing else.
  void KeepDoomedApart(Node& node) const {
    for (const std::size_t read : node.reads) {
      if (!nodes_[read].doomed) continue;
      node.reads = {read};
      node.doomed = true;
      break;
    }
    node.doomed = node.doomed || node.fails;
  }

  bool Try(std::size_t node) {
    if (done_.contains(node)) return !failed_.contains(node);
    done_.insert(node);
    Node& at = nodes_[node];
    double value = inputs_[at.input] + at.adds;
    bool good = !(at.fails && !at.failed_at_end);
    for (const std::size_t read : at.reads) {
      good = good && Try(read);
      value += nodes_[read].value;
    }
    if (good && at.asks) asked_.insert(at.input);
    good = good && !at.fails;
    if (good)
      at.value = value;
    else
      failed_.insert(node);
    return good;
  }
  bool IsComputed(std::size_t node) const {
    return done_.contains(node) && !failed_.contains(node);
  }
  bool IsDue(std::size_t node) const {
    const Node& at = nodes_[node];
    bool is_due = asked_.contains(at.input);
    for (const std::size_t read : at.reads) is_due = is_due || IsComputed(read);
    return is_due && !done_.contains(node);
  }
  void Settle() {
    for (bool any = true; any;) {
      any = false;
      for (std::size_t node = 0; node < nodes_.size(); ++node) {
        if (!IsDue(node)) continue;
        Try(node);
        any = true;
      }
    }
  }

  std::vector<Node> nodes_;
  std::vector<double> inputs_;
  std::set<std::size_t> done_;  // tried, whether they failed or not
  std::set<std::size_t> failed_;
  std::set<std::size_t> asked_;  // inputs whose dependants are asked for
};

struct NetHost {
  NetHost(const Net& net, bool with_handler) {
    Evaluador& evaluator = *host.evaluator;
    evaluator.AddVble(u"Letra", u"x", u"", kLongText);
    for (const char16_t* word : {u"CUENTA", u"PIDE"})
      evaluator.AddFunction(Text(word) + u"(", word, u"", u"");
    for (std::size_t i = 0; i < Net::kInputs; ++i)
      evaluator.AddVble(Named(u"E", i), 1.0, u"", kNumeric);
    for (std::size_t i = 0; i < net.Size(); ++i)
      evaluator.AddVble(Named(u"F", i), 0.0, u"", kNumeric, net.FormulaOf(i, with_handler));
    if (!with_handler) return;
    evaluator.Evaluate.Attach(
        [this, &net](const Text& macro, Variant& result, Ref<Collection>& pila) {
          const auto node = static_cast<std::size_t>(ToLong(host.evaluator->LoadTopePila(pila)));
          if (macro == u"CUENTA(")
            tried.push_back(node);
          else
            host.evaluator->CalcularDependencias(Named(u"E", net.At(node).input));
          result = 0.0;
        });
  }
  void ExpectAs(const Net& net) {
    for (std::size_t i = 0; i < net.Size(); ++i)
      ASSERT_EQ(ToDouble(host.evaluator->GetVariable(Named(u"F", i), 0.0)), net.At(i).value)
          << "F" << i << " = " << ToUtf8(net.FormulaOf(i, true));
  }
  FormulaHost host;
  std::vector<std::size_t> tried;
};

TEST(Dependants, AreThoseOfASimpleModel) {
  std::mt19937 random(17);
  for (int turn = 0; turn < 400; ++turn) {
    const bool with_handler = turn % 2 == 0;
    Net model(random, 1 + random() % 12, with_handler);
    NetHost host(model, with_handler);
    for (int step = 0; step < 6; ++step) {
      const std::size_t input = random() % Net::kInputs;
      model.Input(input) = static_cast<double>(random() % 100);
      host.host.evaluator->SetVariable(Named(u"E", input), model.Input(input));
      model.Forget();
      host.tried.clear();
      if (random() % 2) {
        const std::size_t node = random() % model.Size();
        host.host.Evaluate(Named(u"F", node));
        model.Evaluate(node);
      } else {
        host.host.evaluator->CalcularDependencias(Named(u"E", input));
        model.TouchInput(input);
      }
      host.ExpectAs(model);
      ASSERT_FALSE(HasFatalFailure()) << "turn " << turn << ", step " << step;
      const std::set<std::size_t> tried(host.tried.begin(), host.tried.end());
      ASSERT_EQ(tried.size(), host.tried.size()) << "a formula was tried twice, turn " << turn;
      ASSERT_TRUE(!with_handler || std::ranges::includes(tried, model.Computed())) << turn;
    }
  }
}

// What a handler asks for after it wrote a value is computed once more, and what reads that
// too; its own formula is not.
TEST(Dependants, FollowWhatAHandlerWrites) {
  FormulaHost host;
  Evaluador& evaluator = *host.evaluator;
  evaluator.AddFunction(u"AVISA(", u"AVISA", u"", u"");
  evaluator.AddVble(u"E", 1.0, u"", kNumeric);
  for (const auto& [name, formula] : std::vector<std::pair<Text, Text>>{{u"Doble", u"E * 2"},
                                                                        {u"Lector", u"Doble + 1"},
                                                                        {u"Aviso", u"E + AVISA( )"},
                                                                        {u"Otro", u"Aviso + A"}})
    evaluator.AddVble(name, 0.0, u"", kNumeric, formula);
  int calls = 0;
  evaluator.Evaluate.Attach([&](const Text&, Variant& result, Ref<Collection>&) {
    ++calls;
    evaluator.SetVariable(u"E", 10.0 * calls);
    evaluator.CalcularDependencias(u"E");
    result = 0.0;
  });
  const struct {
    const char16_t* formula;
    const char* result;
  } kCases[] = {{u"Aviso", "Double 1"},
                {u"Doble + Otro", "Double 5"},  // a Doble of before the handler
                {u"Doble + Aviso + Lector", "Double 6"}};
  for (const auto& at : kCases) {
    evaluator.SetVariable(u"E", 1.0);
    calls = 0;
    EXPECT_EQ(host.Evaluate(at.formula), at.result);
    EXPECT_EQ(calls, 1) << ToUtf8(at.formula);
    EXPECT_EQ(ToDouble(evaluator.GetVariable(u"Doble", 0.0)), 20) << ToUtf8(at.formula);
    EXPECT_EQ(ToDouble(evaluator.GetVariable(u"Lector", 0.0)), 21) << ToUtf8(at.formula);
  }
}

// Two whose handlers write what the other one reads would go on for ever.
TEST(Dependants, ThatFeedOneAnotherComeToAnEnd) {
  FormulaHost host;
  Evaluador& evaluator = *host.evaluator;
  evaluator.AddFunction(u"AVISA(", u"AVISA", u"", u"");
  for (const char16_t* name : {u"P", u"Q", u"R"})
    evaluator.AddVble(name, 0.0, u"", kNumeric, u"AVISA( A )");
  int calls = 0;
  evaluator.Evaluate.Attach([&](const Text&, Variant& result, Ref<Collection>& pila) {
    result = evaluator.LoadTopePila(pila);
    evaluator.SetVariable(u"A", static_cast<double>(++calls));
    evaluator.CalcularDependencias(u"A");
  });
  host.Evaluate(u"P + Q + R");
  EXPECT_GE(calls, 3);
  EXPECT_LE(calls, 6);
}

}  // namespace
}  // namespace tovalin
