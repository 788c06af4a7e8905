#pragma once

#include "tovalin/control.h"

namespace tovalin {

// The host's services, or their defaults where the host left them empty.

Ref<Object> ActiveControl(const HostServices& host);

/// A plain message with an OK button alone, under the host's own title.
void ShowMessage(const HostServices& host, TextView prompt);

/// Does nothing when `bar` is none.
void ShowOnStatusBar(const HostServices& host, const Ref<Object>& bar, TextView text, bool pause);

}  // namespace tovalin
