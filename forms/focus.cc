#include "forms/focus.h"

#include "forms/host_services.h"
#include "forms/member_access.h"
#include "forms/tag_string.h"
#include "forms/value_checks.h"
#include "tovalin/convert.h"

namespace tovalin {
namespace {

constexpr TextView kNotInList = u"Debe seleccionar un elemento de la lista";
constexpr TextView kWrongType = u"Tipo de dato no válido para el campo";
constexpr std::int32_t kNoSelection = -1;

bool IsTextControl(ControlKind kind) {
  return kind == ControlKind::TextBox || kind == ControlKind::MaskedEdit;
}

Text ReadText(Object& control, TextView name) { return ToText(ReadMember(control, name)); }

std::int32_t ReadLong(Object& control, TextView name) { return ToLong(ReadMember(control, name)); }

// The place of an item in a combo box's list, compared exactly.
std::int32_t FindItem(Object& combo, TextView text) {
  const std::int32_t count = ReadLong(combo, u"ListCount");
  for (std::int32_t i = 0; i < count; ++i)
    if (ToText(ReadMember(combo, u"List", {Variant(i)})) == text) return i;
  return kNoSelection;
}

// Selects the item that the user typed, or sends the user back.
void SelectTypedItem(Object& combo, const HostServices& host) {
  const Text text = ReadText(combo, u"Text");
  if (text.empty() || ReadLong(combo, u"ListIndex") != kNoSelection) return;
  const std::int32_t found = FindItem(combo, text);
  if (found == kNoSelection) ShowMessage(host, kNotInList);
  WriteMember(combo, u"ListIndex", Variant(found));
  if (found == kNoSelection) CallMember(combo, u"SetFocus");
}

bool TextChanged(Object& control, TextView type, TextView initial, const HostServices& host) {
  const Text text = ReadText(control, u"Text");
  if (text == initial) return false;
  if (type.empty() || PassesAs(Variant(text), ToInteger(Variant(type)))) return true;
  ShowMessage(host, kWrongType);
  CallMember(control, u"SetFocus");
  return false;
}

bool ValueChanged(Object& control, ControlKind kind, TextView initial, const HostServices& host) {
  switch (kind) {
    case ControlKind::ComboBox:
      SelectTypedItem(control, host);
      return ReadText(control, u"ListIndex") != initial;
    case ControlKind::ListBox:
      return ReadText(control, u"ListIndex") != initial;
    case ControlKind::CheckBox:
    case ControlKind::ValueControl:
      return ReadText(control, u"Value") != initial;
    default:
      return false;
  }
}

}  // namespace

bool IsDataEntry(ControlKind kind) {
  switch (kind) {
    case ControlKind::TextBox:
    case ControlKind::MaskedEdit:
    case ControlKind::ComboBox:
    case ControlKind::ListBox:
    case ControlKind::CheckBox:
    case ControlKind::ValueControl:
      return true;
    default:
      return false;
  }
}

Text HelpText(Object& control, char16_t separator) {
  return Text(GetTag(ReadText(control, u"Tag"), kHelpField, separator));
}

void CheckAndMark(Object& control, char16_t separator, const HostServices& host) {
  const Text tag = ReadText(control, u"Tag");
  const TextView initial = GetTag(tag, kInitialValueField, separator);
  const ControlKind kind = KindOf(control);
  const bool changed = IsTextControl(kind)
                           ? TextChanged(control, GetTag(tag, kTypeField, separator), initial, host)
                           : ValueChanged(control, kind, initial, host);
  // Read again: the message or the returned focus may have changed the tag.
  const Text present = ReadText(control, u"Tag");
  const TextView mark = changed ? u"1" : u"0";
  WriteMember(control, u"Tag", Variant(LetTag(present, kModifiedField, mark, separator)));
}

void SelectContents(Object& control) {
  if (!IsTextControl(KindOf(control))) return;
  WriteMember(control, u"SelStart", Variant(std::int32_t{0}));
  const std::int32_t most = ReadLong(control, u"MaxLength");
  const auto all = static_cast<std::int32_t>(ReadText(control, u"Text").size());
  WriteMember(control, u"SelLength", Variant(most == 0 ? all : most));
}

}  // namespace tovalin
