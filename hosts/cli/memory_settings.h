#pragma once

#include <map>

#include "tovalin/settings.h"

namespace tovalin::tool {

/// Settings that nobody else sees and that end with their owner.
class MemorySettings : public SettingsStore {
 public:
  void Save(TextView application, TextView section, TextView key, TextView text) override {
    entries_[Path(application, section, key)] = text;
  }
  Text Get(TextView application, TextView section, TextView key,
           TextView otherwise) const override {
    const auto found = entries_.find(Path(application, section, key));
    return found == entries_.end() ? Text(otherwise) : found->second;
  }

 private:
  static Text Path(TextView application, TextView section, TextView key) {
    return Text(application).append(u"\n").append(section).append(u"\n").append(key);
  }

  std::map<Text, Text> entries_;
};

}  // namespace tovalin::tool
