#pragma once

#include <array>
#include <functional>
#include <initializer_list>
#include <span>
#include <tuple>
#include <type_traits>
#include <utility>
#include <variant>

#include "tovalin/campos.h"
#include "tovalin/collection.h"
#include "tovalin/convert.h"
#include "tovalin/event.h"
#include "tovalin/object.h"
#include "tovalin/variant.h"

// How a class describes its members, once, for late-bound calls, the command
// line and every other binding. A class has one table:
//
//   constexpr MemberInfo kMembers[] = {
//       Method<&LibMonto::MontoEscrito>(1, u"MontoEscrito", {{u"pdblValor"}},
//                                       u"Devuelve el monto escrito para un valor"),
//   };
//
// Types, by-reference passing and results are read off the C++ member, so that
// they cannot differ from it; the number of parameters is checked when the table
// is compiled. C++ parameters mean:
//
//   Text, TextView, const Text&   String       Text&, double& ...  by reference
//   std::int16_t, double ...      their subtype
//   const Variant&                any subtype; an omitted one arrives as missing
//   Ref<T>, const Ref<T>&         an object of that class, or none
//   Ref<T>*                       optional, by reference; null when omitted

namespace tovalin {

/// The value that an omitted optional argument takes; none makes it "missing".
using DefaultValue = std::variant<std::monostate, bool, std::int32_t, const char16_t*>;

/// A parameter as a member table writes it.
struct Parameter {
  TextView name;
  bool optional = false;
  DefaultValue default_value{};
};

/// An optional parameter of a member table.
consteval Parameter Optional(TextView name, DefaultValue default_value = {}) {
  return {name, true, default_value};
}

struct ValueType {
  Subtype subtype = Subtype::Empty;  // Empty: no value
  TextView class_name{};             // of an Object: "Campos" ...; empty for any
};

struct ParameterInfo {
  TextView name;
  ValueType type;
  bool by_reference = false;
  bool optional = false;
  DefaultValue default_value{};
};

struct MemberInfo {
  static constexpr std::size_t kMostParameters = 8;

  int id = 0;
  TextView name;
  MemberKind kind = MemberKind::Method;
  std::array<ParameterInfo, kMostParameters> parameter_slots{};
  std::size_t parameter_count = 0;
  ValueType result;
  TextView doc;
  bool hidden = false;  // for other languages to call: no list for people shows it
  /// Calls the member with exactly parameter_count arguments. Throws Error.
  Variant (*call)(Object& object, std::span<Variant> arguments) = nullptr;

  std::span<const ParameterInfo> Parameters() const {
    return std::span(parameter_slots).first(parameter_count);
  }
};

struct EventInfo {
  int id = 0;
  TextView name;
  std::array<ParameterInfo, MemberInfo::kMostParameters> parameter_slots{};
  std::size_t parameter_count = 0;
  int (*attach)(Object& object, EventSink sink) = nullptr;
  void (*detach)(Object& object, int attachment) = nullptr;
};

struct ClassInfo {
  TextView name;
  std::span<const MemberInfo> members;
  std::span<const EventInfo> events{};

  /// The member of that name (without regard to case) and kind, or null.
  TOVALIN_API const MemberInfo* Find(TextView name, MemberKind kind) const;
  TOVALIN_API const MemberInfo* Find(int id, MemberKind kind) const;
  TOVALIN_API const EventInfo* FindEvent(TextView name) const;
};

/// Object::Invoke for a member that was found before.
TOVALIN_API std::optional<Error> Invoke(Object& object, const MemberInfo& member,
                                        std::span<Variant> arguments, Variant& result);

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

template <auto kMember>
consteval MemberInfo Describe(int id, TextView name, MemberKind kind,
                              std::initializer_list<Parameter> parameters, TextView doc) {
  using Shape = ShapeOf<decltype(kMember)>;
  // A throw that is reached while a table is compiled stops the compiler here.
  if (parameters.size() != Shape::kCount) throw "the table and the C++ member differ";
  MemberInfo info;
  info.id = id;
  info.name = name;
  info.kind = kind;
  info.parameter_count = Shape::kCount;
  info.result = kResultType<typename Shape::Result>;
  info.doc = doc;
  info.call = &Shape::template Call<kMember>;
  std::size_t i = 0;
  for (const Parameter& parameter : parameters) {
    info.parameter_slots[i] = {parameter.name, Shape::kTypes[i], Shape::kByReference[i],
                               parameter.optional, parameter.default_value};
    ++i;
  }
  return info;
}

}  // namespace dispatch

template <auto kMember>
consteval MemberInfo Method(int id, TextView name, std::initializer_list<Parameter> parameters,
                            TextView doc = {}) {
  return dispatch::Describe<kMember>(id, name, MemberKind::Method, parameters, doc);
}

/// A property read; it may have parameters.
template <auto kMember>
consteval MemberInfo Get(int id, TextView name, TextView doc = {},
                         std::initializer_list<Parameter> parameters = {}) {
  return dispatch::Describe<kMember>(id, name, MemberKind::Get, parameters, doc);
}

/// A property written with a value; the new value is the last parameter.
template <auto kMember>
consteval MemberInfo Let(int id, TextView name, TextView doc = {},
                         std::initializer_list<Parameter> parameters = {{u"NewValue"}}) {
  return dispatch::Describe<kMember>(id, name, MemberKind::Let, parameters, doc);
}

/// A property written with an object.
template <auto kMember>
consteval MemberInfo Set(int id, TextView name, TextView doc = {},
                         std::initializer_list<Parameter> parameters = {{u"NewValue"}}) {
  return dispatch::Describe<kMember>(id, name, MemberKind::Set, parameters, doc);
}

/// The same member, but hidden.
consteval MemberInfo Hidden(MemberInfo member) {
  member.hidden = true;
  return member;
}

/// The id of the member that gives an enumerator, as automation has it.
inline constexpr int kNewEnumId = -4;

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

/// The row of an event, from the C++ member that holds its handlers.
template <auto kEvent>
consteval EventInfo DescribeEvent(int id, TextView name,
                                  std::initializer_list<TextView> parameters) {
  using Shape = dispatch::EventShapeOf<decltype(kEvent)>;
  if (parameters.size() != Shape::kCount) throw "the table and the C++ event differ";
  EventInfo info;
  info.id = id;
  info.name = name;
  info.parameter_count = Shape::kCount;
  info.attach = &Shape::template Attach<kEvent>;
  info.detach = &Shape::template Detach<kEvent>;
  std::size_t i = 0;
  for (TextView parameter : parameters) {
    info.parameter_slots[i] = {parameter, Shape::kTypes[i], Shape::kByReference[i]};
    ++i;
  }
  return info;
}

}  // namespace tovalin
