#include "forms/host_services.h"

#include <cstdio>

#include "forms/member_access.h"

namespace tovalin {
namespace {

constexpr std::int32_t kOkOnly = 0;

}  // namespace

Ref<Object> ActiveControl(const HostServices& host) {
  return host.active_control ? host.active_control() : nullptr;
}

void ShowMessage(const HostServices& host, TextView prompt) {
  if (host.message_box) {
    host.message_box(prompt, kOkOnly, {});
    return;
  }
  const std::string line = ToUtf8(prompt) + "\n";
  std::fwrite(line.data(), 1, line.size(), stderr);
}

void ShowOnStatusBar(const HostServices& host, const Ref<Object>& bar, TextView text, bool pause) {
  if (!bar) return;
  if (host.status_bar) {
    host.status_bar(bar, text, pause);
    return;
  }
  const Ref<Object> panel = ReadElement(*bar, u"Panels", Variant(u"Information"));
  WriteMember(*panel, u"Text", Variant(text));
}

}  // namespace tovalin
