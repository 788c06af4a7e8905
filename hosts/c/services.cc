#include <array>
#include <map>
#include <memory>
#include <tuple>

#include "hosts/c/callback.h"
#include "hosts/c/handle_table.h"
#include "hosts/c/values.h"
#include "tovalin/cls_file_export.h"
#include "tovalin/convert.h"
#include "tovalin/evaluador.h"
#include "tovalin/lib_fecha.h"
#include "tovalin/lib_general.h"

// What late-bound calls cannot carry: clock, services and settings of the host.

namespace tovalin::c_abi {
namespace {

/// A handler, as a function that the library calls.
class Service {
 public:
  Service(const tov_handler* handler, Ref<Group> group)
      : callback_(std::make_shared<Callback>(handler)), group_(std::move(group)) {}

  void Keep() const { callback_->Keep(); }

  template <class... Values>
  Variant operator()(const char* name, int kind, const Values&... values) const {
    std::array<Variant, sizeof...(Values)> arguments{Variant(values)...};
    Variant result;
    callback_->Call(name, kind, arguments, result, group_);
    return result;
  }

 private:
  std::shared_ptr<Callback> callback_;
  Ref<Group> group_;
};

class MemorySettings : public SettingsStore {
 public:
  void Save(TextView application, TextView section, TextView key, TextView text) override {
    texts_.insert_or_assign(KeyOf(application, section, key), Text(text));
  }
  Text Get(TextView application, TextView section, TextView key,
           TextView otherwise) const override {
    const auto found = texts_.find(KeyOf(application, section, key));
    return found == texts_.end() ? Text(otherwise) : found->second;
  }

 private:
  using Key = std::tuple<Text, Text, Text>;
  static Key KeyOf(TextView application, TextView section, TextView key) {
    return {ToUpper(application), ToUpper(section), ToUpper(key)};
  }
  std::map<Key, Text> texts_;
};

template <class T>
bool UseClock(Object& object, const HostClock::Function& clock) {
  auto* const timed = dynamic_cast<T*>(&object);
  if (timed) timed->UseClock(clock);
  return timed != nullptr;
}

template <class T>
bool UseSettings(Object& object, const Ref<SettingsStore>& settings) {
  auto* const keeping = dynamic_cast<T*>(&object);
  if (keeping) keeping->UseSettings(settings);
  return keeping != nullptr;
}

HostServices ServicesOf(const Service& service) {
  return {
      .active_control = [service]() -> Ref<Object> {
        const Variant control = service("ActiveControl", TOV_GET);
        return control.Is(Subtype::Object) ? control.AsObject() : nullptr;
      },
      .message_box =
          [service](TextView prompt, std::int32_t buttons, TextView title) {
            return ToLong(service("MsgBox", TOV_METHOD, prompt, buttons, title));
          },
      .status_bar = [service](const Ref<Object>& bar, TextView text,
                              bool pause) { service("StatusBar", TOV_METHOD, bar, text, pause); },
  };
}

}  // namespace
}  // namespace tovalin::c_abi

using namespace tovalin;
using namespace tovalin::c_abi;

int32_t tov_use_clock(tov_handle object, const tov_handler* handler, tov_error* error) {
  return Answer(error, [&] {
    const Pin pin = HandleTable::Instance().FindObject(object);
    GroupLock lock(pin->group);
    std::optional<Service> service;
    HostClock::Function clock;
    if (handler) {
      service.emplace(handler, lock.group());
      clock = [service = *service] { return ToDate(service("Clock", TOV_GET)); };
    }
    Object& target = *pin->value.AsObject();
    if (!UseClock<Evaluador>(target, clock) && !UseClock<LibFecha>(target, clock) &&
        !UseClock<clsFileExport>(target, clock))
      Raise(Failure::NoSuchMember);
    if (service) service->Keep();
  });
}

int32_t tov_use_services(tov_handle object, const tov_handler* handler, tov_error* error) {
  return Answer(error, [&] {
    const Pin pin = HandleTable::Instance().FindObject(object);
    GroupLock lock(pin->group);
    auto* const target = dynamic_cast<LibGeneral*>(pin->value.AsObject().get());
    if (!target) Raise(Failure::NoSuchMember);
    if (!handler) return target->UseHost({});
    const Service service(handler, lock.group());
    target->UseHost(ServicesOf(service));
    service.Keep();
  });
}

int32_t tov_use_memory_settings(tov_handle object, tov_error* error) {
  return Answer(error, [&] {
    const Pin pin = HandleTable::Instance().FindObject(object);
    GroupLock lock(pin->group);
    const Ref<SettingsStore> settings = Make<MemorySettings>();
    Object& target = *pin->value.AsObject();
    if (!UseSettings<Evaluador>(target, settings) && !UseSettings<LibGeneral>(target, settings))
      Raise(Failure::NoSuchMember);
  });
}
