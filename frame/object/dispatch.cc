#include "tovalin/dispatch.h"

#include <vector>

#include "frame/object/error_translation.h"

namespace tovalin {
namespace {

Variant DefaultOf(const ParameterInfo& parameter) {
  return std::visit(
      [](const auto& value) {
        if constexpr (std::is_same_v<std::decay_t<decltype(value)>, std::monostate>)
          return Variant::Missing();
        else
          return Variant(value);
      },
      parameter.default_value);
}

// The arguments as the member gets them: as many as it has parameters, the
// omitted ones filled. The given ones stay by-reference Variants on the caller's.
std::vector<Variant> CompleteArguments(const MemberInfo& member, std::span<Variant> given) {
  const std::size_t count = member.parameters.size();
  if (given.size() > count) Raise(Failure::WrongArgumentCount);
  std::vector<Variant> complete;
  complete.reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    const ParameterInfo& parameter = member.parameters[i];
    const bool omitted = i >= given.size() || given[i].IsMissing();
    if (omitted && !parameter.optional) Raise(Failure::ArgumentNotOptional);
    complete.push_back(omitted ? DefaultOf(parameter) : Variant::ByReference(given[i]));
  }
  return complete;
}

const MemberInfo* FindToRead(const ClassInfo& info, int id) {
  const MemberInfo* method = info.Find(id, MemberKind::Method);
  return method ? method : info.Find(id, MemberKind::Get);
}

Error NoSuchMember(TextView name) { return ErrorAbout(Failure::NoSuchMember, name); }

}  // namespace

Object::~Object() = default;

const ClassInfo& Object::Class() const {
  static constexpr ClassInfo kInfo{.name = u"Object", .members = {}};
  return kInfo;
}

std::optional<Error> Object::Invoke(TextView name, MemberKind kind, std::span<Variant> arguments,
                                    Variant& result) {
  const MemberInfo* member = Class().Find(name, kind);
  if (!member) return NoSuchMember(name);
  return tovalin::Invoke(*this, *member, arguments, result);
}

int Object::Attach(TextView name, EventSink sink) {
  const EventInfo* event = Class().FindEvent(name);
  if (!event) throw NoSuchMember(name);
  return RaisingErrors([&] { return event->attach(*this, std::move(sink)); });
}

void Object::Detach(TextView name, int attachment) {
  const EventInfo* event = Class().FindEvent(name);
  if (!event) throw NoSuchMember(name);
  event->detach(*this, attachment);
}

const MemberInfo* ClassInfo::Find(TextView wanted, MemberKind kind) const {
  for (const MemberInfo& member : members)
    if (member.kind == kind && EqualFolded(member.name, wanted)) return &member;
  return nullptr;
}

const MemberInfo* ClassInfo::Find(int id, MemberKind kind) const {
  for (const MemberInfo& member : members)
    if (member.kind == kind && member.id == id) return &member;
  return nullptr;
}

const MemberInfo* ClassInfo::DefaultMember() const { return FindToRead(*this, kDefaultMemberId); }

const MemberInfo* ClassInfo::Enumerator() const { return FindToRead(*this, kNewEnumId); }

const EventInfo* ClassInfo::FindEvent(TextView wanted) const {
  for (const EventInfo& event : events)
    if (EqualFolded(event.name, wanted)) return &event;
  return nullptr;
}

std::optional<Error> Invoke(Object& object, const MemberInfo& member, std::span<Variant> arguments,
                            Variant& result) {
  // A handler may drop the host's last Ref on the object while its member runs.
  const Ref<Object> alive = Hold(object);
  return CatchError([&] {
    CheckStack();
    std::vector<Variant> complete = CompleteArguments(member, arguments);
    result = member.call(object, complete);
  });
}

}  // namespace tovalin
