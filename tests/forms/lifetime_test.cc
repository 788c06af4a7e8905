#include <gtest/gtest.h>

#include "tests/forms/fakes.h"
#include "tovalin/lib_general.h"

// The host's code runs in the middle of nearly every member of LibGeneral: it may drop its
// last reference on the object, or on a control, there. The sanitizers tell.

namespace tovalin {
namespace {

class DroppingSettings : public MemorySettings {
 public:
  explicit DroppingSettings(std::function<void()> drop) : drop_(std::move(drop)) {}
  Text Get(TextView application, TextView section, TextView key,
           TextView otherwise) const override {
    drop_();
    return MemorySettings::Get(application, section, key, otherwise);
  }
  void Save(TextView application, TextView section, TextView key, TextView text) override {
    drop_();
    MemorySettings::Save(application, section, key, text);
  }

 private:
  std::function<void()> drop_;
};

struct Stage {
  Stage() {
    HostServices host;
    host.message_box = [this, box = Text(100, u'x')](TextView, std::int32_t, TextView) {
      Drop();
      return box.empty() ? 0 : kOkButton;
    };
    host.status_bar = [this, box = Text(100, u'x')](const Ref<Object>& bar, TextView, bool) {
      Drop();
      EXPECT_TRUE(bar && !box.empty());
    };
    host.active_control = [this, box = Text(100, u'x')] {
      Drop();
      return box.empty() ? nullptr : Ref<Object>(Field());
    };
    general->UseHost(std::move(host));
    general->LetgbolCUI(true);
    general->UseSettings(Make<DroppingSettings>([this] { Drop(); }));
  }

  void Drop() {
    ++drops;
    control = nullptr;
    if (general) general->UseHost({});
    general = nullptr;
  }

  /// A control whose members drop everything.
  Ref<Object> Field() {
    const auto text = [this](const char16_t* name, const char16_t* value) {
      return ControlMember(
          name,
          [this, value] {
            Drop();
            return Text(value);
          },
          [this](Text) { Drop(); });
    };
    const auto number = [this](const char16_t* name) {
      return ControlMember(
          name,
          [this] {
            Drop();
            return std::int32_t{0};
          },
          [this](std::int32_t) { Drop(); });
    };
    return MakeControl(kind, {text(u"Text", u"abc"),
                              text(u"Tag", u"»»»0»»7»"),
                              {u"SetFocus", [this] { Drop(); }},
                              number(u"SelStart"),
                              number(u"SelLength"),
                              number(u"MaxLength"),
                              number(u"Width"),
                              number(u"Height"),
                              number(u"Left"),
                              number(u"Top"),
                              number(u"WindowState")});
  }

  /// A control that drops nothing.
  Ref<Object> Quiet() {
    field.text = u"abc";
    field.tag = u"»»»0»»7»";
    return field.As(ControlKind::TextBox);
  }

  Ref<LibGeneral> general = Make<LibGeneral>();
  Ref<Object> control;
  ControlKind kind = ControlKind::TextBox;
  FakeField field;
  int drops = 0;
};

struct Member {
  const char* name;
  void (*call)(Stage& stage, LibGeneral& general);
};

const Member kMembers[] = {
    {"LostFocus of the control",
     [](Stage& stage, LibGeneral& general) {
       stage.control = stage.Field();
       general.LostFocus(Variant(stage.control), Make<Collection>());
     }},
    {"LostFocus with a message box",
     [](Stage& stage, LibGeneral& general) {
       general.LostFocus(Variant(stage.Quiet()), Make<Collection>());
     }},
    {"GotFocus of the control",
     [](Stage& stage, LibGeneral& general) {
       stage.control = stage.Field();
       general.GotFocus(stage.control, {}, Make<Collection>());
     }},
    {"GotFocus with a text",
     [](Stage& stage, LibGeneral& general) {
       general.GotFocus(stage.Quiet(), u"ayuda", Make<Collection>());
     }},
    {"SelectText of the active control", [](Stage&, LibGeneral& general) { general.SelectText(); }},
    {"MsgBar", [](Stage&, LibGeneral& general) { general.MsgBar(Make<Collection>(), u"x"); }},
    {"SaveControlProperties of the control",
     [](Stage& stage, LibGeneral& general) {
       stage.kind = ControlKind::Form;
       stage.control = stage.Field();
       general.SaveControlProperties(u"Formas", u"una", stage.control);
     }},
    {"SaveControlProperties in the settings",
     [](Stage& stage, LibGeneral& general) {
       stage.kind = ControlKind::Form;
       const Ref<Object> control = stage.Field();
       general.SaveControlProperties(u"Formas", u"una", control);
     }},
    {"GetControlProperties",
     [](Stage& stage, LibGeneral& general) {
       stage.kind = ControlKind::Form;
       stage.control = stage.Field();
       general.GetControlProperties(u"Formas", u"una", stage.control);
     }},
};

TEST(LibGeneralLifetime, SurvivesCodeOfTheHostEverywhere) {
  for (const Member& member : kMembers) {
    SCOPED_TRACE(member.name);
    Stage stage;
    try {
      member.call(stage, *stage.general);
    } catch (const Error&) {  // of a control that cannot answer
    }
    EXPECT_GT(stage.drops, 0);
    EXPECT_FALSE(stage.general);
  }
}

// A service keeps what it counts from call to call.
TEST(LibGeneralLifetime, ServicesAreNotCopied) {
  LibGeneral general;
  HostServices host;
  std::vector<int> calls;
  host.status_bar = [&calls, count = 0](const Ref<Object>&, TextView, bool) mutable {
    calls.push_back(++count);
  };
  general.UseHost(std::move(host));
  for (int i = 0; i < 3; ++i) general.MsgBar(Make<Collection>(), u"x");
  EXPECT_EQ(calls, (std::vector<int>{1, 2, 3}));
}

}  // namespace
}  // namespace tovalin
