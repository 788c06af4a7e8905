#include "tovalin/control.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "tests/forms/fakes.h"

namespace tovalin {
namespace {

/// The number of the error of a late-bound call, 0 for none.
int Call(Object& object, TextView name, MemberKind kind, std::vector<Variant> arguments,
         Variant* result = nullptr) {
  Variant ignored;
  const auto error = object.Invoke(name, kind, arguments, result ? *result : ignored);
  return error ? error->number : 0;
}

TEST(MakeControl, AnswersPropertiesByName) {
  FakeField field;
  const Ref<Control> box = field.As(ControlKind::TextBox);
  EXPECT_EQ(box->Kind(), ControlKind::TextBox);
  EXPECT_EQ(Call(*box, u"text", MemberKind::Let, {u"año"}), 0);
  EXPECT_EQ(field.text, u"año");
  Variant text;
  EXPECT_EQ(Call(*box, u"TEXT", MemberKind::Get, {}, &text), 0);
  EXPECT_EQ(text.AsText(), u"año");
  EXPECT_EQ(Call(*box, u"SetFocus", MemberKind::Method, {}), 0);
  EXPECT_EQ(field.focused, 1);
}

TEST(MakeControl, ConvertsIndicesAndValues) {
  std::vector<double> widths = {10, 20};
  const Ref<Control> grid = MakeControl(
      ControlKind::Grid,
      {{u"ColWidth", [&](std::int32_t i) { return widths.at(static_cast<std::size_t>(i)); },
        [&](std::int32_t i, double width) { widths.at(static_cast<std::size_t>(i)) = width; }}});
  EXPECT_EQ(Call(*grid, u"ColWidth", MemberKind::Let, {u"1", u"37.5"}), 0);
  EXPECT_EQ(widths[1], 37.5);
  Variant width;
  EXPECT_EQ(Call(*grid, u"ColWidth", MemberKind::Get, {Variant(0.5)}, &width), 0);  // rounds to 0
  EXPECT_EQ(width.AsDouble(), 10);
}

TEST(MakeControl, CarriesByReferenceArgumentsBack) {
  const Ref<Control> control =
      MakeControl(ControlKind::Other, {{u"Doble", [](std::int32_t& number) { number *= 2; }}});
  Variant number = std::int16_t{21};
  std::vector<Variant> arguments = {Variant::ByReference(number)};
  Variant nothing;
  EXPECT_FALSE(control->Invoke(u"Doble", MemberKind::Method, arguments, nothing));
  EXPECT_EQ(number.AsLong(), 42);
}

TEST(MakeControl, TellsWhatFailed) {
  const Ref<Control> control = MakeControl(
      ControlKind::Other,
      {{u"Left", [] { return 1; }},
       {u"Top", [] { return 1; }, [](std::int32_t) { Raise(Failure::Overflow); }},
       {u"Falla", [](std::int32_t) -> Text { throw std::runtime_error("sin conexión"); }}});
  struct {
    const char16_t* name;
    MemberKind kind;
    std::vector<Variant> arguments;
    int error;
  } const kCases[] = {
      {u"Width", MemberKind::Get, {}, 438},
      {u"Left", MemberKind::Let, {5}, 438},
      {u"Left", MemberKind::Get, {5}, 450},
      {u"Top", MemberKind::Let, {}, 449},
      {u"Top", MemberKind::Let, {u"abc"}, 13},
      {u"Top", MemberKind::Let, {5}, 6},
      {u"Falla", MemberKind::Method, {5}, kObjectError},
      {u"", MemberKind::Get, {}, 438},
  };
  for (const auto& c : kCases)
    EXPECT_EQ(Call(*control, c.name, c.kind, c.arguments), c.error) << ToUtf8(c.name);
  Variant nothing;
  std::vector<Variant> one = {5};
  const auto error = control->Invoke(u"Falla", MemberKind::Get, one, nothing);
  ASSERT_TRUE(error);
  EXPECT_EQ(ToUtf8(error->description), "sin conexión");
}

TEST(MakeControl, LivesThroughACallThatDropsIt) {
  Ref<Control> control;
  const auto alive = std::make_shared<int>(1);
  control = MakeControl(ControlKind::Other, {{u"Unload", [&control, alive] {
                                                control = nullptr;
                                                return *alive;
                                              }}});
  Variant result;
  Control* const target = control.get();
  EXPECT_EQ(Call(*target, u"Unload", MemberKind::Method, {}, &result), 0);
  EXPECT_EQ(result.AsLong(), 1);
  EXPECT_EQ(alive.use_count(), 1);
}

}  // namespace
}  // namespace tovalin
