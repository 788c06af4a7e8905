#include <algorithm>
#include <deque>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tests/fuzz/fuzz_input.h"
#include "tests/fuzz/path_arguments.h"
#include "tests/fuzz/scratch_directory.h"
#include "tovalin/factory.h"
#include "tovalin/tovalin_c.h"

// The C interface as a careless host uses it: every class and member, values of any type
// and of none, handles that are given back, out of range or of something else, ids at
// random, handlers that call, fail and let go of what calls them, arrays and tables.
// Nothing may crash, and every handle must come back.
//
// An input has the texts that arguments are taken from, a line each, and then choices.

namespace tovalin::fuzz {
namespace {

constexpr int kMostSteps = 64;
constexpr std::size_t kMostArguments = 10;

class Host {
 public:
  Host(const std::uint8_t* data, std::size_t size, const ScratchDirectory& directory)
      : input_(data, size), directory_(directory) {
    for (const Text& line : input_.TakeLines()) texts_.push_back({ToUtf8(line), line});
  }

  ~Host() {
    // What the calls put into one another may go in circles.
    for (std::size_t i = 0; i < held_.size(); ++i) Empty(held_[i]);
    ended_ = true;
    for (const tov_handle handle : std::exchange(held_, {})) tov_release(handle, nullptr);
    Require(tov_handles() == 0, "every handle comes back");
  }

  void Run() {
    for (int i = 0; i < kMostSteps && input_.HasChoices(); ++i) Step();
  }

 private:
  struct BothForms {
    std::string utf8;
    Text utf16;
  };

  void Step() {
    switch (input_.Below(16)) {
      case 0:
        return Keep(Create());
      case 1:
        return Release();
      case 2:
        return Attach();
      case 3:
        return UseArray();
      case 4:
        return EvaluateTable();
      case 5:
        return UseHandler();
      case 6:
        return CallById();
      case 7:
        return CallHostObject();
      case 8:
        return Copy();
      default:
        return CallByName();
    }
  }

  // --- Values

  void Keep(tov_handle handle) {
    if (handle != 0) held_.push_back(handle);
  }
  // What a call gave.
  void Keep(tov_value& value) {
    const bool owned = (value.flags & TOV_OWNED) != 0;
    if (owned && (value.type == TOV_OBJECT || value.type == TOV_ARRAY)) {
      Keep(value.as.handle);
      value = tov_empty();
    } else if (owned && value.encoding == TOV_UTF8) {
      Require(value.as.utf8[value.length] == 0, "a text ends with a 0");
      if (texts_.size() < 64 && value.length < 200)
        texts_.push_back({value.as.utf8, FromUtf8(value.as.utf8)});
    }
    tov_clear(&value);
  }

  tov_handle AnyHandle() {
    if (input_.Below(24) == 0) return input_.Bytes<std::uint64_t>();
    if (!stale_.empty() && input_.Below(24) == 0) return input_.OneOf(stale_);
    if (held_.empty()) Keep(Create());
    return held_.empty() ? 0 : held_[input_.Byte() % held_.size()];
  }

  tov_value AnyText() {
    const BothForms& text = texts_[input_.Byte() % texts_.size()];
    tov_value value = tov_text(text.utf8.c_str());
    if (input_.Below(2) == 0) {
      value.encoding = TOV_UTF16;
      value.as.utf16 = reinterpret_cast<const std::uint16_t*>(text.utf16.c_str());
    }
    if (input_.Below(2) == 0)
      value.length = value.encoding == TOV_UTF8 ? text.utf8.size() : text.utf16.size();
    return value;
  }

  tov_value AnyValue() {
    constexpr std::uint16_t kTypes[] = {TOV_EMPTY,  TOV_NULL,  TOV_INTEGER, TOV_LONG,
                                        TOV_SINGLE, TOV_ERROR, TOV_BOOLEAN, TOV_BYTE,
                                        TOV_DATE,   14,        12,          TOV_CURRENCY};
    tov_value value = tov_empty();
    value.encoding = static_cast<std::uint8_t>(input_.Below(2));
    switch (input_.Below(8)) {
      case 0:
        return tov_missing();
      case 1:
        return tov_double(input_.Double());
      case 2:
      case 3:
        return AnyText();
      case 4:
        value.type = input_.Below(4) == 0 ? TOV_ARRAY : TOV_OBJECT;
        value.as.handle = AnyHandle();
        return value;
      case 5:
        return tov_long(static_cast<std::int8_t>(input_.Byte()));
      default:
        value.type = kTypes[input_.Below(std::size(kTypes))];
        value.as.i64 = input_.Bytes<std::int32_t>();
        if (value.type == TOV_DATE) value.as.f64 = input_.Double();
        return value;
    }
  }

  // A value that is likely to convert: most calls should come to the member.
  tov_value ValueFor(const ValueType& type) {
    if (type.subtype == Subtype::String) return AnyText();
    if (type.subtype == Subtype::Object) return tov_object(AnyHandle());
    if (type.subtype == Subtype::Integer) return tov_long(input_.Byte() - 3);
    if (type.subtype == Subtype::Byte) return tov_long(input_.Byte());
    return AnyValue();
  }

  // --- Steps

  tov_handle Create() {
    const ClassInfo& info = *Classes()[input_.Byte() % Classes().size()];
    tov_handle object = 0;
    const std::int32_t failed = tov_create(ToUtf8(info.name).c_str(), &object, nullptr);
    Require((failed == 0) == (info.create != nullptr), "a class is made or not");
    tov_use_memory_settings(object, nullptr);
    const tov_handler handler = Handler();
    tov_use_clock(object, &handler, nullptr);
    tov_use_services(object, &handler, nullptr);
    return object;
  }

  void Release() {
    if (held_.empty()) return;
    const tov_handle handle = held_[input_.Byte() % held_.size()];
    if (std::ranges::count(held_, handle) == 1) Empty(handle);
    held_.erase(std::ranges::find(held_, handle));
    Require(tov_release(handle, nullptr) == 0, "a handle is good until it is given back");
    if (std::ranges::find(held_, handle) == held_.end()) stale_.push_back(handle);
  }

  void Copy() {
    const tov_value value = AnyValue();
    tov_value copy = tov_empty();
    if (tov_copy(&value, &copy, nullptr) == 0) Keep(copy);
  }

  struct Target {
    tov_handle object;
    const ClassInfo* info;
    const MemberInfo* member;
    std::optional<int> path;
  };

  // A member of the class of an object that is held, or none.
  Target AnyTarget() {
    Target target{AnyHandle(), nullptr, nullptr, {}};
    tov_value name = tov_empty();
    if (tov_class(target.object, &name, nullptr) != 0) return target;
    target.info = FindClass(FromUtf8(name.as.utf8));
    tov_clear(&name);
    if (!target.info || target.info->members.empty()) return target;
    target.member = &target.info->members[input_.Byte() % target.info->members.size()];
    target.path = RestrictedPath(target.member->name);
    if (target.path && *target.path < 0) target.member = nullptr;
    return target;
  }

  struct Given {
    tov_value values[kMostArguments];
    std::size_t count = 0;
    std::string path;
  };

  void Fill(Given& given, const Target& target) {
    const auto parameters = target.member->parameters;
    given.count = input_.Below(16) == 0 ? input_.Below(kMostArguments) : parameters.size();
    for (std::size_t i = 0; i < given.count; ++i)
      given.values[i] =
          i < parameters.size() && input_.Below(4) != 0 ? ValueFor(parameters[i].type) : AnyValue();
    if (!target.path || static_cast<std::size_t>(*target.path) >= given.count) return;
    const char* const names[] = {"uno", "dos", "nada/tres"};
    given.path = directory_.File(input_.OneOf(names)).string();
    given.values[*target.path] = tov_text(given.path.c_str());
  }

  template <class Call>
  void Finish(Given& given, Call call) {
    tov_value result = tov_empty();
    tov_error error{};
    error.encoding = result.encoding = static_cast<std::uint8_t>(input_.Below(2));
    const std::int32_t number = call(&result, &error);
    Require(number == error.number, "the struct tells the number that is answered");
    Require(number == 0 || error.description.type == TOV_STRING, "an error has a text");
    Require(number == 0 || result.type == TOV_EMPTY, "an error leaves the result as it was");
    tov_clear_error(&error);
    Keep(result);
    for (std::size_t i = 0; i < given.count; ++i) Keep(given.values[i]);
  }

  void CallByName() {
    const Target target = AnyTarget();
    if (!target.member) return;
    Given given;
    Fill(given, target);
    const std::string name = ToUtf8(target.member->name);
    Finish(given, [&](tov_value* result, tov_error* error) {
      return tov_call(target.object, name.c_str(), static_cast<int>(target.member->kind),
                      given.values, given.count, result, error);
    });
  }

  void CallById() {
    const Target target = AnyTarget();
    if (!target.member) return;
    Given given;
    Fill(given, target);
    tov_member id = 0;
    const std::int32_t failed =
        tov_find_member(ToUtf8(target.info->name).c_str(), ToUtf8(target.member->name).c_str(),
                        static_cast<int>(target.member->kind), &id, nullptr);
    Require(failed == 0, "a described member is found");
    // On an object of another class, or with an id that there is not.
    const tov_handle object = input_.Below(8) == 0 ? AnyHandle() : target.object;
    if (input_.Below(8) == 0) id |= 0x80000000U;
    Finish(given, [&](tov_value* result, tov_error* error) {
      return tov_call_id(object, id, given.values, given.count, result, error);
    });
  }

  void CallHostObject() {
    const tov_handler handler = Handler();
    tov_handle object = 0;
    const int kind = static_cast<int>(input_.Below(12)) - 1;
    if (tov_create_host_object(&handler, kind, &object, nullptr) != 0) return;
    Keep(object);
    Given given;
    given.count = input_.Below(kMostArguments);
    for (std::size_t i = 0; i < given.count; ++i) given.values[i] = AnyValue();
    Finish(given, [&](tov_value* result, tov_error* error) {
      return tov_call(object, "Algo", TOV_METHOD, given.values, given.count, result, error);
    });
  }

  void Attach() {
    const tov_handle object = AnyHandle();
    const tov_handler handler = Handler();
    const char* const names[] = {"Evaluate", "Response", "Nada"};
    const char* const name = input_.OneOf(names);
    std::int32_t attachment = 0;
    const bool attached = tov_attach(object, name, &handler, &attachment, nullptr) == 0;
    if (attached && input_.Below(4) == 0) tov_detach(object, name, attachment, nullptr);
  }

  void UseHandler() {
    const tov_handle object = AnyHandle();
    const tov_handler handler = Handler();
    tov_use_clock(object, input_.Below(2) == 0 ? &handler : nullptr, nullptr);
    tov_use_services(object, &handler, nullptr);
  }

  void UseArray() {
    tov_value array = tov_empty();
    if (tov_array_create(input_.Below(5), input_.Below(5), &array, nullptr) == 0) {
      const tov_handle handle = input_.Below(4) == 0 ? AnyHandle() : array.as.handle;
      for (std::size_t i = input_.Below(5); i > 0; --i) {
        const tov_value element = AnyValue();
        tov_array_set(handle, input_.Below(5), input_.Below(5), &element, nullptr);
      }
      tov_value out = tov_empty();
      tov_array_get(handle, input_.Below(5), input_.Below(5), &out, nullptr);
      Keep(out);
    }
    Keep(array);
  }

  void EvaluateTable() {
    double numbers[8];
    for (double& number : numbers) number = input_.Double();
    tov_value values[4];
    for (tov_value& value : values) value = AnyValue();
    double results[4];
    tov_value result_values[4] = {};
    const tov_column columns[] = {{"A", numbers, input_.Below(2) == 0 ? 16 : 0, TOV_DOUBLE},
                                  {"Salario", values, 0, TOV_EMPTY}};
    const bool doubles = input_.Below(2) == 0;
    const tov_column of_results = {nullptr, doubles ? static_cast<void*>(results) : result_values,
                                   0, doubles ? TOV_DOUBLE : TOV_EMPTY};
    tov_row_error errors[2] = {};
    std::size_t failed = 0;
    tov_evaluate_table(AnyHandle(), columns, input_.Below(3), input_.Below(5), &of_results, errors,
                       2, &failed, nullptr);
    Require(failed <= 4, "a row fails once");
    for (tov_row_error& error : errors) tov_clear_error(&error.error);
    for (tov_value& value : result_values) Keep(value);
  }

  // --- Handlers

  tov_handler Handler() {
    return {[](void* context, tov_invocation* call) { static_cast<Host*>(context)->Handle(*call); },
            this, nullptr, static_cast<std::int32_t>(input_.Below(2))};
  }

  void Handle(tov_invocation& call) {
    if (ended_ || depth_ == 3) return;
    ++depth_;
    for (std::uint32_t i = 0; i < call.count; ++i)
      if (input_.Below(3) == 0) call.arguments[i] = AnyValue();
    if (input_.Below(8) == 0) {
      call.error.number = input_.Byte();
      call.error.description = AnyValue();
    }
    // Few and small, since a control may say how often it is asked again.
    call.result = input_.Below(2) == 0 ? tov_long(static_cast<int>(input_.Below(4))) : AnyText();
    if (input_.Below(4) == 0) call.result = tov_object(AnyHandle());
    if (input_.HasChoices()) Step();
    --depth_;
  }

  // --- The end

  // No handler does anything meanwhile.
  void Empty(tov_handle object) {
    const bool ended = std::exchange(ended_, true);
    tov_value first = tov_long(1);
    // An object of ours would take it for ever.
    for (int i = 0; i < 1000; ++i)
      if (tov_call(object, "Remove", TOV_METHOD, &first, 1, nullptr, nullptr) != 0) break;
    tov_value nothing = tov_empty();
    tov_call(object, "Value", TOV_LET, &nothing, 1, nullptr, nullptr);
    tov_call(object, "Direction", TOV_LET, &nothing, 1, nullptr, nullptr);
    for (const char* table : {"Variables", "Constantes", "Functions", "Operadores"}) {
      tov_value records = tov_empty();
      if (tov_call(object, table, TOV_GET, nullptr, 0, &records, nullptr) != 0) continue;
      EmptyRecords(records.as.handle);
      tov_clear(&records);
    }
    EmptyRecords(object);
    ended_ = ended;
  }

  void EmptyRecords(tov_handle table) {
    for (std::int32_t i = 1; i < 1000; ++i) {
      tov_value index = tov_long(i), record = tov_empty(), nothing = tov_empty();
      if (tov_call(table, "Item", TOV_METHOD, &index, 1, &record, nullptr) != 0) return;
      tov_call(record.as.handle, "Value", TOV_LET, &nothing, 1, nullptr, nullptr);
      tov_call(record.as.handle, "Direction", TOV_LET, &nothing, 1, nullptr, nullptr);
      tov_clear(&record);
    }
  }

  Input input_;
  const ScratchDirectory& directory_;
  std::deque<BothForms> texts_;   // where a text stays in its place
  std::vector<tov_handle> held_;  // one for each reference
  std::vector<tov_handle> stale_;
  int depth_ = 0;
  bool ended_ = false;
};

}  // namespace
}  // namespace tovalin::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const tovalin::fuzz::ScratchDirectory directory;
  tovalin::fuzz::Host(data, size, directory).Run();
  return 0;
}
