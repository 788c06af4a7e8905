#include "hosts/cli/case_file.h"

#include <charconv>

#include "hosts/cli/input.h"

namespace tovalin::tool {
namespace {

struct Escape {
  char16_t letter;
  char16_t character;
};

constexpr Escape kEscapes[] = {
    {u't', u'\t'}, {u'n', u'\n'}, {u'r', u'\r'}, {u'\\', u'\\'},
    {u'#', u'#'},  {u'[', u'['},  {u'!', u'!'},
};

// The character of `digits` hexadecimal digits at the start of `text`.
char16_t HexadecimalCharacter(TextView text, std::size_t digits) {
  const std::string code = ToUtf8(text.substr(0, digits));
  std::uint16_t value = 0;
  const auto read = std::from_chars(code.data(), code.data() + code.size(), value, 16);
  if (code.size() != digits || read.ptr != code.data() + code.size())
    throw TableFault{"an escape wants " + std::to_string(digits) + " hexadecimal digits"};
  return value;
}

Text Unescaped(TextView cell) {
  Text text;
  for (std::size_t i = 0; i < cell.size(); ++i) {
    if (cell[i] != u'\\') {
      text.push_back(cell[i]);
      continue;
    }
    const char16_t letter = ++i < cell.size() ? cell[i] : u' ';
    if (letter == u'x' || letter == u'u') {
      const std::size_t digits = letter == u'x' ? 2 : 4;
      text.push_back(HexadecimalCharacter(cell.substr(i + 1), digits));
      i += digits;
      continue;
    }
    const auto* known = std::begin(kEscapes);
    while (known != std::end(kEscapes) && known->letter != letter) ++known;
    if (known == std::end(kEscapes)) throw TableFault{"no such escape: write \\\\ for a backslash"};
    text.push_back(known->character);
  }
  return text;
}

std::vector<Text> Cells(TextView line) {
  std::vector<Text> cells;
  while (true) {
    const std::size_t tab = line.find(u'\t');
    cells.push_back(Unescaped(line.substr(0, tab)));
    if (tab == TextView::npos) return cells;
    line.remove_prefix(tab + 1);
  }
}

Section BeginSection(const std::string& file, TableLine head) {
  Section section;
  section.file = file;
  const Text kind = head.cells[0];
  if (!kind.ends_with(u']')) throw TableFault{"a section begins with [kind]"};
  section.kind = kind.substr(1, kind.size() - 2);
  for (std::size_t i = 1; i < head.cells.size(); ++i) {
    const Text& cell = head.cells[i];
    const std::size_t equals = cell.find(u'=');
    if (equals == Text::npos)
      section.columns.push_back(cell);
    else
      section.fixed.emplace_back(cell.substr(0, equals), cell.substr(equals + 1));
  }
  section.head = std::move(head);
  return section;
}

void AddLine(const std::string& file, TableLine line, std::vector<Section>& sections) {
  if (line.raw.starts_with('[')) {
    sections.push_back(BeginSection(file, std::move(line)));
    return;
  }
  if (sections.empty()) throw TableFault{"a case before the first [kind]"};
  Section& section = sections.back();
  if (line.raw.starts_with('!')) {
    if (!section.cases.empty()) throw TableFault{"a directive stands before the cases"};
    section.directives.push_back(std::move(line));
    return;
  }
  if (line.cells.size() > section.columns.size()) throw TableFault{"more cells than columns"};
  section.cases.push_back(std::move(line));
}

}  // namespace

const Text& TableLine::At(std::size_t cell) const {
  if (cell >= cells.size()) throw TableFault{"a directive wants more cells: " + raw};
  return cells[cell];
}

TextView Section::Cell(const TableLine& line, TextView column) const {
  for (const auto& [name, text] : fixed)
    if (name == column) return text;
  for (std::size_t i = 0; i < columns.size() && i < line.cells.size(); ++i)
    if (columns[i] == column) return line.cells[i];
  return {};
}

std::vector<Text> Section::AllColumns() const {
  std::vector<Text> all = columns;
  for (const auto& column : fixed) all.push_back(column.first);
  return all;
}

std::vector<Section> ReadSections(const std::string& path) {
  std::vector<Section> sections;
  int number = 0;
  ReadLines(path, [&](std::string_view raw) {
    ++number;
    if (raw.empty() || raw.starts_with('#')) return;
    try {
      AddLine(path, {number, std::string(raw), Cells(FromUtf8(raw))}, sections);
    } catch (const TableFault& fault) {
      throw TableFault{path + ":" + std::to_string(number) + ": " + fault.text};
    }
  });
  return sections;
}

std::string Escaped(TextView text) {
  Text escaped;
  for (char16_t c : text) {
    constexpr TextView kControls = u"\t\n\r\\";
    constexpr TextView kLetters = u"tnr\\";
    if (const std::size_t found = kControls.find(c); found != TextView::npos) {
      escaped.append({u'\\', kLetters[found]});
    } else if (c < u' ') {
      constexpr TextView kDigits = u"0123456789ABCDEF";
      escaped.append({u'\\', u'x', kDigits[c >> 4], kDigits[c & 15]});
    } else {
      escaped.push_back(c);
    }
  }
  return ToUtf8(escaped);
}

}  // namespace tovalin::tool
