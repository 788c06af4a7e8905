#include <algorithm>

#include "frame/settings/ini_text.h"
#include "frame/settings/settings_path.h"
#include "tests/fuzz/fuzz_input.h"
#include "tests/fuzz/scratch_directory.h"
#include "tovalin/evaluador.h"
#include "tovalin/settings.h"

// A settings file of any bytes, as a person, an editor or a broken copy leaves it: what
// is saved is found again, nothing else changes, and evaluations leave their trace.
//
// An input has the bytes of the file, and then a line for each thing to do:
//   r SECTION|KEY        look an entry up
//   w SECTION|KEY|TEXT   save one
//   d SECTION|KEY        delete one
//   x BYTES              put the file in other hands: append bytes
//   c                    cut the file in half
//   t FORMULA            evaluate a formula, whose trace goes to the same file

namespace tovalin::fuzz {
namespace {

constexpr TextView kApplication = u"Evaluador";

struct Entry {
  Text section;
  Text key;
  Text text;

  explicit Entry(TextView line) {
    Text* const parts[] = {&section, &key, &text};
    for (Text* part : parts) {
      const std::size_t end = part == &text ? TextView::npos : line.find(u'|');
      *part = line.substr(0, end);
      line = end == TextView::npos ? TextView() : line.substr(end + 1);
    }
  }
  bool HasNameOf(const Entry& other) const {
    return EqualFolded(section, other.section) && EqualFolded(key, other.key);
  }
};

using Entries = std::vector<Entry>;

// The same steps on the text of a file alone.
void CheckIniText(std::string file, const Entries& entries) {
  for (const Entry& entry : entries) {
    std::vector<std::optional<Text>> before;
    for (const Entry& other : entries) before.push_back(FindEntry(file, other.section, other.key));
    const std::string with = WithEntry(file, entry.section, entry.key, entry.text);
    Require(FindEntry(with, entry.section, entry.key) == entry.text, "a saved text is found");
    const std::string without = WithoutEntry(with, entry.section, entry.key);
    Require(!FindEntry(without, entry.section, entry.key), "a deleted text is not found");
    for (std::size_t i = 0; i < entries.size(); ++i) {
      if (entries[i].HasNameOf(entry)) continue;
      Require(FindEntry(with, entries[i].section, entries[i].key) == before[i],
              "saving leaves other entries alone");
      Require(FindEntry(without, entries[i].section, entries[i].key) == before[i],
              "deleting leaves other entries alone");
    }
    file = with;
  }
}

class Session {
 public:
  explicit Session(std::string_view bytes) {
    std::filesystem::create_directories(File().parent_path());
    Replace(bytes);
  }

  void Do(TextView line) {
    if (line.empty()) return;
    const Entry entry(line.substr(std::min<std::size_t>(2, line.size())));
    switch (line.front()) {
      case u'r':
        store_->Get(kApplication, entry.section, entry.key, u"nada");
        return;
      case u'w':
        return Save(entry);
      case u'x':
        return Replace(Bytes() + ToUtf8(line.substr(1)));
      case u'c':
        return Replace(Bytes().substr(0, Bytes().size() / 2));
      case u't':
        return Evaluate(line.substr(1));
      default:
        return;
    }
  }

 private:
  static std::filesystem::path File() { return SettingsPath(kApplication); }
  static std::string Bytes() {
    std::ifstream file(File(), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  // As a program does that writes over a file, which is not gone at any time.
  static void Replace(const std::string_view bytes) {
    std::ofstream(File(), std::ios::binary).write(bytes.data(), std::ssize(bytes));
  }

  Text Read(const Entry& entry) const {
    return store_->Get(kApplication, entry.section, entry.key, u"(nada)");
  }

  void Save(const Entry& entry) {
    store_->Save(kApplication, entry.section, entry.key, entry.text);
    Require(Read(entry) == entry.text, "a text saved in the file is found");
  }

  void Evaluate(TextView formula) {
    Variant result;
    try {
      evaluator_->EvaluatePosfijo(formula, result);
    } catch (const Error&) {
      return;
    }
    if (result.Is(Subtype::String))
      Require(Read(Entry(u"Posfijo|Resultado")) == result.AsText(), "the trace shows the result");
  }

  Ref<SettingsStore> store_ = DefaultSettings();
  Ref<Evaluador> evaluator_ = Make<Evaluador>();
};

}  // namespace
}  // namespace tovalin::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tovalin::fuzz;
  static const ScratchDirectory directory;
  Input input(data, size);
  const std::string bytes(input.TakeSection());
  const std::vector<tovalin::Text> lines = input.TakeLines();
  Entries entries;
  for (const tovalin::Text& line : lines)
    if (line.size() > 2) entries.emplace_back(tovalin::TextView(line).substr(2));
  CheckIniText(bytes, entries);
  Session session(bytes);
  for (const tovalin::Text& line : lines) session.Do(line);
  return 0;
}
