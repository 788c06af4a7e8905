#pragma once

#include <exception>
#include <initializer_list>
#include <utility>

#include "tovalin/control.h"
#include "tovalin/error.h"
#include "tovalin/variant.h"

namespace tovalin {

// A control's members, called late-bound. What the control answers as an error
// is thrown.

/// The kind of a control; that of an object which is no Control is Other.
ControlKind KindOf(const Object& object);

/// `object.name(indices...)`, whether it is a property or a method there.
Variant ReadMember(Object& object, TextView name, std::initializer_list<Variant> indices = {});

/// `object.name(index)` where `name` may also be a collection, whose Item is taken then.
Ref<Object> ReadElement(Object& object, TextView name, const Variant& index);

/// `object.name = value`
void WriteMember(Object& object, TextView name, const Variant& value);
/// `object.name(index) = value`
void WriteMember(Object& object, TextView name, const Variant& index, const Variant& value);

void CallMember(Object& object, TextView name);

/// The object that a value holds. Raises 424 for another subtype, 91 for none.
Ref<Object> RequireObject(const Variant& value);

/// Runs `work`; an error that it raises ends it and is ignored.
template <class Work>
void IgnoreErrors(Work work) {
  try {
    work();
  } catch (const Error&) {
  } catch (const std::exception&) {
  }
}

}  // namespace tovalin
