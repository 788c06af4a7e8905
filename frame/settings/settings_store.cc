#include "frame/settings/settings_store.h"

#include <exception>

#include "frame/settings/ini_text.h"
#include "frame/settings/live_trace.h"
#include "frame/settings/settings_edit.h"
#include "frame/settings/settings_path.h"
#include "tovalin/error.h"

namespace tovalin {
namespace {

// Holds nothing: the environment is asked for the directory at every call.
class FileSettings final : public SettingsStore {
 public:
  explicit FileSettings(int lock_attempts) : lock_attempts_(lock_attempts) {}

  void Save(TextView application, TextView section, TextView key, TextView text) override {
    if (const auto trace_key = FindTraceKey(application, section, key)) {
      LiveChanges changes;
      changes[*trace_key] = {text};
      if (LiveTrace().Put(changes, 0)) return;
    }
    SettingsEdit edit(SettingsPath(application), lock_attempts_);
    edit.Set(section, key, text);
    edit.Write();
  }

  Text Get(TextView application, TextView section, TextView key,
           TextView otherwise) const override {
    try {
      const auto trace_key = FindTraceKey(application, section, key);
      std::optional<Text> text =
          trace_key ? ReadTrace()[*trace_key]
                    : FindEntry(ReadSettings(SettingsPath(application)), section, key);
      if (text) return *std::move(text);
    } catch (const Error&) {
    } catch (const std::exception&) {
    }
    return Text(otherwise);
  }

 private:
  int lock_attempts_;
};

}  // namespace

Ref<SettingsStore> DefaultSettings() { return MakeFileSettings(FileLock::kAttempts); }

Ref<SettingsStore> MakeFileSettings(int lock_attempts) { return Make<FileSettings>(lock_attempts); }

bool IsFileSettings(const SettingsStore& store) {
  return dynamic_cast<const FileSettings*>(&store) != nullptr;
}

}  // namespace tovalin
