#include <gtest/gtest.h>

#include "tests/forms/fakes.h"
#include "tovalin/lib_general.h"

namespace tovalin {
namespace {

class Focus : public testing::Test {
 protected:
  Focus() {
    HostServices host;
    host.message_box = [this](TextView prompt, std::int32_t buttons, TextView title) {
      EXPECT_EQ(buttons, 0);
      EXPECT_EQ(title, u"");
      messages.push_back(ToUtf8(prompt));
      return kOkButton;
    };
    host.active_control = [this] { return active; };
    general.UseHost(std::move(host));
  }

  Variant Leave(ControlKind kind) { return general.LostFocus(field.As(kind), bar.Bar()); }

  LibGeneral general;
  FakeField field;
  FakeStatusBar bar;
  Ref<Object> active;
  std::vector<std::string> messages;
};

constexpr const char* kWrongType = "Tipo de dato no válido para el campo";
constexpr const char* kNotInList = "Debe seleccionar un elemento de la lista";

TEST_F(Focus, LosingItMarksTextsByTheirTag) {
  struct {
    const char16_t* text;
    const char16_t* tag;
    const char* tag_after;
    const char* message;
  } const kCases[] = {
      {u"abc", u"»»»0»abc»", "»»»0»abc»", ""},
      {u"abd", u"»»»0»abc»", "»»»1»abc»", ""},
      {u"abc", u"»»»1»abc»", "»»»0»abc»", ""},
      {u"ABC", u"»»»0»abc»", "»»»1»abc»", ""},
      {u"abc", u"»»»0»»7»", "»»»0»»7»", kWrongType},
      {u"abc", u"»»»1»»7»", "»»»0»»7»", kWrongType},
      {u"abc", u"»»»0»abc»7»", "»»»0»abc»7»", ""},  // not changed: not checked
      {u"07/03/2004", u"»»»0»»7»", "»»»1»»7»", ""},
      {u"12,5", u"»»»0»»2»", "»»»1»»2»", ""},
      {u"", u"»»»0»1»5»", "»»»0»1»5»", kWrongType},
      {u"x", u"»»»0»»8»", "»»»1»»8»", ""},
      {u"x", u"»»»0»»7", "»»»1»»7", ""},  // field 6 has no separator after it
      {u"x", u"»»", "»»", ""},
      {u"", u"", "", ""},
  };
  for (const ControlKind kind : {ControlKind::TextBox, ControlKind::MaskedEdit})
    for (const auto& c : kCases) {
      field.text = c.text;
      field.tag = c.tag;
      field.focused = 0;
      messages.clear();
      EXPECT_TRUE(Leave(kind).Is(Subtype::Empty));
      EXPECT_EQ(ToUtf8(field.tag), c.tag_after) << ToUtf8(c.text) << " " << ToUtf8(c.tag);
      const std::vector<std::string> expected(*c.message ? 1 : 0, c.message);
      EXPECT_EQ(messages, expected) << ToUtf8(c.text) << " " << ToUtf8(c.tag);
      EXPECT_EQ(field.focused, *c.message ? 1 : 0);
    }
}

TEST_F(Focus, LosingItSelectsTheTypedItemOfAComboBox) {
  struct {
    const char16_t* text;
    int index;
    const char16_t* initial;
    int index_after;
    bool message;
    const char* mark;
  } const kCases[] = {
      {u"Cali", -1, u"-1", 1, false, "1"},
      {u"Cali", -1, u"1", 1, false, "0"},
      {u"cali", -1, u"-1", -1, true, "0"},
      {u"Cal", -1, u"2", -1, true, "1"},
      {u"", -1, u"-1", -1, false, "0"},
      {u"otra", 2, u"2", 2, false, "0"},  // an item is selected: nothing is looked for
      {u"otra", 2, u"0", 2, false, "1"},
  };
  field.items = {u"Bogotá", u"Cali", u"Cali", u""};
  for (const auto& c : kCases) {
    field.text = c.text;
    field.list_index = c.index;
    field.tag = u"»»»?»" + Text(c.initial) + u"»";
    field.focused = 0;
    messages.clear();
    Leave(ControlKind::ComboBox);
    EXPECT_EQ(field.list_index, c.index_after) << ToUtf8(c.text);
    EXPECT_EQ(messages, std::vector<std::string>(c.message ? 1 : 0, kNotInList)) << ToUtf8(c.text);
    EXPECT_EQ(field.focused, c.message ? 1 : 0) << ToUtf8(c.text);
    EXPECT_EQ(ToUtf8(general.GetTag(field.tag, 4)), c.mark) << ToUtf8(c.text);
  }
}

TEST_F(Focus, LosingItMarksListsAndValues) {
  struct {
    ControlKind kind;
    Variant value;
    const char16_t* initial;
    const char* mark;
  } const kCases[] = {
      {ControlKind::ListBox, std::int32_t{3}, u"3", "0"},
      {ControlKind::ListBox, std::int32_t{3}, u"-1", "1"},
      {ControlKind::CheckBox, std::int16_t{1}, u"1", "0"},
      {ControlKind::CheckBox, std::int16_t{1}, u"0", "1"},
      {ControlKind::ValueControl, true, u"Verdadero", "0"},
      {ControlKind::ValueControl, Date{38053}, u"07/03/2004", "0"},
      {ControlKind::ValueControl, Date{38053}, u"08/03/2004", "1"},
      {ControlKind::Other, std::int32_t{3}, u"9", "0"},
      {ControlKind::Form, std::int32_t{3}, u"9", "0"},
  };
  for (const auto& c : kCases) {
    field.value = c.value;
    field.list_index = c.kind == ControlKind::ListBox ? c.value.AsLong() : -1;
    field.tag = u"»»»?»" + Text(c.initial) + u"»";
    Leave(c.kind);
    EXPECT_EQ(ToUtf8(general.GetTag(field.tag, 4)), c.mark) << ToUtf8(c.initial);
  }
  EXPECT_TRUE(messages.empty());
}

TEST_F(Focus, LosingItClearsTheStatusBarThatIsGiven) {
  Leave(ControlKind::TextBox);
  EXPECT_EQ(bar.shown, std::vector<std::string>{""});
  general.LostFocus(field.As(ControlKind::TextBox));
  EXPECT_EQ(bar.shown.size(), 1u);
}

TEST_F(Focus, LosingItRaisesWhatTheControlCannotAnswer) {
  const auto leave = [&](const Variant& control) {
    return RaisedBy([&] { general.LostFocus(control); }).number;
  };
  EXPECT_EQ(leave(Variant(5)), 424);
  EXPECT_EQ(leave(Ref<Object>()), 91);
  EXPECT_EQ(leave(Ref<Object>(Make<Collection>())), 438);
  field.tag = u"»»»0»»fecha»";
  field.text = u"x";
  EXPECT_EQ(leave(field.As(ControlKind::TextBox)), 13);
  EXPECT_EQ(ToUtf8(field.tag), "»»»0»»fecha»");
}

TEST_F(Focus, LosingItKeepsATagThatTheMessageChanged) {
  HostServices host;
  host.message_box = [this](TextView, std::int32_t, TextView) {
    field.tag = u"otro»»»1»»7»";
    general.UseHost({});  // takes this very function away
    return kOkButton;
  };
  general.UseHost(std::move(host));
  field.text = u"abc";
  field.tag = u"»»»1»»7»";
  Leave(ControlKind::TextBox);
  EXPECT_EQ(ToUtf8(field.tag), "otro»»»0»»7»");
}

TEST(FocusWithoutHost, WritesMessagesToStandardError) {
  FakeField field;
  field.text = u"abc";
  field.tag = u"»»»0»»7»";
  testing::internal::CaptureStderr();
  LibGeneral().LostFocus(field.As(ControlKind::TextBox));
  EXPECT_EQ(testing::internal::GetCapturedStderr(), std::string(kWrongType) + "\n");
  EXPECT_EQ(field.focused, 1);
}

TEST_F(Focus, GainingItShowsTheTextOrTheHelpOfTheTag) {
  field.tag = u"a»b»Escriba el nombre»0»x»";
  const Ref<Object> box = field.As(ControlKind::TextBox);
  general.GotFocus(box, u"Nombre", bar.Bar());
  general.GotFocus(box, {}, bar.Bar());
  general.GotFocus(nullptr, u"Sin control", bar.Bar());
  EXPECT_EQ(bar.shown, (std::vector<std::string>{"Nombre", "Escriba el nombre", "Sin control"}));
  EXPECT_EQ(ToUtf8(field.tag), "a»b»Escriba el nombre»0»x»");
  EXPECT_EQ(field.selection_start, 77);
}

TEST_F(Focus, GainingItIgnoresErrors) {
  general.GotFocus(Make<Collection>(), {}, bar.Bar());
  general.GotFocus(nullptr, {}, bar.Bar());
  general.GotFocus(field.As(ControlKind::TextBox), u"Nombre", Make<Collection>());
  EXPECT_TRUE(bar.shown.empty());
}

TEST_F(Focus, StatusBarMayBeTheHostsOwn) {
  std::vector<std::pair<std::string, bool>> shown;
  HostServices host;
  host.status_bar = [&](const Ref<Object>&, TextView text, bool pause) {
    shown.emplace_back(ToUtf8(text), pause);
  };
  general.UseHost(std::move(host));
  general.MsgBar(Make<Collection>(), u"Guardado", true);
  general.MsgBar(nullptr, u"nadie lo ve");
  general.GotFocus(nullptr, u"Nombre", Make<Collection>());
  EXPECT_EQ(shown,
            (std::vector<std::pair<std::string, bool>>{{"Guardado", true}, {"Nombre", false}}));
}

TEST_F(Focus, SelectTextSelectsTextControlsAlone) {
  struct {
    ControlKind kind;
    int most;
    int start, length;
  } const kCases[] = {
      {ControlKind::TextBox, 0, 0, 5},      {ControlKind::TextBox, 3, 0, 3},
      {ControlKind::MaskedEdit, 10, 0, 10}, {ControlKind::ComboBox, 0, 77, 77},
      {ControlKind::Other, 0, 77, 77},
  };
  for (const bool given : {true, false})
    for (const auto& c : kCases) {
      field = {};
      field.text = u"Ñandú";
      field.most_characters = c.most;
      const Ref<Object> control = field.As(c.kind);
      active = given ? nullptr : control;
      general.SelectText(given ? control : nullptr);
      EXPECT_EQ(field.selection_start, c.start);
      EXPECT_EQ(field.selection_length, c.length);
    }
  LibGeneral().SelectText();  // no host, no active control: nothing to do
}

TEST(IsControl, GoesByTheKindAlone) {
  FakeField field;
  const LibGeneral general;
  for (const ControlKind kind :
       {ControlKind::TextBox, ControlKind::MaskedEdit, ControlKind::ComboBox, ControlKind::ListBox,
        ControlKind::CheckBox, ControlKind::ValueControl})
    EXPECT_TRUE(general.IsControl(MakeControl(kind, {}))) << static_cast<int>(kind);
  for (const ControlKind kind :
       {ControlKind::Grid, ControlKind::ListView, ControlKind::Form, ControlKind::Other})
    EXPECT_FALSE(general.IsControl(field.As(kind))) << static_cast<int>(kind);
  EXPECT_FALSE(general.IsControl(nullptr));
  EXPECT_FALSE(general.IsControl(Make<Collection>()));
}

}  // namespace
}  // namespace tovalin
