#include "review/review.h"

#include <algorithm>

#include "review/cycles.h"
#include "review/evaluation.h"
#include "review/rules_names.h"

namespace tovalin::review {
namespace {

Findings FindingsOf(const Source& source, const Surroundings& surroundings) {
  Findings findings;
  CheckNames(source, surroundings, findings);
  CheckLiterals(source, findings);
  Evaluation(source, surroundings, findings).Run();
  CheckCycles(source, surroundings, findings);
  findings.Sort();
  return findings;
}

// The places of the checked text, which has no carriage returns, in the text that the
// host gave.
class HostPlaces {
 public:
  explicit HostPlaces(const Text& host_text) {
    places_.reserve(host_text.size() + 1);
    for (std::uint32_t i = 0; i < host_text.size(); ++i) {
      if (host_text[i] != u'\r')
        places_.push_back(i);
      else if (i + 1 < host_text.size() && host_text[i + 1] == u'\n')
        ++i;
    }
    places_.push_back(static_cast<std::uint32_t>(host_text.size()));
  }

  Span Of(Span span) const {
    const std::uint32_t start = places_[span.start];
    return {start, span.end == span.start ? start : places_[span.end - 1] + 1};
  }

 private:
  std::vector<std::uint32_t> places_;
};

bool IsNote(const Finding& finding) { return RowOf(finding.rule).severity == Severity::Note; }

bool IsError(const Finding& finding) { return RowOf(finding.rule).severity == Severity::Error; }

// Suggests formulas. All errors and warnings are mended together, since a formula with
// some of them left does not compute what was meant; a note is mended beside them.
class Suggestions {
 public:
  Suggestions(const Surroundings& surroundings, const Text& host_text, const HostPlaces& places,
              const std::vector<Finding>& findings)
      : surroundings_(surroundings), host_text_(host_text), places_(places), findings_(findings) {
    for (const Finding& finding : findings_)
      if (!IsNote(finding) && finding.repair) Collect(*finding.repair, edits_);
    if (!edits_.empty()) repaired_ = Checked(edits_);
  }

  Variant For(const Finding& finding) {
    if (!finding.repair) return Text();
    if (!IsNote(finding)) return repaired_;
    if (--notes_ < 0 || host_text_.size() > kLongestNoted) return Text();
    std::vector<Edit> edits = edits_;
    Collect(*finding.repair, edits);
    return Checked(edits);
  }

 private:
  // The notes of long formulas get no formula each.
  static constexpr int kMostNotes = 50;
  static constexpr std::size_t kLongestNoted = 10000;

  void Collect(const Repair& repair, std::vector<Edit>& edits) const {
    for (Edit edit : repair.Edits()) {
      edit.other = places_.Of({edit.other, edit.other}).start;
      edit.span = edit.kind == Edit::Kind::Close && edit.span.start > 0 ? EndOf(edit.span.start)
                                                                        : places_.Of(edit.span);
      edits.push_back(std::move(edit));
    }
  }

  // Behind the character in front, not behind a line end that follows it.
  Span EndOf(std::uint32_t place) const {
    const std::uint32_t end = places_.Of({place - 1, place}).end;
    return {end, end};
  }

  // The mended formula, unless it does not keep what it promises.
  Text Checked(std::vector<Edit> edits) const {
    std::optional<Text> text = Repaired(host_text_, std::move(edits));
    if (!text) return {};
    const Source source(surroundings_, *text);
    const Findings left = FindingsOf(source, surroundings_);
    std::size_t remaining = 0;
    for (const Finding& finding : left.List()) {
      if (IsError(finding)) return {};
      remaining += !IsNote(finding);
    }
    const auto stays = [](const Finding& finding) {
      return !IsNote(finding) && !IsError(finding) && !finding.repair;
    };
    const auto expected = std::ranges::count_if(findings_, stays);
    return remaining <= static_cast<std::size_t>(expected) ? std::move(*text) : Text();
  }

  const Surroundings& surroundings_;
  const Text& host_text_;
  const HostPlaces& places_;
  const std::vector<Finding>& findings_;
  std::vector<Edit> edits_;
  Variant repaired_ = Text();
  int notes_ = kMostNotes;
};

}  // namespace

std::vector<Report> ReviewFormula(const Surroundings& surroundings, const Text& formula) {
  const Source source(surroundings, formula);
  const Findings findings = FindingsOf(source, surroundings);
  std::vector<Report> reports;
  if (findings.List().empty()) return reports;
  const HostPlaces places(formula);
  Suggestions suggestions(surroundings, formula, places, findings.List());
  for (const Finding& finding : findings.List()) {
    const RuleRow& row = RowOf(finding.rule);
    const Span span = places.Of(finding.span);
    reports.push_back({ClassOf(row.severity), row.code, span.start + std::size_t{1},
                       span.end - span.start, MessageOf(finding, span.start + std::size_t{1}),
                       suggestions.For(finding)});
  }
  return reports;
}

}  // namespace tovalin::review
