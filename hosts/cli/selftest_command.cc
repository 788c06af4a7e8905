#include <algorithm>
#include <filesystem>
#include <iostream>

#include "hosts/cli/case_kinds.h"
#include "hosts/cli/command_line.h"
#include "hosts/cli/input.h"

// tovalin selftest: the conformance tables against the library that the tool is
// linked with.

namespace tovalin::tool {
namespace {

namespace fs = std::filesystem;

struct Tally {
  int passed = 0;
  int failed = 0;
};

void ShowDifferences(const Section& section, const TableLine& line,
                     const std::vector<Difference>& differences) {
  std::cout << section.file << ':' << line.number << ": " << line.raw << '\n';
  for (const Difference& difference : differences)
    std::cout << "  " << difference.where << "\n    expected " << difference.expected
              << "\n    got      " << difference.got << '\n';
}

void RunCase(const CaseKind& kind, Case& running) {
  try {
    kind.run(running);
  } catch (const TableFault& fault) {
    running.differences.push_back({"the table", "a case", fault.text});
  } catch (const Error& error) {
    running.differences.push_back({"the case", "no error outside of its call", ShowError(error)});
  }
}

void RunSection(const Section& section, Tally& tally) {
  const CaseKind& kind = KindOf(section);
  Ref<Object> kept;
  for (const TableLine& line : section.cases) {
    Case running{section, line, kept};
    RunCase(kind, running);
    if (running.differences.empty()) {
      ++tally.passed;
      continue;
    }
    ++tally.failed;
    ShowDifferences(section, line, running.differences);
  }
}

void RunFile(const std::string& path, Tally& tally) {
  const auto refuse = [&tally](const std::string& what) {
    ++tally.failed;
    std::cout << what << '\n';
  };
  std::vector<Section> sections;
  try {
    sections = ReadSections(path);
  } catch (const TableFault& fault) {
    refuse(fault.text);
  }
  for (const Section& section : sections) {
    try {
      RunSection(section, tally);
    } catch (const TableFault& fault) {
      refuse(path + ":" + std::to_string(section.head.number) + ": " + fault.text);
    }
  }
}

// Where the tables lie when none are named: in the source tree that is the current
// directory, or beside the installed tool.
std::string DefaultDirectory() {
  const fs::path source = "tests/conformance";
  if (fs::is_directory(source)) return source.string();
  std::error_code ignored;  // elsewhere than on Linux the link is not there
  const fs::path tool = fs::read_symlink("/proc/self/exe", ignored);
  return (tool.parent_path().parent_path() / "share/tovalin/conformance").string();
}

// A directory stands for its tables, in the order of their names.
std::vector<std::string> FilesOf(const std::string& path) {
  if (!fs::is_directory(path)) return {path};
  std::vector<std::string> files;
  for (const auto& entry : fs::directory_iterator(path))
    if (entry.path().extension() == ".tsv") files.push_back(entry.path().string());
  std::sort(files.begin(), files.end());
  return files;
}

}  // namespace

int RunSelftest(std::vector<std::string> paths) {
  if (paths.empty()) paths.push_back(DefaultDirectory());
  Tally tally;
  for (const std::string& path : paths) {
    const std::vector<std::string> files = FilesOf(path);
    if (files.empty()) RaiseAbout(Failure::FileNotFound, path + "/*.tsv");
    for (const std::string& file : files) RunFile(file, tally);
  }
  std::cout << tally.passed << " passed, " << tally.failed << " failed\n";
  return tally.failed == 0 ? kDone : kFaults;
}

}  // namespace tovalin::tool
