#pragma once

#include <algorithm>
#include <array>
#include <initializer_list>
#include <span>
#include <type_traits>

#include "tovalin/binding.h"
#include "tovalin/describe.h"

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
// its text, the texts and enumerations of its parameters.
// tovalin/binding.h tells what C++ parameters mean.

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
