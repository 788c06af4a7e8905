#pragma once

#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "tovalin/control.h"
#include "tovalin/convert.h"
#include "tovalin/settings.h"

namespace tovalin {

/// The error that `work` raises, with number 0 when it raises none.
template <class Work>
Error RaisedBy(Work work) {
  try {
    work();
  } catch (const Error& error) {
    return error;
  }
  return {};
}

/// A store in memory, which fails when told to.
class MemorySettings : public SettingsStore {
 public:
  void Save(TextView application, TextView section, TextView key, TextView text) override {
    if (fails) Raise(Failure::PermissionDenied);
    texts[Address(application, section, key)] = Text(text);
  }
  Text Get(TextView application, TextView section, TextView key,
           TextView otherwise) const override {
    if (fails) Raise(Failure::PermissionDenied);
    const auto found = texts.find(Address(application, section, key));
    return found == texts.end() ? Text(otherwise) : found->second;
  }

  using Place = std::tuple<Text, Text, Text>;
  static Place Address(TextView application, TextView section, TextView key) {
    return {Text(application), Text(section), Text(key)};
  }
  std::map<Place, Text> texts;
  bool fails = false;
};

/// A widget of any data-entry kind.
struct FakeField {
  Text text;
  Text tag;
  Variant value;
  std::vector<Text> items;
  std::int32_t list_index = -1;
  std::int32_t selection_start = 77;
  std::int32_t selection_length = 77;
  std::int32_t most_characters = 0;
  int focused = 0;

  Ref<Control> As(ControlKind kind) {
    return MakeControl(
        kind, {
                  {u"Text", [this] { return text; }, [this](Text to) { text = to; }},
                  {u"Tag", [this] { return tag; }, [this](Text to) { tag = to; }},
                  {u"Value", [this] { return value; }, [this](Variant to) { value = to; }},
                  {u"ListCount", [this] { return static_cast<std::int32_t>(items.size()); }},
                  {u"List", [this](std::int32_t i) { return items.at(static_cast<size_t>(i)); }},
                  {u"ListIndex", [this] { return list_index; },
                   [this](std::int32_t to) { list_index = to; }},
                  {u"SelStart", [this] { return selection_start; },
                   [this](std::int32_t to) { selection_start = to; }},
                  {u"SelLength", [this] { return selection_length; },
                   [this](std::int32_t to) { selection_length = to; }},
                  {u"MaxLength", [this] { return most_characters; }},
                  {u"SetFocus", [this] { ++focused; }},
              });
  }
};

/// A status bar of one panel, and what its panel showed.
struct FakeStatusBar {
  std::vector<std::string> shown;

  Ref<Object> Bar() {
    const Ref<Control> panel = MakeControl(
        ControlKind::Other,
        {{u"Text", [] { return Text(); }, [this](Text text) { shown.push_back(ToUtf8(text)); }}});
    const Ref<Collection> panels = Make<Collection>();
    panels->Add(panel, Variant(u"Information"));
    return MakeControl(ControlKind::Other, {{u"Panels", [panels] { return panels; }}});
  }
};

}  // namespace tovalin
