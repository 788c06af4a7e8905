#include <unistd.h>

#include <algorithm>
#include <iostream>

#include "frame/text/json.h"
#include "hosts/cli/csv.h"
#include "hosts/cli/encoding.h"
#include "hosts/cli/review.h"

// tovalin review.

namespace tovalin::tool {
namespace {

// A field of a line: what would end it or the line is escaped. A backslash stands for
// itself, so that a suggestion can be pasted.
std::string Field(std::string_view text) {
  std::string field;
  for (char c : text) {
    if (c == '\t')
      field.append("\\t");
    else if (c == '\n')
      field.append("\\n");
    else if (c == '\r')
      field.append("\\r");
    else
      field.push_back(c);
  }
  return field;
}

std::string LabelOf(const ReviewedFormula& reviewed) {
  return reviewed.line > 0 ? std::to_string(reviewed.line) : reviewed.name;
}

void PrintLines(const ReviewedFormula& reviewed) {
  for (const Finding& finding : reviewed.findings) {
    std::cout << finding.severity << '\t' << finding.code << '\t' << finding.start << '\t'
              << finding.length << '\t' << Field(finding.message) << '\t'
              << Field(finding.suggestion);
    if (const std::string label = LabelOf(reviewed); !label.empty())
      std::cout << '\t' << Field(label);
    std::cout << '\n';
  }
}

// How many characters a person sees: a pair of surrogates is one.
std::size_t Width(TextView text) {
  const auto low_surrogate = [](char16_t c) { return c >= 0xDC00 && c <= 0xDFFF; };
  return text.size() - static_cast<std::size_t>(std::ranges::count_if(text, low_surrogate));
}

void PrintWithCarets(const ReviewedFormula& reviewed) {
  if (reviewed.findings.empty()) return;
  Text formula = reviewed.formula;
  for (char16_t& c : formula)
    if (c < u' ') c = u' ';
  if (const std::string label = LabelOf(reviewed); !label.empty()) std::cout << label << ":\n";
  std::cout << "  " << ToUtf8(formula) << '\n';
  for (const Finding& finding : reviewed.findings) {
    const TextView before = TextView(formula).substr(0, finding.start - 1);
    const TextView place = TextView(formula).substr(finding.start - 1, finding.length);
    std::cout << "  " << std::string(Width(before), ' ')
              << std::string(std::max<std::size_t>(Width(place), 1), '^') << '\n'
              << "  " << finding.severity << ' ' << finding.code << ": " << finding.message << '\n';
    if (!finding.suggestion.empty()) std::cout << "  Sugerencia: " << finding.suggestion << '\n';
  }
  std::cout << '\n';
}

void AddJson(Json& list, const ReviewedFormula& reviewed) {
  for (const Finding& finding : reviewed.findings) {
    Json record;
    record.Add("Clase", finding.severity);
    record.Add("Codigo", finding.code);
    record.Add("Inicio", static_cast<std::uint64_t>(finding.start));
    record.Add("Largo", static_cast<std::uint64_t>(finding.length));
    record.Add("Mensaje", finding.message);
    record.Add("Sugerencia", finding.suggestion);
    if (reviewed.line > 0) record.Add("Linea", static_cast<std::uint64_t>(reviewed.line));
    if (!reviewed.name.empty()) record.Add("Nombre", reviewed.name);
    list.Add(std::move(record));
  }
}

std::vector<ReviewedFormula> ReviewLines(const ReviewOptions& options) {
  const Ref<Evaluador> reviewer = MakeReviewer(options.symbols);
  std::vector<ReviewedFormula> reviewed;
  std::size_t number = 0;
  ReadLines(options.lines, [&](std::string_view line) {
    Text formula = TextOfLine(line, options.lines, ++number);
    std::vector<Finding> findings = ReviewOne(*reviewer, formula);
    reviewed.push_back({{}, number, std::move(formula), std::move(findings)});
  });
  return reviewed;
}

std::vector<ReviewedFormula> ReviewFile(const ReviewOptions& options) {
  std::optional<std::vector<Text>> columns;
  if (!options.columns.empty())
    CsvReader(options.columns).ForEachRow([&](CsvRow& row) {
      if (columns) return;
      columns.emplace();
      for (const std::string& header : row) columns->emplace_back(Trim(FromUtf8(header)));
    });
  return ReviewTable(options.symbols, ReadFormulas(options.formulas), columns);
}

std::vector<ReviewedFormula> Review(const ReviewOptions& options) {
  if (!options.lines.empty()) return ReviewLines(options);
  if (!options.formulas.empty()) return ReviewFile(options);
  const Text formula = TextOfArgument(options.formula);
  const Ref<Evaluador> reviewer = MakeReviewer(options.symbols);
  return {ReviewedFormula{{}, 0, formula, ReviewOne(*reviewer, formula)}};
}

int CodeOf(const std::vector<ReviewedFormula>& reviewed) {
  int code = kDone;
  for (const ReviewedFormula& formula : reviewed)
    for (const Finding& finding : formula.findings) {
      if (finding.IsError()) return kFaults;
      if (!finding.IsNote()) code = kWarned;
    }
  return code;
}

}  // namespace

int RunReview(const ReviewOptions& options) {
  const std::vector<ReviewedFormula> reviewed = Review(options);
  if (options.json) {
    Json list(Json::Array{});
    for (const ReviewedFormula& formula : reviewed) AddJson(list, formula);
    std::cout << list.Written() << '\n';
  } else {
    const bool is_watched = isatty(STDOUT_FILENO) != 0;
    std::ranges::for_each(reviewed, is_watched ? PrintWithCarets : PrintLines);
  }
  return CodeOf(reviewed);
}

}  // namespace tovalin::tool
