#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <variant>

#include "tovalin/api.h"
#include "tovalin/object.h"
#include "tovalin/variant.h"

// The description of the classes: what late-bound calls, the command line, every other
// binding and the reference go by. It is written once, in a table of each class
// (tovalin/dispatch.h shows how), and read here:
//
//   Classes() (tovalin/factory.h)   each ClassInfo; `create` is null for a class of which
//   │                               a host gets objects from others only
//   └ ClassInfo                     name, texts
//     ├ MemberInfo                  id, name, kind, type of the result, texts; `call`.
//     │ │                           A property has a row for each of Get, Let and Set
//     │ ├ ParameterInfo             name, type, passing, optional, default, text. The new
//     │ │                           value of a Let or Set is its last parameter
//     │ └ ErrorInfo                 number, and when it is raised
//     ├ EventInfo                   id, name, parameters, texts; attach, detach
//     └ EnumInfo                    name, text, values: the codes that its members take
//
//   ValueType                       a subtype; for an Object the name of the class, for a
//                                   code the EnumInfo, which some class has
//
// All of it is constant and lives as long as the process: pointers, spans and views
// into it stay valid, and may be kept. Names are ASCII, texts are Spanish. A text `doc` is
// the one that automation hosts show; where it is empty, or says too little, `reference`
// is the text for a person (see Explanation). Ids are pinned: tests/hosts/member_ids.txt.

namespace tovalin {

/// One of the codes of an enumeration.
struct EnumValueInfo {
  TextView name;
  std::int32_t value = 0;
  TextView doc;
};

struct EnumInfo {
  TextView name;
  TextView doc;
  std::span<const EnumValueInfo> values;
};

struct ValueType {
  Subtype subtype = Subtype::Empty;       // Empty: no value; Variant: any subtype
  TextView class_name{};                  // of an Object: "Campos" ...; empty for any
  const EnumInfo* enumeration = nullptr;  // of a code: what its values mean
};

/// What a call does with an argument. Those by value are In; one by reference may be In
/// too, when the member leaves it as it is.
enum class Passing : std::uint8_t { In = 1, Out = 2, InOut = 3 };

/// The value that an omitted optional argument takes; none makes it "missing".
using DefaultValue = std::variant<std::monostate, bool, std::int32_t, const char16_t*>;

struct ParameterInfo {
  TextView name;
  ValueType type;
  bool by_reference = false;
  Passing passing = Passing::In;
  bool optional = false;
  DefaultValue default_value{};
  TextView doc;
};

struct ErrorInfo {
  std::int32_t number = 0;
  TextView when;
};

/// The ids that automation gives a meaning.
inline constexpr int kDefaultMemberId = 0;  // the member that stands for its object
inline constexpr int kNewEnumId = -4;       // the member that gives an enumerator

struct MemberInfo {
  static constexpr std::size_t kMostParameters = 8;

  int id = 0;
  TextView name;
  MemberKind kind = MemberKind::Method;
  bool hidden = false;      // in no list for people
  bool restricted = false;  // for languages to call, not for their programs
  std::span<const ParameterInfo> parameters;
  ValueType result;
  /// Calls the member with exactly as many arguments as it has parameters. Throws Error.
  Variant (*call)(Object& object, std::span<Variant> arguments) = nullptr;

  TextView doc;
  TextView reference;
  TextView result_doc;  // empty where the text of the member tells
  std::span<const ErrorInfo> errors;
};

struct EventInfo {
  int id = 0;
  TextView name;
  std::span<const ParameterInfo> parameters;
  int (*attach)(Object& object, EventSink sink) = nullptr;
  void (*detach)(Object& object, int attachment) = nullptr;

  TextView doc;
  TextView reference;
};

struct ClassInfo {
  TextView name;
  std::span<const MemberInfo> members;
  std::span<const EventInfo> events{};
  std::span<const EnumInfo* const> enumerations{};
  Ref<Object> (*create)() = nullptr;  // null: no class that a host creates

  TextView doc{};
  TextView reference{};

  /// The member of that name (without regard to case) and kind, or null.
  TOVALIN_API const MemberInfo* Find(TextView name, MemberKind kind) const;
  TOVALIN_API const MemberInfo* Find(int id, MemberKind kind) const;
  TOVALIN_API const EventInfo* FindEvent(TextView name) const;
  /// The member that stands for an object of the class (`Item`, `Value`), or null; one
  /// that gives its enumerator, or null. Of a property it is the row that reads it.
  TOVALIN_API const MemberInfo* DefaultMember() const;
  TOVALIN_API const MemberInfo* Enumerator() const;
};

/// Object::Invoke for a member that was found before.
TOVALIN_API std::optional<Error> Invoke(Object& object, const MemberInfo& member,
                                        std::span<Variant> arguments, Variant& result);

/// The text of a class, member or event for a person who reads about it.
template <class Info>
constexpr TextView Explanation(const Info& info) {
  return info.reference.empty() ? info.doc : info.reference;
}

/// The description of a class as a JSON object in UTF-8:
///
///     {"name": "Campos", "creatable": true, "doc": "...", "reference": "...",
///      "default": "Item", "enumerator": "_NewEnum",
///      "members": [{"id": 3, "name": "Item", "kind": "method", "hidden": true,
///                   "restricted": true, "doc": "...", "reference": "...",
///                   "parameters": [{"name": "Index", "type": "Variant", "code": 12,
///                                   "class": "Campos", "enumeration": "DataType",
///                                   "byReference": true, "passing": "inout",
///                                   "optional": true, "default": 0, "doc": "..."}],
///                   "result": {"type": "Object", "code": 9, "class": "Campo", "doc": "..."},
///                   "errors": [{"number": 5, "when": "..."}]}],
///      "events": [{"id": 1, "name": "...", "doc": "...", "parameters": [...]}],
///      "enumerations": [{"name": "...", "doc": "...",
///                        "values": [{"name": "...", "value": 1, "doc": "..."}]}]}
///
/// What is false, empty or missing is left out; "kind" is method, get, let or set,
/// "passing" in, out or inout, "code" the code of a Subtype.
TOVALIN_API std::string DescribeJson(const ClassInfo& info);

/// Several classes as {"version": "1.0.0", "classes": [...]}: DescribeJson(Classes()) has
/// everything.
TOVALIN_API std::string DescribeJson(std::span<const ClassInfo* const> classes);

}  // namespace tovalin
