#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <set>
#include <string>

#include "tovalin/error.h"

namespace tovalin {
namespace {

namespace fs = std::filesystem;

std::string Read(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

/// The platform's errors as the header declares them: name and number.
std::map<std::string, int> DeclaredFailures() {
  const std::string header = Read(TOVALIN_SOURCE_DIR "/include/tovalin/error.h");
  const std::regex row(R"(\n  (\w+) = (\d+),)");
  std::map<std::string, int> failures;
  for (std::sregex_iterator at(header.begin(), header.end(), row), end; at != end; ++at)
    failures[(*at)[1]] = std::stoi((*at)[2]);
  return failures;
}

/// The numbers in the list of errors of docs/behaviour.md.
std::set<int> DocumentedNumbers() {
  const std::string page = Read(TOVALIN_SOURCE_DIR "/docs/behaviour.md");
  const std::size_t start = page.find("- **Errores.**");
  if (start == std::string::npos) return {};
  const std::string list = page.substr(start, page.find('.', page.find(':', start)) - start);
  const std::regex number(R"(\d+)");
  std::set<int> numbers;
  for (std::sregex_iterator at(list.begin(), list.end(), number), end; at != end; ++at)
    numbers.insert(std::stoi(at->str()));
  return numbers;
}

/// The names of the failures that the library's sources raise or ask for.
std::set<std::string> RaisedFailures() {
  const fs::path root(TOVALIN_SOURCE_DIR);
  std::set<std::string> raised;
  const auto read = [&raised](const fs::path& path) {
    static const std::regex use(R"(Failure::(\w+))");
    const std::string source = Read(path);
    for (std::sregex_iterator at(source.begin(), source.end(), use), end; at != end; ++at)
      raised.insert((*at)[1]);
  };
  read(root / "classes.cc");
  for (const char* folder : {"include", "frame", "evaluator", "formatting", "export", "flatfile",
                             "forms", "files", "hosts"})
    for (const auto& entry : fs::recursive_directory_iterator(root / folder))
      // Not the table of their texts.
      if (entry.is_regular_file() && entry.path().filename() != "error.cc") read(entry.path());
  return raised;
}

TEST(ErrorsTest, ThePageListsThoseThatTheLibraryRaises) {
  std::set<int> numbers;
  std::set<std::string> names;
  for (const auto& [name, number] : DeclaredFailures()) {
    numbers.insert(number);
    names.insert(name);
    EXPECT_FALSE(PlatformError(static_cast<Failure>(number)).description.empty()) << name;
  }
  EXPECT_EQ(DocumentedNumbers(), numbers);
  EXPECT_EQ(RaisedFailures(), names);
}

}  // namespace
}  // namespace tovalin
