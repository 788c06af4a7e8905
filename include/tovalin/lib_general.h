#pragma once

#include <cstdint>
#include <memory>

#include "tovalin/api.h"
#include "tovalin/control.h"
#include "tovalin/object.h"
#include "tovalin/settings.h"
#include "tovalin/variant.h"

namespace tovalin {

/// Helpers of data-entry forms: key filters, focus handlers, tag strings, report
/// selection formulas, and the layouts of controls.
///
/// A tag string carries several values in a control's `Tag`: fields, counted from
/// 1, each of them ended by the separator. Text after the last separator is no
/// field. The focus handlers use field 3 (help text), 4 ("1" when the value
/// changed, else "0"), 5 (the initial value) and 6 (the data type that the text
/// must have, as a subtype code; empty for none).
///
/// Members that ask a control for something pass on the error that it answers,
/// 438 for a member that it has not, unless they say otherwise.
class TOVALIN_API LibGeneral : public Object {
 public:
  static constexpr TextView kClassName = u"LibGeneral";

  static const ClassInfo kInfo;
  const ClassInfo& Class() const override;

  // --- Keys. The filters set `KeyAscii` to 0 when the key is not accepted.

  /// Digits, backspace, ".", "-", and 109 and 110: the keypad's minus and decimal.
  void CheckNumber(std::int16_t& KeyAscii) const;
  /// Digits, backspace, "/" and "-".
  void CheckDate(std::int16_t& KeyAscii) const;
  /// Digits, backspace and ":".
  void CheckTime(std::int16_t& KeyAscii) const;

  /// `vData` after a key: 0 changes nothing, 8 takes the last character away, any
  /// other code appends its character of code page 1252. Raises 5 for a code
  /// outside 0 to 255.
  Text AddText(TextView vData, std::int32_t KeyAscii) const;

  /// `vData` after a key: 0 and 8 as in AddText; digits, also the keypad's (96 to
  /// 105), are appended, "." (46, 110) only once; other keys change nothing.
  Text AddNumber(TextView vData, std::int32_t KeyAscii) const;

  // --- Focus.

  /// Shows `ostrTextoBarra`, or field 3 of the control's tag when it is empty, on
  /// the status bar `rctr`, if one is given. Ignores every error.
  void GotFocus(Ref<Object> rctrControl, TextView ostrTextoBarra = {},
                Ref<Object> rctr = nullptr) const;

  /// Checks the value of a control that loses the focus, marks in field 4 of its
  /// tag whether it differs from field 5, and clears the status bar `rctr`.
  ///
  /// A text that is not of the type in field 6, or a combo box's text that is not
  /// in its list, gives a message and takes the focus back; the text is then
  /// marked "0", the combo box left without selection. Answers Empty. Raises 424
  /// for a value that is no object, 91 for none, and 13 for a type that is no number.
  Variant LostFocus(const Variant& rctrControl, Ref<Object> rctr = nullptr) const;

  /// Selects the contents of a text box or masked edit box: of `oControl`, or of
  /// the active control when it is not given. Leaves other kinds alone.
  void SelectText(Ref<Object> oControl = nullptr) const;

  /// Whether a control is for data entry: a text box, masked edit box, combo box,
  /// list box, check box or value control.
  bool IsControl(Ref<Object> ctrControl) const;

  // --- Tag strings.

  /// The field `vbytIndice`, or the empty text when there is none. Index 0 raises
  /// 5 when the tag is not empty and holds no separator.
  /// Example: field 2 of "a»b»" is "b".
  Text GetTag(TextView vstrTag, std::uint8_t vbytIndice) const;

  /// `vstrTag` with a new text in field `vbytIndice`; unchanged when there is no
  /// such field. Index 0 raises 5 when the tag holds no separator.
  /// Example: "a»b»c»" with XY in field 2 is "a»XY»c»".
  Text LetTag(TextView vstrTag, std::uint8_t vbytIndice, TextView vstrNewValue) const;

  /// The separator of fields, one character; "»" at first.
  Variant Separador() const;
  /// Keeps the first character of the value's text, a blank for the empty text.
  void LetSeparador(const Variant& NewValue);

  // --- Report parameters and values.

  /// Appends a condition to a selection formula: a joiner between blanks when
  /// there is something already, then parameter, operator and the value converted
  /// to the subtype code `vintTipo` and written as reports read it. When the value
  /// does not convert, the error is raised with the joiner appended already.
  /// Example: {t.a}, " = ", 5 and type 2 append "{t.a} = 5".
  void AdicionarParametro(Text& rstrParametros, TextView vstrParametro, TextView vstrOperadorUnion,
                          TextView vstrOperador, const Variant& vvarValor,
                          std::int16_t vintTipo) const;

  /// `vString` without the characters of `vDelimiters`. The character that follows
  /// a removed one stays, also when it is the same delimiter: "a,b,c" without ","
  /// gives "abc", but "a,,b" gives "a,b".
  Text StripDelimiter(TextView vString, TextView vDelimiters) const;

  /// `vvntBase` multiplied `vvntPotencia` times (rounded to a whole number); the
  /// Integer 1 for a power of 0 or less.
  Variant Pot(const Variant& vvntBase, const Variant& vvntPotencia) const;

  /// Whether a text is empty or of blanks alone, as a Boolean.
  Variant EstaVacio(TextView vStr) const;

  /// `varDefault` when `varValue` is Null, else `varValue`.
  Variant nvl(const Variant& varValue, const Variant& varDefault) const;

  /// Whether a value is Empty, Null or a text of blanks alone. Raises 13 for a
  /// value that has no text, such as an object.
  bool EsNulo(const Variant& vvarCampo) const;

  /// Whether a value passes as the subtype code `vintType`: for 2 to 6 the numeric
  /// test, for 7 the date test, for any other code its own subtype. No range is
  /// checked: the text 70000 passes as 2.
  bool Check(const Variant& vvarDato, std::int16_t vintType) const;

  // --- Layouts.

  /// Whether each user's layouts are saved and restored; false at first.
  bool gbolCUI() const { return uses_layouts_; }
  void LetgbolCUI(bool NewValue) { uses_layouts_ = NewValue; }

  /// The application under which layouts are kept; empty at first.
  const Text& Aplicacion() const { return application_; }
  void LetAplicacion(const Text& NewValue);

  /// Saves the layout of a control under `Section` and `Key`. A form is saved in
  /// its normal state only. Does nothing when `gbolCUI` is false. Raises nothing.
  void SaveControlProperties(TextView Section, TextView Key, Ref<Object> ctrl) const;

  /// Gives a control its saved layout; without one nothing changes. When `gbolCUI`
  /// is false it stretches a grid's columns to the grid's width instead. What fails
  /// half-way keeps what was done and raises nothing; only a failure to set a
  /// grid's `Redraw` back is raised.
  void GetControlProperties(TextView Section, TextView Key, Ref<Object> ctrl) const;

  /// Shows a text on the status bar `rctr`; does nothing when it is none.
  void MsgBar(Ref<Object> rctr, TextView vstrTexto, bool vbolPausa = false) const;

  // --- For C++ hosts.

  /// Puts the host's services in place of the defaults. A service that is running may do
  /// so too.
  void UseHost(HostServices services);

  /// Keeps layouts in `store`, or in DefaultSettings() when it is none.
  void UseSettings(Ref<SettingsStore> store) { settings_ = std::move(store); }

 private:
  /// Held while one of them runs, which may put others in their place.
  std::shared_ptr<const HostServices> Services() const { return host_; }
  Ref<SettingsStore> Settings() const { return settings_ ? settings_ : DefaultSettings(); }

  char16_t separator_ = u'»';
  bool uses_layouts_ = false;
  Text application_;
  std::shared_ptr<const HostServices> host_ = std::make_shared<const HostServices>();
  Ref<SettingsStore> settings_;
};

}  // namespace tovalin
