#pragma once

#include <concepts>
#include <functional>
#include <span>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "tovalin/api.h"
#include "tovalin/binding.h"
#include "tovalin/object.h"

// How a host shows its widgets to LibGeneral: as objects that say their kind and
// answer members by name. MakeControl makes one from a table:
//
//   Ref<Control> name = MakeControl(ControlKind::TextBox, {
//       {u"Text", [&] { return edit.Text(); }, [&](Text text) { edit.SetText(text); }},
//       {u"Tag", [&] { return edit.tag; }, [&](Text tag) { edit.tag = tag; }},
//       {u"SetFocus", [&] { edit.Focus(); }},
//   });

namespace tovalin {

/// What a control is. The kind alone decides how LibGeneral treats it, and with
/// it which members it must have:
///
///   TextBox, MaskedEdit       Text, Tag, SetFocus, SelStart, SelLength, MaxLength
///   ComboBox                  Text, Tag, SetFocus, ListIndex, ListCount, List(i)
///   ListBox                   Tag, ListIndex
///   CheckBox, ValueControl    Tag, Value
///   Grid                      Cols, ColWidth(i), FixedCols, Width, Redraw
///   ListView                  View, ColumnHeaders: Count and, from 1, (i).Width
///   Form                      Width, Height, Left, Top, WindowState
///   Other                     Width, Height, Left, Top; Tag when it gets the focus
///
/// Items and columns count from 0 where nothing else is said.
enum class ControlKind {
  TextBox,
  MaskedEdit,
  ComboBox,
  ListBox,
  CheckBox,
  ValueControl,
  Grid,
  ListView,
  Form,
  Other,
};

/// A widget as LibGeneral sees it. A host may derive its own, and answer the
/// members by overriding Invoke. An object that is no Control is of kind Other.
class TOVALIN_API Control : public Object {
 public:
  static constexpr TextView kClassName = u"Control";

  const ClassInfo& Class() const override;
  virtual ControlKind Kind() const = 0;
};

namespace dispatch {

template <class T>
inline constexpr bool kIsBindable = requires {
  TypeOf<T>::kType;
};
template <class T>
inline constexpr bool kIsBindable<Ref<T>> = std::derived_from<T, Object>;
template <class T>
inline constexpr bool kIsBindable<Ref<T>*> = std::derived_from<T, Object>;

template <class P>
consteval bool CanTake() {
  if constexpr (kIsBindable<std::remove_cvref_t<P>>)
    return std::is_convertible_v<decltype(std::declval<Argument<P>&>().Pass()), P>;
  else
    return false;
}

template <class F>
inline constexpr bool kCanBind = false;
template <class R, class... P>
inline constexpr bool kCanBind<std::function<R(P...)>> = (CanTake<P>() && ...) &&
                                                         (std::is_void_v<R> ||
                                                          std::constructible_from<Variant, R>);

/// Whether a control can answer a member with an object of type F.
template <class F>
consteval bool CanAnswer() {
  if constexpr (requires(F function) { std::function(std::move(function)); })
    return kCanBind<decltype(std::function(std::declval<F>()))>;
  else
    return false;
}

}  // namespace dispatch

/// A host's function under late-bound arguments, which are converted to its
/// parameters as those of the library's own members are (see binding.h).
struct BoundCall {
  BoundCall() = default;
  template <class Function>
  explicit BoundCall(Function function) {
    constexpr bool kIsFit = dispatch::CanAnswer<Function>();
    static_assert(
        kIsFit,
        "A getter, setter or action of a control is a function, or a lambda without auto, that "
        "takes and gives Text, TextView, bool, std::uint8_t, std::int16_t, std::int32_t, float, "
        "double, Currency, Date, Variant or Ref<T> of a class T derived from Object; it gives "
        "const char16_t* or void too");
    if constexpr (kIsFit) Bind(std::function(std::move(function)));
  }

  std::size_t parameter_count = 0;
  std::function<Variant(std::span<Variant> arguments)> call;

 private:
  template <class R, class... P>
  void Bind(std::function<R(P...)> function) {
    parameter_count = sizeof...(P);
    call = [function = std::move(function)](std::span<Variant> arguments) {
      return Run(function, arguments, std::index_sequence_for<P...>());
    };
  }
  template <class R, class... P, std::size_t... I>
  static Variant Run(const std::function<R(P...)>& function,
                     [[maybe_unused]] std::span<Variant> arguments, std::index_sequence<I...>) {
    std::tuple<dispatch::Argument<P>...> held{dispatch::Argument<P>(arguments[I])...};
    Variant result;
    if constexpr (std::is_void_v<R>)
      function(std::get<I>(held).Pass()...);
    else
      result = Variant(function(std::get<I>(held).Pass()...));
    (std::get<I>(held).CarryBack(arguments[I]), ...);
    return result;
  }
};

/// A row of a control's table: a name and what answers it.
///
/// `{u"Text", getter, setter}` is a property, `{u"Cols", getter}` one that is only
/// read, `{u"SetFocus", action}` a method. The parameters of a getter are the
/// property's indices; a setter takes the same ones and the new value last:
///
///   {u"ColWidth", [&](int i) { return grid.Width(i); },
///    [&](int i, int width) { grid.SetWidth(i, width); }}
///
/// They take and give Text, std::int32_t, double, bool, Variant, Ref ... (BoundCall has
/// all), and report a failure by Raise or by throwing an Error.
struct ControlMember {
  template <class Getter>
  ControlMember(TextView name, Getter getter) : name(name), read(std::move(getter)) {}
  template <class Getter, class Setter>
  ControlMember(TextView name, Getter getter, Setter setter)
      : name(name), read(std::move(getter)), write(std::move(setter)) {}

  Text name;
  BoundCall read;   // also a method
  BoundCall write;  // none: a property that cannot be written
};

/// Makes a control from a table. Whatever the functions refer to must outlive it.
/// A member that is not in the table, or cannot be written, fails with 438.
TOVALIN_API Ref<Control> MakeControl(ControlKind kind, std::vector<ControlMember> members);

/// The button that a message box answers when the user agreed or had no choice.
inline constexpr std::int32_t kOkButton = 1;

/// What LibGeneral asks of its host. A service that is left empty has a default.
struct HostServices {
  /// The control of the active form that has the focus, or none. Default: none.
  std::function<Ref<Object>()> active_control;

  /// Shows a message and answers the button. `buttons` 0 is a plain box with OK
  /// alone; an empty title stands for the host's own. Default: writes the prompt
  /// to standard error and answers kOkButton.
  std::function<std::int32_t(TextView prompt, std::int32_t buttons, TextView title)> message_box;

  /// Shows a text on a status bar, or clears it with the empty text. `pause` asks
  /// to let the user read it before going on. Default: sets
  /// `bar.Panels("Information").Text`.
  std::function<void(const Ref<Object>& bar, TextView text, bool pause)> status_bar;
};

}  // namespace tovalin
