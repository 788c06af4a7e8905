#pragma once

#include <functional>
#include <optional>
#include <span>

#include "tovalin/api.h"
#include "tovalin/error.h"
#include "tovalin/ref.h"
#include "tovalin/text.h"

namespace tovalin {

class Variant;
struct ClassInfo;

/// How a member is called: as a method, or to read or write a property.
enum class MemberKind : std::uint8_t { Method = 1, Get = 2, Let = 4, Set = 8 };

/// A handler attached by name: it gets the event's arguments, those passed by
/// reference as by-reference Variants that it may change.
using EventSink = std::function<void(std::span<Variant>)>;

/// What every object of the library and of its hosts is: shared through Refs,
/// and callable by member name.
///
/// An object is used by one thread at a time. Two objects on two threads share
/// nothing but the current locale and the settings files.
class TOVALIN_API Object {
 public:
  static constexpr TextView kClassName{};  // the name of no class: any object

  Object() = default;
  Object(const Object&) = delete;
  Object& operator=(const Object&) = delete;
  virtual ~Object();

  /// The description of this object's class; classes of the library also have it as
  /// `kInfo`, without an object. A host's class that does not
  /// override it has the name "Object" and no members.
  virtual const ClassInfo& Class() const;

  /// Calls the member `name` (without regard to case) late-bound.
  /// `arguments` stand in the order of the interface; an omitted one is left out
  /// at the end or given as Variant::Missing(). For Let and Set the new value is
  /// the last argument. Arguments are converted to the parameters' types; those
  /// passed by reference carry back what the member set.
  /// `result` receives the member's value (Empty when it has none).
  /// Answers nothing on success, else what was raised: 438 for an unknown
  /// member, 449 and 450 for missing and surplus arguments, 13 and 6 for
  /// arguments that do not convert, or the member's own error. Never throws Error.
  virtual std::optional<Error> Invoke(TextView name, MemberKind kind, std::span<Variant> arguments,
                                      Variant& result);

  /// Attaches a handler to the event `name`, and answers a number to Detach it
  /// with. Raises 438 when the class has no such event.
  int Attach(TextView name, EventSink sink);
  void Detach(TextView name, int attachment);

  ReferenceCount references;
};

}  // namespace tovalin
