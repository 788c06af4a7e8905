#include <exception>

#include "frame/settings_content.h"
#include "frame/settings_file.h"
#include "frame/settings_path.h"
#include "tovalin/error.h"
#include "tovalin/settings.h"

namespace tovalin {
namespace {

// Holds nothing: the environment is asked for the directory at every call.
class FileSettings final : public SettingsStore {
 public:
  void Save(TextView application, TextView section, TextView key, TextView text) override {
    const std::filesystem::path path = SettingsPath(application);
    const FileLock lock(path);
    SettingsContent content = TakeContent(path);
    content.Set(section, key, text);
    ReplaceWhole(path, content.Bytes());
  }

  Text Get(TextView application, TextView section, TextView key,
           TextView otherwise) const override {
    try {
      if (auto text = ReadContent(SettingsPath(application)).Find(section, key)) {
        return *std::move(text);
      }
    } catch (const Error&) {
    } catch (const std::exception&) {
    }
    return Text(otherwise);
  }
};

}  // namespace

Ref<SettingsStore> DefaultSettings() { return Make<FileSettings>(); }

}  // namespace tovalin
