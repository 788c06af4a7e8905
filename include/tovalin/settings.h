#pragma once

#include "tovalin/api.h"
#include "tovalin/object.h"
#include "tovalin/text.h"

namespace tovalin {

/// The per-user settings: texts under an application, a section and a key. A host
/// may put a store of its own in place of the default one.
class TOVALIN_API SettingsStore : public Object {
 public:
  /// Keeps `text`, in place of what stood there. Raises 70, 75, 76 or 61 when it
  /// cannot be written; what was kept before stays then.
  virtual void Save(TextView application, TextView section, TextView key, TextView text) = 0;

  /// The text kept, or `otherwise` when there is none or it cannot be read.
  virtual Text Get(TextView application, TextView section, TextView key,
                   TextView otherwise) const = 0;
};

/// The default store: one readable file for each application,
/// `tovalin/<application>.ini` under the user's configuration directory
/// (XDG_CONFIG_HOME, else ~/.config; %APPDATA% on Windows), with [section]
/// headings and key=value lines. Several processes may use it at once; when one holds a
/// file's lock for two seconds, Save raises 70. The entries of the last evaluation's trace
/// are found in it, too.
TOVALIN_API Ref<SettingsStore> DefaultSettings();

}  // namespace tovalin
