#include <memory>

#include "frame/object/error_translation.h"
#include "hosts/c/callback.h"
#include "hosts/c/handle_table.h"
#include "hosts/c/values.h"
#include "tovalin/describe.h"
#include "tovalin/factory.h"
#include "tovalin/version.h"

// Values, objects, events, and what the library tells of itself.

using namespace tovalin;
using namespace tovalin::c_abi;

uint32_t tov_version(void) { return TOVALIN_VERSION; }

int32_t tov_describe(const char* class_name, tov_value* json, tov_error* error) {
  return Answer(error, [&] {
    Given(json);
    std::string described;
    if (class_name) {
      const Text name = ReadName(class_name);
      const ClassInfo* const info = FindClass(name);
      if (!info) throw ErrorAbout(Failure::CannotCreateObject, name);
      described = DescribeJson(*info);
    } else {
      described = DescribeJson(Classes());
    }
    *json = WriteText(FromUtf8(described), json->encoding);
  });
}

void tov_clear(tov_value* value) {
  if (value) Clear(*value);
}

void tov_clear_error(tov_error* error) {
  if (error) Clear(*error);
}

int32_t tov_copy(const tov_value* value, tov_value* copy, tov_error* error) {
  return Answer(error, [&] {
    const tov_value& original = Given(value);
    tov_value made = original;
    made.flags = 0;
    if (original.type == TOV_STRING) {
      made = WriteText(ReadText(original), Given(copy).encoding);
    } else if (original.type == TOV_ARRAY || (original.type == TOV_OBJECT && made.as.handle != 0)) {
      Given(copy);
      HandleTable::Instance().Retain(original.as.handle);
      made.flags = TOV_OWNED;
    }
    Given(copy) = made;
  });
}

int32_t tov_create(const char* class_name, tov_handle* object, tov_error* error) {
  return Answer(error, [&] {
    Given(object);
    const Ref<Object> created = CreateObject(ReadName(class_name));
    *object = HandleTable::Instance().Give(created, Make<Group>());
  });
}

int32_t tov_retain(tov_handle handle, tov_error* error) {
  return Answer(error, [&] { HandleTable::Instance().Retain(handle); });
}

int32_t tov_release(tov_handle handle, tov_error* error) {
  return Answer(error, [&] { HandleTable::Instance().Release(handle); });
}

size_t tov_handles(void) { return HandleTable::Instance().Count(); }

int32_t tov_class(tov_handle object, tov_value* class_name, tov_error* error) {
  return Answer(error, [&] {
    Given(class_name);
    const Pin pin = HandleTable::Instance().FindObject(object);
    *class_name = WriteText(pin->value.AsObject()->Class().name, class_name->encoding);
  });
}

int32_t tov_attach(tov_handle object, const char* event, const tov_handler* handler,
                   int32_t* attachment, tov_error* error) {
  return Answer(error, [&] {
    Given(attachment);
    const Pin pin = HandleTable::Instance().FindObject(object);
    const Text name = ReadName(event);
    const auto callback = std::make_shared<Callback>(handler);
    GroupLock lock(pin->group);
    const EventInfo* const info = pin->value.AsObject()->Class().FindEvent(name);
    if (!info) throw ErrorAbout(Failure::NoSuchMember, name);
    *attachment = RaisingErrors([&] {
      return info->attach(
          *pin->value.AsObject(),
          [callback, group = lock.group(), name = ToUtf8(info->name)](std::span<Variant> given) {
            Variant unused;
            callback->Call(name.c_str(), TOV_EVENT, given, unused, group);
          });
    });
    callback->Keep();
  });
}

int32_t tov_detach(tov_handle object, const char* event, int32_t attachment, tov_error* error) {
  return Answer(error, [&] {
    const Pin pin = HandleTable::Instance().FindObject(object);
    const Text name = ReadName(event);
    GroupLock lock(pin->group);
    pin->value.AsObject()->Detach(name, attachment);
  });
}

int32_t tov_create_host_object(const tov_handler* handler, int32_t control_kind, tov_handle* object,
                               tov_error* error) {
  return Answer(error, [&] {
    Given(object);
    if (control_kind < TOV_TEXT_BOX || control_kind > TOV_OTHER) Raise(Failure::InvalidArgument);
    const auto callback = std::make_shared<Callback>(handler);
    const auto group = Make<Group>();
    const Ref<Object> made =
        Make<HostObject>(callback, static_cast<ControlKind>(control_kind), group);
    *object = HandleTable::Instance().Give(made, group);
    callback->Keep();
  });
}
