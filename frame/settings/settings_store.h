#pragma once

#include "tovalin/settings.h"

namespace tovalin {

/// The default store, which tries so often to get the lock of a file, a millisecond apart.
Ref<SettingsStore> MakeFileSettings(int lock_attempts);

/// Whether this is a default store.
bool IsFileSettings(const SettingsStore& store);

}  // namespace tovalin
