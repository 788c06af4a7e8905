#include <algorithm>
#include <optional>

#include "tests/fuzz/fuzz_input.h"
#include "tests/fuzz/path_arguments.h"
#include "tests/fuzz/scratch_directory.h"
#include "tovalin/evaluador.h"
#include "tovalin/factory.h"
#include "tovalin/lib_fecha.h"
#include "tovalin/lib_general.h"

// Late-bound calls of every described member of every class that a host can create,
// with arguments of any subtype, by reference and by value, too few and too many.
//
// An input has the texts that arguments are taken from, a line each, and then choices.

namespace tovalin::fuzz {
namespace {

constexpr int kMostCalls = 48;

class Silence : public SettingsStore {
 public:
  void Save(TextView, TextView, TextView, TextView) override {}
  Text Get(TextView, TextView, TextView, TextView otherwise) const override {
    return Text(otherwise);
  }
};

class Calls {
 public:
  Calls(const std::uint8_t* data, std::size_t size, const ScratchDirectory& directory)
      : input_(data, size), directory_(directory), lines_(input_.TakeLines()) {}

  // What the calls put into one another may go in circles.
  ~Calls() {
    ended_ = true;
    for (std::size_t i = 0; i < objects_.size(); ++i) Empty(*objects_[i]);
  }

  void Run() {
    for (int i = 0; i < kMostCalls && input_.HasChoices(); ++i) Call();
  }

 private:
  void Empty(Object& object) {
    if (auto* collection = dynamic_cast<Collection*>(&object))
      while (collection->Count() > 0) collection->Remove(1);
    if (auto* record = dynamic_cast<Campo*>(&object)) EmptyRecord(*record);
    if (auto* table = dynamic_cast<Campos*>(&object)) EmptyTable(*table);
    if (auto* evaluator = dynamic_cast<Evaluador*>(&object))
      for (const Ref<Campos>& table : {evaluator->Variables(), evaluator->Constantes(),
                                       evaluator->Functions(), evaluator->Operadores()})
        EmptyTable(*table);
  }
  void EmptyTable(Campos& table) {
    for (const Ref<Campo>& record : table.List().Items()) EmptyRecord(*record);
  }
  void EmptyRecord(Campo& record) {
    record.LetValue({});
    record.LetDirection({});
  }

  void Call() {
    const Ref<Object> object = AnyObject();
    const ClassInfo& info = object->Class();
    if (!info.events.empty() && input_.Below(8) == 0) return Attach(*object, info);
    if (info.members.empty()) return;
    const MemberInfo& member = info.members[input_.Byte() % info.members.size()];
    const std::optional<int> path = RestrictedPath(member.name);
    if (path && *path < 0) return;

    std::vector<Variant> values = Arguments(member);
    if (path && static_cast<std::size_t>(*path) < values.size())
      values[static_cast<std::size_t>(*path)] = PathHere();
    std::vector<Variant> passed;
    for (Variant& value : values)
      passed.push_back(input_.Below(2) == 0 ? Variant::ByReference(value) : value);
    Variant result;
    if (object->Invoke(member.name, member.kind, passed, result)) return;
    CheckResult(member, result);
    Keep(result);
    for (const Variant& value : values) Keep(value);
  }

  void CheckResult(const MemberInfo& member, const Variant& result) {
    const Subtype promised = member.result.subtype;
    if (promised != Subtype::Variant)
      Require(result.Is(promised), "a member gives the subtype that it promises");
  }

  // A handler that calls something itself.
  void Attach(Object& object, const ClassInfo& info) {
    const EventInfo& event = info.events[input_.Byte() % info.events.size()];
    object.Attach(event.name, [this](std::span<Variant> arguments) {
      if (ended_ || depth_ == 3) return;
      ++depth_;
      for (Variant& argument : arguments)
        if (argument.IsByReference() && input_.Below(2) == 0) argument.Assign(AnyValue());
      if (input_.HasChoices()) Call();
      --depth_;
    });
  }

  std::vector<Variant> Arguments(const MemberInfo& member) {
    std::size_t count = member.parameters.size();
    if (input_.Below(16) == 0) count = input_.Below(MemberInfo::kMostParameters + 2);
    std::vector<Variant> values(count);
    for (std::size_t i = 0; i < count; ++i) {
      const bool declared = i < member.parameters.size();
      values[i] =
          declared && input_.Below(4) != 0 ? ValueFor(member.parameters[i].type) : AnyValue();
    }
    return values;
  }

  // A value that is likely to convert: most calls should come to the member.
  Variant ValueFor(const ValueType& type) {
    switch (type.subtype) {
      case Subtype::Object:
        return ObjectOf(type.class_name);
      case Subtype::String:
        return input_.OneOf(lines_);
      case Subtype::Integer:
        return Variant(static_cast<std::int16_t>(input_.Byte() - 3));
      case Subtype::Byte:
        return Variant(input_.Byte());
      case Subtype::Date:
        return Date{static_cast<double>(input_.Bytes<std::int32_t>() % 3000000)};
      default:
        return AnyValue();
    }
  }

  Variant AnyValue() {
    switch (input_.Below(8)) {
      case 0:
        return Variant::Missing();
      case 1:
        return AnyObject();
      case 2:
        return Array();
      case 3:
        return Variant(Ref<Object>());
      default:
        return input_.Scalar(lines_);
    }
  }

  Variant Array() {
    auto array = Make<VariantArray>(input_.Below(5), input_.Below(5));
    for (std::size_t column = 0; column < array->Columns(); ++column)
      for (std::size_t row = 0; row < array->Rows(); ++row)
        array->At(column, row) = input_.Scalar(lines_);
    return array;
  }

  Ref<Object> AnyObject() {
    if (!objects_.empty() && input_.Below(2) == 0) return objects_[input_.Byte() % objects_.size()];
    static const std::vector<const ClassInfo*> classes = [] {
      std::vector<const ClassInfo*> creatable;
      std::ranges::copy_if(Classes(), std::back_inserter(creatable), &ClassInfo::create);
      return creatable;
    }();
    return MakeObject(classes[input_.Byte() % classes.size()]->name);
  }

  Variant ObjectOf(TextView class_name) {
    for (std::size_t i = objects_.size(); i-- > 0;)
      if (class_name.empty() || objects_[i]->Class().name == class_name)
        if (input_.Below(3) != 0) return objects_[i];
    if (class_name.empty()) return AnyObject();
    try {
      return MakeObject(class_name);
    } catch (const Error&) {
      return {};  // a class that others make, such as Formula
    }
  }

  Ref<Object> MakeObject(TextView class_name) {
    const Ref<Object> object = CreateObject(class_name);
    if (auto* evaluator = dynamic_cast<Evaluador*>(object.get())) {
      evaluator->UseSettings(Make<Silence>());
      evaluator->UseClock([] { return Date{45337.5}; });
    } else if (auto* fecha = dynamic_cast<LibFecha*>(object.get())) {
      fecha->UseClock([] { return Date{45337.5}; });
    } else if (auto* forms = dynamic_cast<LibGeneral*>(object.get())) {
      forms->UseSettings(Make<Silence>());
      forms->UseHost({.active_control = [this] { return AnyObject(); },
                      .message_box = [](TextView, std::int32_t, TextView) { return kOkButton; },
                      .status_bar = {}});
    }
    return Keep(object);
  }

  const Ref<Object>& Keep(const Ref<Object>& object) {
    if (std::ranges::find(objects_, object) == objects_.end()) objects_.push_back(object);
    return object;
  }
  void Keep(const Variant& value) {
    if (value.Is(Subtype::Object) && value.AsObject()) Keep(value.AsObject());
    if (value.Is(Subtype::String) && lines_.size() < 64 && value.AsText().size() < 200)
      lines_.push_back(value.AsText());
  }

  Variant PathHere() {
    const char* const names[] = {"uno", "dos", "nada/tres"};
    return FromUtf8(directory_.File(input_.OneOf(names)).string());
  }

  Input input_;
  const ScratchDirectory& directory_;
  std::vector<Text> lines_;
  std::vector<Ref<Object>> objects_;
  int depth_ = 0;
  bool ended_ = false;
};

}  // namespace
}  // namespace tovalin::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const tovalin::fuzz::ScratchDirectory directory;
  tovalin::fuzz::Calls(data, size, directory).Run();
  return 0;
}
