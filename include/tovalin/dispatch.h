#pragma once

#include <algorithm>
#include <array>
#include <initializer_list>
#include <span>
#include <tuple>
#include <type_traits>
#include <utility>

#include "tovalin/campos.h"
#include "tovalin/collection.h"
#include "tovalin/convert.h"
#include "tovalin/describe.h"
#include "tovalin/event.h"
#include "tovalin/object.h"
#include "tovalin/variant.h"

// How a class writes its description (tovalin/describe.h has what comes of it). It has a
// table of its members, one of its events if it has any, and both become its ClassInfo:
//
//   constexpr MemberRow kMembers[] = {
//       Method<&LibMonto::MontoEscrito>(1, u"MontoEscrito", {{u"pdblValor", u"El monto"}},
//                                       u"Devuelve el monto escrito para un valor"),
//       Get<&LibGeneral::Aplicacion>(21, u"Aplicacion", u"El nombre de la aplicación"),
//       Let<&LibGeneral::LetAplicacion>(21, u"Aplicacion").Errors({{13, u"..."}}),
//   };
//   constinit const ClassInfo LibMonto::kInfo = DescribeClass<LibMonto, kMembers>(u"...");
//
// Types, by-reference passing and results are read off the C++ member, so that they
// cannot differ from it; the number of parameters is checked when the table is
// compiled. What a Let or Set row leaves out it takes from the Get row of its property:
// its text, the texts and enumerations of its parameters. C++ parameters mean:
//
//   Text, TextView, const Text&   String       Text&, double& ...  by reference
//   std::int16_t, double ...      their subtype
//   const Variant&                any subtype; an omitted one arrives as missing
//   Ref<T>, const Ref<T>&         an object of that class, or none
//   Ref<T>*                       optional, by reference; null when omitted

namespace tovalin {

/// A parameter as a table writes it.
struct Parameter {
  TextView name;
  TextView doc{};
  const EnumInfo* enumeration = nullptr;
  bool optional = false;
  DefaultValue default_value{};
  Passing passing = Passing::InOut;  // of one by reference
};

consteval Parameter Optional(Parameter parameter, DefaultValue default_value = {}) {
  parameter.optional = true;
  parameter.default_value = default_value;
  return parameter;
}

/// One by reference that the call sets, whatever it was.
consteval Parameter Out(Parameter parameter) {
  parameter.passing = Passing::Out;
  return parameter;
}

/// One by reference that the call leaves as it is.
consteval Parameter Unchanged(Parameter parameter) {
  parameter.passing = Passing::In;
  return parameter;
}

namespace dispatch {

// One row for each C++ type that a described member may take or give.
template <class T>
struct TypeOf;

template <Subtype kSubtype, auto kConvert>
struct ScalarType {
  static constexpr ValueType kType{kSubtype};
  static auto From(const Variant& value) { return kConvert(value); }
};
template <>
struct TypeOf<std::int16_t> : ScalarType<Subtype::Integer, ToInteger> {};
template <>
struct TypeOf<std::int32_t> : ScalarType<Subtype::Long, ToLong> {};
template <>
struct TypeOf<float> : ScalarType<Subtype::Single, ToSingle> {};
template <>
struct TypeOf<double> : ScalarType<Subtype::Double, ToDouble> {};
template <>
struct TypeOf<Currency> : ScalarType<Subtype::Currency, ToCurrency> {};
template <>
struct TypeOf<Date> : ScalarType<Subtype::Date, ToDate> {};
template <>
struct TypeOf<bool> : ScalarType<Subtype::Boolean, ToBoolean> {};
template <>
struct TypeOf<std::uint8_t> : ScalarType<Subtype::Byte, ToByte> {};
template <>
struct TypeOf<Text> : ScalarType<Subtype::String, ToText> {};
template <>
struct TypeOf<TextView> : TypeOf<Text> {};
template <>
struct TypeOf<Variant> {
  static constexpr ValueType kType{Subtype::Variant};
  static const Variant& From(const Variant& value) { return value.Value(); }
};
template <class T>
struct TypeOf<Ref<T>> {
  static constexpr ValueType kType{Subtype::Object, T::kClassName};
  /// Raises 424 for a value that is no object and 13 for one of another class.
  static Ref<T> From(const Variant& value) {
    if (value.Is(Subtype::Empty) || value.IsMissing()) return nullptr;
    if (!value.Is(Subtype::Object)) Raise(Failure::ObjectRequired);
    const Ref<Object>& object = value.AsObject();
    Ref<T> cast = object.As<T>();
    if (object && !cast) Raise(Failure::TypeMismatch);
    return cast;
  }
};

/// Holds one converted argument during a call and carries it back afterwards.
template <class P>
struct Argument {
  using Value = std::remove_cvref_t<P>;
  static constexpr bool kByReference =
      std::is_lvalue_reference_v<P> && !std::is_const_v<std::remove_reference_t<P>>;
  static constexpr ValueType kType = TypeOf<Value>::kType;
  using Held = std::conditional_t<std::is_same_v<Value, TextView>, Text, Value>;

  explicit Argument(Variant& source) : held(TypeOf<Value>::From(source)) {}
  Held& Pass() { return held; }
  void CarryBack(Variant& source) {
    if constexpr (kByReference) source.Assign(Variant(std::move(held)));
  }
  Held held;
};
template <class T>
struct Argument<Ref<T>*> {
  static constexpr bool kByReference = true;
  static constexpr ValueType kType = TypeOf<Ref<T>>::kType;

  explicit Argument(Variant& source)
      : held(TypeOf<Ref<T>>::From(source)), given(!source.IsMissing()) {}
  Ref<T>* Pass() { return given ? &held : nullptr; }
  void CarryBack(Variant& source) {
    if (given) source.Assign(Variant(std::move(held)));
  }
  Ref<T> held;
  bool given;
};

template <class R>
constexpr ValueType kResultType = Argument<R>::kType;
template <>
inline constexpr ValueType kResultType<void> = ValueType{};

template <class C, class R, class... P>
struct MemberShape {
  using Result = R;
  static constexpr std::size_t kCount = sizeof...(P);
  static constexpr std::array<ValueType, kCount> kTypes{Argument<P>::kType...};
  static constexpr std::array<bool, kCount> kByReference{Argument<P>::kByReference...};

  template <auto kMember>
  static Variant Call(Object& object, std::span<Variant> arguments) {
    return CallWith<kMember>(static_cast<C&>(object), arguments, std::index_sequence_for<P...>());
  }

 private:
  template <auto kMember, std::size_t... I>
  static Variant CallWith(C& object, [[maybe_unused]] std::span<Variant> arguments,
                          std::index_sequence<I...>) {
    std::tuple<Argument<P>...> held{Argument<P>(arguments[I])...};
    const auto carry_back = [&] { (std::get<I>(held).CarryBack(arguments[I]), ...); };
    Variant result;
    try {
      if constexpr (std::is_void_v<R>)
        (object.*kMember)(std::get<I>(held).Pass()...);
      else
        result = Variant((object.*kMember)(std::get<I>(held).Pass()...));
    } catch (...) {
      carry_back();  // what the member set before it failed stays set
      throw;
    }
    carry_back();
    return result;
  }
};

template <class M>
struct ShapeOf;
template <class C, class R, class... P>
struct ShapeOf<R (C::*)(P...)> : MemberShape<C, R, P...> {};
template <class C, class R, class... P>
struct ShapeOf<R (C::*)(P...) const> : MemberShape<C, R, P...> {};

// Up to kMost of something, as a row of a table holds them.
template <class T, std::size_t kMost>
struct Few {
  std::array<T, kMost> items{};
  std::size_t count = 0;

  constexpr void Add(const T& item) {
    // A throw that is reached while a table is compiled stops the compiler here.
    if (count == kMost) throw "too many for one row";
    items[count++] = item;
  }
  constexpr std::span<const T> View() const { return std::span(items).first(count); }
};

using FewParameters = Few<ParameterInfo, MemberInfo::kMostParameters>;

template <class Shape>
consteval FewParameters ParametersOf(std::initializer_list<Parameter> parameters) {
  if (parameters.size() != Shape::kCount) throw "the table and the C++ member differ";
  FewParameters described;
  std::size_t i = 0;
  for (const Parameter& parameter : parameters) {
    ValueType type = Shape::kTypes[i];
    type.enumeration = parameter.enumeration;
    const bool by_reference = Shape::kByReference[i++];
    described.Add({parameter.name, type, by_reference,
                   by_reference ? parameter.passing : Passing::In, parameter.optional,
                   parameter.default_value, parameter.doc});
  }
  return described;
}

}  // namespace dispatch

/// A row of a table of members. What it has besides the first things is added to it:
///
///     Method<&E::RemoveVble>(28, u"RemoveVble", {{u"Index", kNames}}, u"Quita variables")
///         .Errors({{5, u"no hay una variable de la lista"}})
struct MemberRow {
  static constexpr std::size_t kMostErrors = 8;

  MemberInfo info;  // without the two lists:
  dispatch::FewParameters parameters;
  dispatch::Few<ErrorInfo, kMostErrors> errors;

  consteval MemberRow Errors(std::initializer_list<ErrorInfo> raised) const {
    MemberRow row = *this;
    for (const ErrorInfo& error : raised) row.errors.Add(error);
    return row;
  }
  /// The text for a person, where the one for automation hosts does not do.
  consteval MemberRow Reference(TextView text) const {
    MemberRow row = *this;
    row.info.reference = text;
    return row;
  }
  /// What comes out, where the text of the member does not tell.
  consteval MemberRow Result(TextView text, const EnumInfo* enumeration = nullptr) const {
    MemberRow row = *this;
    row.info.result_doc = text;
    row.info.result.enumeration = enumeration;
    return row;
  }
  consteval MemberRow Result(const EnumInfo& enumeration) const { return Result({}, &enumeration); }
  /// For languages to call: no list for people shows it, and no program names it.
  consteval MemberRow Hidden() const {
    MemberRow row = *this;
    row.info.hidden = true;
    row.info.restricted = true;
    return row;
  }
};

namespace dispatch {

template <auto kMember>
consteval MemberRow Row(int id, TextView name, MemberKind kind,
                        std::initializer_list<Parameter> parameters, TextView doc) {
  using Shape = ShapeOf<decltype(kMember)>;
  MemberRow row;
  row.info.id = id;
  row.info.name = name;
  row.info.kind = kind;
  row.info.result = kResultType<typename Shape::Result>;
  row.info.doc = doc;
  row.info.call = &Shape::template Call<kMember>;
  row.parameters = ParametersOf<Shape>(parameters);
  return row;
}

}  // namespace dispatch

template <auto kMember>
consteval MemberRow Method(int id, TextView name, std::initializer_list<Parameter> parameters,
                           TextView doc = {}) {
  return dispatch::Row<kMember>(id, name, MemberKind::Method, parameters, doc);
}

/// A property read; it may have parameters.
template <auto kMember>
consteval MemberRow Get(int id, TextView name, TextView doc = {},
                        std::initializer_list<Parameter> parameters = {}) {
  return dispatch::Row<kMember>(id, name, MemberKind::Get, parameters, doc);
}

/// A property written with a value; the new value is the last parameter.
template <auto kMember>
consteval MemberRow Let(int id, TextView name,
                        std::initializer_list<Parameter> parameters = {{u"NewValue"}}) {
  return dispatch::Row<kMember>(id, name, MemberKind::Let, parameters, {});
}

/// A property written with an object.
template <auto kMember>
consteval MemberRow Set(int id, TextView name,
                        std::initializer_list<Parameter> parameters = {{u"NewValue"}}) {
  return dispatch::Row<kMember>(id, name, MemberKind::Set, parameters, {});
}

namespace dispatch {

/// An event argument as the late-bound handler sees it, and back again.
template <class P>
struct EventArgument {
  using Value = std::remove_cvref_t<P>;
  explicit EventArgument(P argument) : argument(argument), value(argument) {}
  Variant Pass() { return Argument<P>::kByReference ? Variant::ByReference(value) : value; }
  void CarryBack() {
    if constexpr (Argument<P>::kByReference) argument = TypeOf<Value>::From(value);
  }
  P argument;
  Variant value;
};

template <class C, class... P>
struct EventShape {
  static constexpr std::size_t kCount = sizeof...(P);
  static constexpr std::array<ValueType, kCount> kTypes{Argument<P>::kType...};
  static constexpr std::array<bool, kCount> kByReference{Argument<P>::kByReference...};

  template <auto kEvent>
  static int Attach(Object& object, EventSink sink) {
    return (static_cast<C&>(object).*kEvent).Attach([sink = std::move(sink)](P... arguments) {
      Deliver(sink, std::index_sequence_for<P...>(), arguments...);
    });
  }
  template <auto kEvent>
  static void Detach(Object& object, int attachment) {
    (static_cast<C&>(object).*kEvent).Detach(attachment);
  }

 private:
  template <std::size_t... I>
  static void Deliver(const EventSink& sink, std::index_sequence<I...>, P... arguments) {
    std::tuple<EventArgument<P>...> held{EventArgument<P>(arguments)...};
    std::array<Variant, kCount> passed{std::get<I>(held).Pass()...};
    sink(passed);
    (std::get<I>(held).CarryBack(), ...);
  }
};

template <class M>
struct EventShapeOf;
template <class C, class... P>
struct EventShapeOf<Event<P...> C::*> : EventShape<C, P...> {};

}  // namespace dispatch

/// A row of a table of events.
struct EventRow {
  EventInfo info;  // without its parameters
  dispatch::FewParameters parameters;

  consteval EventRow Reference(TextView text) const {
    EventRow row = *this;
    row.info.reference = text;
    return row;
  }
};

/// The row of an event, from the C++ member that holds its handlers.
template <auto kEvent>
consteval EventRow DescribeEvent(int id, TextView name, std::initializer_list<Parameter> parameters,
                                 TextView doc) {
  using Shape = dispatch::EventShapeOf<decltype(kEvent)>;
  EventRow row;
  row.info.id = id;
  row.info.name = name;
  row.info.doc = doc;
  row.info.attach = &Shape::template Attach<kEvent>;
  row.info.detach = &Shape::template Detach<kEvent>;
  row.parameters = dispatch::ParametersOf<Shape>(parameters);
  return row;
}

namespace dispatch {

inline constexpr std::array<MemberRow, 0> kNoMembers{};
inline constexpr std::array<EventRow, 0> kNoEvents{};

// The row that reads the property which `row` writes, or null.
template <std::size_t kCount>
constexpr const MemberRow* ReadingRow(const std::array<MemberRow, kCount>& rows,
                                      const MemberRow& row) {
  if (row.info.kind == MemberKind::Method || row.info.kind == MemberKind::Get) return nullptr;
  for (const MemberRow& other : rows)
    if (other.info.kind == MemberKind::Get && other.info.id == row.info.id) return &other;
  return nullptr;
}

// A row that writes a property takes from the one that reads it what it does not say.
constexpr void Complete(MemberRow& row, const MemberRow& reading) {
  row.info.doc = reading.info.doc;
  row.info.reference = reading.info.reference;
  const std::size_t indices = row.parameters.count - 1;
  for (std::size_t i = 0; i < indices; ++i) row.parameters.items[i] = reading.parameters.items[i];
  ParameterInfo& new_value = row.parameters.items[indices];
  if (new_value.doc.empty()) new_value.doc = u"El valor nuevo";
  new_value.type.enumeration = reading.info.result.enumeration;
}

template <std::size_t kCount, class Rows>
constexpr std::array<MemberRow, kCount> CompleteRows(const Rows& written) {
  std::array<MemberRow, kCount> rows{};
  std::ranges::copy(written, rows.begin());
  for (MemberRow& row : rows)
    if (const MemberRow* reading = ReadingRow(rows, row)) Complete(row, *reading);
  return rows;
}

template <class Rows, class List>
constexpr std::size_t CountOf(const Rows& rows, List list) {
  std::size_t count = 0;
  for (const auto& row : rows) count += (row.*list).count;
  return count;
}

// The lists of all rows one behind the other.
template <class T, std::size_t kCount, class Rows, class List>
constexpr std::array<T, kCount> Join(const Rows& rows, List list) {
  std::array<T, kCount> joined{};
  std::size_t at = 0;
  for (const auto& row : rows)
    for (const T& item : (row.*list).View()) joined[at++] = item;
  return joined;
}

// What the rows of a table become: rows without room for what they do not have, since
// a look-up passes over them.
template <const auto& kRows>
struct MemberTable {
  static constexpr auto kFull = CompleteRows<std::size(kRows)>(kRows);
  static constexpr auto kParameters =
      Join<ParameterInfo, CountOf(kFull, &MemberRow::parameters)>(kFull, &MemberRow::parameters);
  static constexpr auto kErrors =
      Join<ErrorInfo, CountOf(kFull, &MemberRow::errors)>(kFull, &MemberRow::errors);
  static constexpr auto kInfos = [] {
    std::array<MemberInfo, kFull.size()> infos{};
    std::size_t parameter = 0, error = 0;
    for (std::size_t i = 0; i < infos.size(); ++i) {
      const MemberRow& row = kFull[i];
      infos[i] = row.info;
      infos[i].parameters = std::span(kParameters).subspan(parameter, row.parameters.count);
      infos[i].errors = std::span(kErrors).subspan(error, row.errors.count);
      parameter += row.parameters.count;
      error += row.errors.count;
    }
    return infos;
  }();
};

template <const auto& kRows>
struct EventTable {
  static constexpr auto kParameters =
      Join<ParameterInfo, CountOf(kRows, &EventRow::parameters)>(kRows, &EventRow::parameters);
  static constexpr auto kInfos = [] {
    std::array<EventInfo, std::size(kRows)> infos{};
    std::size_t parameter = 0;
    for (std::size_t i = 0; i < infos.size(); ++i) {
      const std::size_t count = kRows[i].parameters.count;
      infos[i] = kRows[i].info;
      infos[i].parameters = std::span(kParameters).subspan(parameter, count);
      parameter += count;
    }
    return infos;
  }();
};

}  // namespace dispatch

/// The description of C from its tables. Hosts create objects of classes that C++ makes
/// without arguments.
template <class C, const auto& kMemberRows = dispatch::kNoMembers,
          const auto& kEventRows = dispatch::kNoEvents>
consteval ClassInfo DescribeClass(TextView doc,
                                  std::span<const EnumInfo* const> enumerations = {}) {
  ClassInfo info;
  info.name = C::kClassName;
  info.members = dispatch::MemberTable<kMemberRows>::kInfos;
  info.events = dispatch::EventTable<kEventRows>::kInfos;
  info.enumerations = enumerations;
  info.doc = doc;
  if constexpr (std::is_default_constructible_v<C>)
    info.create = [] { return Ref<Object>(Make<C>()); };
  return info;
}

}  // namespace tovalin
