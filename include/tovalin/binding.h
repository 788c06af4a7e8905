#pragma once

#include <array>
#include <functional>
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

// How C++ members and events meet Variants: the subtype of each C++ type, the arguments
// of a call converted and carried back, the handlers of an event. C++ parameters mean:
//
//   Text, TextView, const Text&   String       Text&, double& ...  by reference
//   std::int16_t, double ...      their subtype
//   const Variant&                any subtype; an omitted one arrives as missing
//   Ref<T>, const Ref<T>&         an object of that class, or none
//   Ref<T>*                       optional, by reference; null when omitted

namespace tovalin::dispatch {

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

}  // namespace tovalin::dispatch
