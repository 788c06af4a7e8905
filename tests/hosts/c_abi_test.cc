#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <cstring>
#include <functional>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "tovalin/factory.h"
#include "tovalin/tovalin_c.h"

// What a host does wrong, and what it does in several threads. The ordinary use is in
// c/border_test.c.

namespace tovalin {
namespace {

/// A handle that is given back at the end.
class Handle {
 public:
  explicit Handle(const char* class_name) {
    EXPECT_EQ(tov_create(class_name, &handle_, nullptr), 0) << class_name;
  }
  explicit Handle(tov_handle handle) : handle_(handle) {}
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  ~Handle() {
    if (handle_ != 0) {
      EXPECT_EQ(tov_release(handle_, nullptr), 0);
    }
  }
  operator tov_handle() const { return handle_; }
  tov_handle Take() { return std::exchange(handle_, 0); }

 private:
  tov_handle handle_ = 0;
};

class CInterface : public testing::Test {
 protected:
  ~CInterface() override { EXPECT_EQ(tov_handles(), before_) << "a handle was not given back"; }

 private:
  std::size_t before_ = tov_handles();
};

std::int32_t Call(tov_handle object, const char* member, std::vector<tov_value> arguments,
                  tov_value* result = nullptr) {
  return tov_call(object, member, TOV_METHOD, arguments.data(), arguments.size(), result, nullptr);
}

tov_value ValueOf(std::uint16_t type, tov_handle handle = 0) {
  tov_value value = tov_empty();
  value.type = type;
  value.as.handle = handle;
  return value;
}

TEST_F(CInterface, MakesAndDescribesEveryClass) {
  for (const ClassInfo* info : Classes()) {
    const std::string name = ToUtf8(info->name);
    tov_handle object = 0;
    EXPECT_EQ(tov_create(name.c_str(), &object, nullptr), info->create ? 0 : 429) << name;
    for (const MemberInfo& member : info->members) {
      tov_member id = 0;
      EXPECT_EQ(tov_find_member(name.c_str(), ToUtf8(member.name).c_str(),
                                static_cast<int>(member.kind), &id, nullptr),
                0);
      EXPECT_NE(id, 0u);
    }
    if (object != 0) {
      EXPECT_EQ(tov_release(object, nullptr), 0);
    }
  }
}

TEST_F(CInterface, TellsHandlesThatAreNone) {
  Handle list("Collection");
  Handle gone("Collection");
  const tov_handle stale = gone;
  ASSERT_EQ(tov_release(gone.Take(), nullptr), 0);
  const Handle next("Collection");  // most likely in the same slot
  EXPECT_NE(next, stale);

  struct Case {
    tov_handle handle;
    std::int32_t error;
  };
  const Case cases[] = {
      {0, 91},
      {stale, 424},
      {1, 424},
      {next + 1, 424},
      {next ^ (std::uint64_t{1} << 40), 424},
      {~std::uint64_t{0}, 424},
      {0xFFFFFFFF00000000, 424},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(row.handle);
    tov_error error{};
    EXPECT_EQ(tov_call(row.handle, "Count", TOV_GET, nullptr, 0, nullptr, &error), row.error);
    EXPECT_EQ(error.number, row.error);
    EXPECT_GT(error.description.length, 0u);
    tov_clear_error(&error);
    EXPECT_EQ(tov_release(row.handle, nullptr), row.error);
    EXPECT_EQ(tov_retain(row.handle, nullptr), row.error);
    EXPECT_EQ(tov_array_size(row.handle, nullptr, nullptr, nullptr), row.error);
    EXPECT_EQ(tov_detach(row.handle, "Evaluate", 1, nullptr), row.error);
    if (row.handle != 0) {
      EXPECT_EQ(Call(list, "Add", {ValueOf(TOV_OBJECT, row.handle)}), row.error);
    }
    EXPECT_EQ(Call(list, "Add", {ValueOf(TOV_ARRAY, row.handle)}), row.error);
  }
  EXPECT_EQ(Call(list, "Add", {ValueOf(TOV_ARRAY, list)}), 13);
}

void Nothing(void*, tov_invocation*) {}

TEST_F(CInterface, TellsPointersAndNumbersThatCannotBe) {
  const Handle list("Collection");
  const Handle evaluator("Evaluador");
  tov_value value = tov_double(1);
  tov_value text = tov_text("x");
  text.as.utf8 = nullptr;
  tov_value coded = tov_text("x");
  coded.encoding = 2;
  tov_value endless = tov_text("x");
  endless.length = std::uint64_t{1} << 40;
  const tov_handler handler{Nothing, nullptr, nullptr, 0};
  const tov_handler empty{};
  tov_handle object = 0;
  tov_member id = 0;
  std::int32_t attachment = 0;
  const tov_column column{"x", nullptr, 0, TOV_DOUBLE};

  const std::pair<std::int32_t, std::int32_t> cases[] = {
      {tov_create(nullptr, &object, nullptr), 5},
      {tov_create("Collection", nullptr, nullptr), 5},
      {tov_create("\xFF", &object, nullptr), 429},
      {tov_class(list, nullptr, nullptr), 5},
      {tov_describe(nullptr, nullptr, nullptr), 5},
      {tov_copy(nullptr, &value, nullptr), 5},
      {tov_copy(&value, nullptr, nullptr), 5},
      {tov_call(list, nullptr, TOV_GET, nullptr, 0, nullptr, nullptr), 5},
      {tov_call(list, "Add", TOV_METHOD, nullptr, 1, nullptr, nullptr), 5},
      {tov_call(list, "Add", TOV_METHOD, &value, SIZE_MAX, nullptr, nullptr), 450},
      {tov_call(list, "Count", 0, nullptr, 0, nullptr, nullptr), 5},
      {tov_call(list, "Count", 6, nullptr, 0, nullptr, nullptr), 5},
      {Call(list, "Add", {text}), 5},
      {Call(list, "Add", {coded}), 5},
      {Call(list, "Add", {endless}), 7},
      {Call(list, "Add", {ValueOf(65535)}), 13},
      {tov_call_id(list, 0, nullptr, 0, nullptr, nullptr), 438},
      {tov_call_id(list, 0xFFFF, nullptr, 0, nullptr, nullptr), 438},
      {tov_call_id(list, 0xFFFFFFFF, nullptr, 0, nullptr, nullptr), 438},
      {tov_find_member("Collection", "Count", TOV_GET, nullptr, nullptr), 5},
      {tov_find_member("Collection", "Count", TOV_METHOD, &id, nullptr), 438},
      {tov_find_member("Nada", "Count", TOV_GET, &id, nullptr), 429},
      {tov_attach(evaluator, "Evaluate", nullptr, &attachment, nullptr), 5},
      {tov_attach(evaluator, "Evaluate", &empty, &attachment, nullptr), 5},
      {tov_attach(evaluator, "Evaluate", &handler, nullptr, nullptr), 5},
      {tov_attach(evaluator, nullptr, &handler, &attachment, nullptr), 5},
      {tov_attach(list, "Evaluate", &handler, &attachment, nullptr), 438},
      {tov_detach(evaluator, "Evaluate", 77, nullptr), 0},
      {tov_create_host_object(&handler, 10, &object, nullptr), 5},
      {tov_create_host_object(&empty, TOV_OTHER, &object, nullptr), 5},
      {tov_use_clock(list, &handler, nullptr), 438},
      {tov_use_clock(evaluator, &empty, nullptr), 5},
      {tov_use_services(evaluator, &handler, nullptr), 438},
      {tov_use_memory_settings(list, nullptr), 438},
      {tov_array_create(1, 1, nullptr, nullptr), 5},
      {tov_evaluate_table(evaluator, &column, 1, 1, nullptr, nullptr, 0, nullptr, nullptr), 5},
  };
  for (const auto& [answered, expected] : cases)
    EXPECT_EQ(answered, expected) << "case " << &answered - &cases[0].first;
  tov_clear(nullptr);
  tov_clear_error(nullptr);
  EXPECT_EQ(object, 0u);
}

TEST_F(CInterface, KeepsWhatATableIsHandedApart) {
  const Handle evaluator("Evaluador");
  EXPECT_EQ(Call(evaluator, "AddVble", {tov_text("A"), tov_double(0), tov_text(""), tov_long(0)}),
            0);
  tov_value prepared = tov_empty();
  EXPECT_EQ(Call(evaluator, "Preparar", {tov_text("A * 2")}, &prepared), 0);
  std::array<char, 4 * sizeof(double) + 1> odd{};  // doubles at odd addresses
  for (int i = 0; i < 4; ++i) {
    const double number = i;
    std::memcpy(odd.data() + 1 + i * sizeof number, &number, sizeof number);
  }
  const tov_column column{"A", odd.data() + 1, 0, TOV_DOUBLE};
  std::array<double, 4> results{};
  const tov_column of_results{nullptr, results.data(), 0, TOV_DOUBLE};
  const auto evaluate = [&](const tov_column& given, std::size_t rows, const tov_column& out) {
    return tov_evaluate_table(prepared.as.handle, &given, 1, rows, &out, nullptr, 0, nullptr,
                              nullptr);
  };
  EXPECT_EQ(evaluate(column, 4, of_results), 0);
  EXPECT_EQ(results, (std::array<double, 4>{0, 2, 4, 6}));
  EXPECT_EQ(evaluate({"A", nullptr, 0, TOV_DOUBLE}, 4, of_results), 5);
  EXPECT_EQ(evaluate({"A", nullptr, 0, TOV_DOUBLE}, 0, of_results), 0);
  EXPECT_EQ(evaluate({nullptr, results.data(), 0, TOV_DOUBLE}, 4, of_results), 5);
  EXPECT_EQ(evaluate({"A", results.data(), 0, TOV_STRING}, 4, of_results), 13);
  EXPECT_EQ(evaluate(column, 4, {nullptr, results.data(), 0, TOV_LONG}), 13);
  EXPECT_EQ(evaluate(column, SIZE_MAX, {nullptr, results.data(), 8, TOV_EMPTY}), 7);
  tov_clear(&prepared);
}

// --- Handlers --------------------------------------------------------------------

struct Script {
  tov_handle evaluator = 0;
  std::function<void(tov_invocation&)> run;
  int released = 0;
};

tov_handler HandlerOf(Script& script) {
  return {[](void* context, tov_invocation* call) { static_cast<Script*>(context)->run(*call); },
          &script, [](void* context) { ++static_cast<Script*>(context)->released; }, TOV_UTF8};
}

// An evaluator whose function MACRO( comes to a script.
class Macros : public CInterface {
 protected:
  Macros() {
    script_.evaluator = evaluator_;
    const tov_handler handler = HandlerOf(script_);
    std::int32_t attachment = 0;
    EXPECT_EQ(tov_attach(evaluator_, "Evaluate", &handler, &attachment, nullptr), 0);
    EXPECT_EQ(Call(evaluator_, "AddFunction",
                   {tov_text("MACRO("), tov_text("MACRO"), tov_text(""), tov_text("")}),
              0);
  }
  ~Macros() override {
    tov_release(evaluator_.Take(), nullptr);
    EXPECT_EQ(script_.released, 1);
  }

  std::int32_t Evaluate(const char* formula, tov_value* result = nullptr,
                        tov_error* error = nullptr) {
    tov_value arguments[] = {tov_text(formula), tov_empty()};
    const std::int32_t answer =
        tov_call(script_.evaluator, "EvaluatePosfijo", TOV_METHOD, arguments, 2, nullptr, error);
    if (result)
      *result = arguments[1];
    else
      tov_clear(&arguments[1]);
    return answer;
  }

  Script script_;
  Handle evaluator_{"Evaluador"};
};

TEST_F(Macros, TellTheEvaluationWhatGoesWrongInThem) {
  struct Case {
    const char* what;
    std::function<void(tov_invocation&)> run;
    std::int32_t error;
  };
  const Case cases[] = {
      {"its own error", [](tov_invocation& call) { call.error.number = -17; }, -17},
      {"an exception", [](tov_invocation&) { throw std::runtime_error("x"); }, kObjectError},
      {"what is no exception", [](tov_invocation&) { throw 1; }, kObjectError},
      {"a type that there is not", [](tov_invocation& call) { call.arguments[1].type = 99; }, 13},
      {"a stale handle",
       [](tov_invocation& call) { call.arguments[1] = ValueOf(TOV_OBJECT, 12345); }, 424},
      {"another object as the stack",
       [this](tov_invocation& call) { call.arguments[2] = tov_object(evaluator_); }, 13},
      {"texts that are none",
       [](tov_invocation& call) {
         call.error.number = 6;
         call.error.description = tov_text("x");
         call.error.description.as.utf8 = nullptr;
       },
       5},
      {"an endless recursion",
       [this](tov_invocation& call) { call.error.number = Evaluate("MACRO(1)"); }, 28},
  };
  for (const Case& row : cases) {
    script_.run = row.run;
    tov_error error{};
    EXPECT_EQ(Evaluate("MACRO(1)", nullptr, &error), row.error) << row.what;
    EXPECT_EQ(error.number, row.error) << row.what;
    tov_clear_error(&error);
  }
  script_.run = [](tov_invocation& call) {
    tov_clear(&call.arguments[2]);  // lent: nothing to give back
    call.arguments[0] = tov_text("changed");
    call.count = 0;
    call.arguments[1] = tov_long(3);
    call.arguments = nullptr;
  };
  EXPECT_EQ(Evaluate("MACRO(1)"), 0);
}

TEST_F(Macros, MayLetGoOfTheirEvaluator) {
  script_.run = [this](tov_invocation& call) {
    if (tov_handle mine = evaluator_.Take()) {
      EXPECT_EQ(tov_release(mine, nullptr), 0);
    }
    EXPECT_EQ(tov_release(script_.evaluator, nullptr), 424);
    EXPECT_EQ(Evaluate("1"), 424);
    call.arguments[1] = tov_long(3);
  };
  tov_value value = tov_empty();
  EXPECT_EQ(Evaluate("MACRO() + 1", &value), 0);
  EXPECT_EQ(value.as.f64, 4);
}

TEST_F(CInterface, CallsObjectsOfTheHost) {
  std::string calls;
  std::string tag = "»»";
  Script widget;
  widget.run = [&](tov_invocation& call) {
    calls += std::string(call.name) + (call.kind == TOV_GET ? "? " : " ");
    if (std::strcmp(call.name, "Tag") != 0) {
      call.error.number = 438;
    } else if (call.kind == TOV_GET) {
      call.result = tov_text(tag.c_str());
    } else {
      tag.assign(call.arguments[0].as.utf8, static_cast<std::size_t>(call.arguments[0].length));
    }
  };
  Script services;
  tov_handle control = 0;
  const tov_handler of_widget = HandlerOf(widget);
  ASSERT_EQ(tov_create_host_object(&of_widget, TOV_CHECK_BOX, &control, nullptr), 0);
  services.run = [&](tov_invocation& call) {
    calls += std::string(call.name) + " ";
    if (std::strcmp(call.name, "ActiveControl") == 0) call.result = tov_object(control);
  };
  const tov_handler of_services = HandlerOf(services);
  {
    const Handle forms("LibGeneral");
    EXPECT_EQ(tov_use_services(forms, &of_services, nullptr), 0);
    EXPECT_EQ(tov_use_memory_settings(forms, nullptr), 0);
    EXPECT_EQ(
        Call(forms, "GotFocus", {tov_object(control), tov_text("ayuda"), tov_object(control)}), 0);
    EXPECT_EQ(Call(forms, "SelectText", {}), 0);
    tov_value result = tov_empty();
    EXPECT_EQ(Call(forms, "IsControl", {tov_object(control)}, &result), 0);
    EXPECT_EQ(result.as.i32, 1);
  }
  EXPECT_NE(calls.find("StatusBar"), std::string::npos) << calls;
  EXPECT_NE(calls.find("ActiveControl"), std::string::npos) << calls;

  const Handle list("Collection");
  const Handle keys("Collection");
  EXPECT_EQ(Call(control, "Nada", {tov_object(list)}), 438);
  tov_value back = tov_empty();
  EXPECT_EQ(Call(list, "Add", {tov_object(control)}), 0);
  EXPECT_EQ(Call(list, "Item", {tov_long(1)}, &back), 0);
  EXPECT_EQ(back.as.handle, control);
  tov_clear(&back);
  EXPECT_EQ(tov_release(control, nullptr), 0);
  EXPECT_EQ(widget.released, 0);
  EXPECT_EQ(Call(list, "Remove", {tov_long(1)}), 0);
  EXPECT_EQ(widget.released, 1);
  EXPECT_EQ(services.released, 1);
}

TEST_F(CInterface, TakesTheTimeFromTheHost) {
  const Handle evaluator("Evaluador");
  Script clock;
  clock.run = [](tov_invocation& call) {
    call.result = ValueOf(TOV_DATE);
    call.result.as.f64 = 45337.5;
  };
  const tov_handler handler = HandlerOf(clock);
  EXPECT_EQ(tov_use_memory_settings(evaluator, nullptr), 0);
  EXPECT_EQ(tov_use_clock(evaluator, &handler, nullptr), 0);
  tov_value arguments[] = {tov_text("YEAR(NOW())"), tov_empty()};
  EXPECT_EQ(tov_call(evaluator, "EvaluatePosfijo", TOV_METHOD, arguments, 2, nullptr, nullptr), 0);
  EXPECT_EQ(arguments[1].as.i16, 2024);
  clock.run = [](tov_invocation& call) { call.error.number = 99; };
  EXPECT_EQ(tov_call(evaluator, "EvaluatePosfijo", TOV_METHOD, arguments, 2, nullptr, nullptr), 99);
  EXPECT_EQ(tov_use_clock(evaluator, nullptr, nullptr), 0);
  EXPECT_EQ(clock.released, 1);
}

// --- Threads -----------------------------------------------------------------------

TEST_F(CInterface, LetsThreadsUseObjectsOfTheirOwn) {
  constexpr int kTurns = 2000;
  std::atomic<int> wrong{0};
  const auto work = [&](double factor) {
    for (int turn = 0; turn < kTurns; ++turn) {
      tov_handle list = 0;
      wrong += tov_create("Collection", &list, nullptr) != 0;
      wrong += Call(list, "Add", {tov_double(factor * turn), tov_text("clave")}) != 0;
      tov_value result = tov_empty();
      wrong += Call(list, "Item", {tov_text("CLAVE")}, &result) != 0;
      wrong += result.as.f64 != factor * turn;
      wrong += tov_release(list, nullptr) != 0;
      wrong += Call(list, "Item", {tov_long(1)}) != 424;
    }
  };
  std::thread other(work, 2.0);
  work(3.0);
  other.join();
  EXPECT_EQ(wrong, 0);
}

// What is reached from an object that another thread is in is in use, and what is given
// back meanwhile goes when that thread leaves.
TEST_F(Macros, KeepOtherThreadsOutOfTheirObjects) {
  Handle record("Campo");
  Handle alone("Collection");
  tov_value prepared = tov_empty();
  EXPECT_EQ(Call(evaluator_, "Preparar", {tov_text("1")}, &prepared), 0);
  EXPECT_EQ(
      tov_call(record, "Name", TOV_LET, std::array{tov_text("R")}.data(), 1, nullptr, nullptr), 0);
  tov_value variables = tov_empty();
  EXPECT_EQ(tov_call(evaluator_, "Variables", TOV_GET, nullptr, 0, &variables, nullptr), 0);
  EXPECT_EQ(Call(variables.as.handle, "Add", {tov_object(record)}), 0);

  script_.run = [&](tov_invocation& call) {
    std::thread([&] {
      tov_error error{};
      EXPECT_EQ(Evaluate("1", nullptr, &error), kObjectError);
      EXPECT_NE(std::string(error.description.as.utf8).find("otro hilo"), std::string::npos);
      tov_clear_error(&error);
      EXPECT_EQ(tov_call(prepared.as.handle, "Texto", TOV_GET, nullptr, 0, nullptr, nullptr),
                kObjectError);
      EXPECT_EQ(tov_call(record, "Name", TOV_GET, nullptr, 0, nullptr, nullptr), kObjectError);
      EXPECT_EQ(Call(alone, "Add", {tov_object(record)}), kObjectError);
      EXPECT_EQ(Call(alone, "Add", {tov_long(1)}), 0);
      tov_clear(&prepared);
      tov_clear(&variables);
      EXPECT_EQ(tov_release(evaluator_.Take(), nullptr), 0);
    }).join();
    EXPECT_EQ(script_.released, 0);
    call.arguments[1] = tov_long(3);
  };
  tov_value value = tov_empty();
  EXPECT_EQ(Evaluate("MACRO() + 1", &value), 0);
  EXPECT_EQ(value.as.f64, 4);
  EXPECT_EQ(script_.released, 1);
}

// Two threads on one object, against the rules: answers, and no more.
TEST_F(CInterface, SurvivesThreadsOnTheSameObject) {
  constexpr int kTurns = 3000;
  Handle shared("Collection");
  const auto work = [&] {
    for (int turn = 0; turn < kTurns; ++turn) {
      tov_handle item = 0;
      EXPECT_EQ(tov_create("Campo", &item, nullptr), 0);
      const std::int32_t added = Call(shared, "Add", {tov_object(item)});
      EXPECT_TRUE(added == 0 || added == kObjectError) << added;
      tov_value back = tov_empty();
      const std::int32_t got = Call(shared, "Item", {tov_long(1)}, &back);
      EXPECT_TRUE(got == 0 || got == 9 || got == kObjectError) << got;
      if (turn % 3 == 0) Call(shared, "Remove", {tov_long(1)});
      EXPECT_EQ(tov_retain(shared, nullptr), 0);
      tov_clear(&back);
      EXPECT_EQ(tov_release(item, nullptr), 0);
      EXPECT_EQ(tov_release(shared, nullptr), 0);
    }
  };
  std::thread other(work);
  work();
  other.join();
}

}  // namespace
}  // namespace tovalin
