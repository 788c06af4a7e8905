#include "tovalin/cls_file_export.h"

#include <algorithm>
#include <iterator>

#include "export/export_run.h"
#include "export/numeric_widths.h"
#include "frame/object/error_translation.h"
#include "tovalin/convert.h"

namespace tovalin {
namespace {

/// The parts of a date pattern in the order of a code: "Y" stands for the year.
struct DateOrder {
  TextView code;
  TextView parts[3];
};

constexpr TextView kShortYear = u"yy";
constexpr TextView kLongYear = u"yyyy";
constexpr TextView kYear = u"Y";
constexpr DateOrder kDateOrders[] = {
    {u"DMY", {u"dd", u"mm", kYear}}, {u"DYM", {u"dd", kYear, u"mm"}},
    {u"MDY", {u"mm", u"dd", kYear}}, {u"MYD", {u"mm", kYear, u"dd"}},
    {u"YDM", {kYear, u"dd", u"mm"}}, {u"YMD", {kYear, u"mm", u"dd"}},
};
// The Spanish codes are not among them, deliberately: files with year, month and
// day are what hosts that assign them have always read back.
constexpr DateOrder kOtherOrder = {u"AMD", {kYear, u"mm", u"dd"}};

const NumericWidth& FindWidth(const Variant& type) {
  if (!type.Is(Subtype::String)) {
    const std::int32_t position = ToLong(type);
    if (position < 1 || position > std::ssize(kNumericWidths)) Raise(Failure::SubscriptOutOfRange);
    return kNumericWidths[position - 1];
  }
  const auto named = [&](const NumericWidth& row) { return EqualFolded(row.type, type.AsText()); };
  const auto found = std::ranges::find_if(kNumericWidths, named);
  if (found == std::end(kNumericWidths)) Raise(Failure::InvalidArgument);
  return *found;
}

char16_t FirstCharacter(const Text& text) { return text.empty() ? u' ' : text[0]; }

}  // namespace

struct clsFileExport::Core {
  std::uint8_t format = TEXTO_DELIMITADO;
  Text date_order = u"AMD";
  TextView year = kShortYear;
  char16_t date_separator = u'/';
  char16_t text_qualifier = u'"';
  Text date_pattern;  // by the last order that was set
  HostClock clock;
  std::optional<FailureReport> last_failure;
};

clsFileExport::clsFileExport() : core_(std::make_unique<Core>()) {}
clsFileExport::~clsFileExport() = default;

bool clsFileExport::AnoCompleto() const { return core_->year == kLongYear; }
void clsFileExport::LetAnoCompleto(bool NewValue) {
  core_->year = NewValue ? kLongYear : kShortYear;
}
Text clsFileExport::SeparadorFecha() const { return Text(1, core_->date_separator); }
void clsFileExport::LetSeparadorFecha(const Text& NewValue) {
  core_->date_separator = FirstCharacter(NewValue);
}
Text clsFileExport::SeparadorCadena() const { return Text(1, core_->text_qualifier); }
void clsFileExport::LetSeparadorCadena(const Text& NewValue) {
  core_->text_qualifier = FirstCharacter(NewValue);
}
std::uint8_t clsFileExport::Fomato() const { return core_->format; }
void clsFileExport::LetFomato(std::uint8_t NewValue) { core_->format = NewValue; }

const std::optional<clsFileExport::FailureReport>& clsFileExport::LastFailure() const {
  return core_->last_failure;
}
TextView clsFileExport::DatePattern() const { return core_->date_pattern; }
void clsFileExport::UseClock(HostClock::Function clock) { core_->clock.Use(std::move(clock)); }

std::uint8_t clsFileExport::Precision(const Variant& vPrecision) const {
  return FindWidth(vPrecision).width;
}

// Deliberately of no use: hosts that try it handle the failure and go on with the
// widths that their readers know.
void clsFileExport::LetPrecision(const Variant& vPrecision, std::uint8_t) const {
  FindWidth(vPrecision);
  Raise(Failure::ObjectRequired);
}

const Text& clsFileExport::OrdenFechas() const { return core_->date_order; }
void clsFileExport::LetOrdenFechas(const Text& NewValue) {
  RaisingErrors([&] {
    const auto known = std::ranges::find(kDateOrders, NewValue, &DateOrder::code);
    const DateOrder& order = known == std::end(kDateOrders) ? kOtherOrder : *known;
    Text pattern;
    for (const TextView part : order.parts) {
      if (!pattern.empty()) pattern += core_->date_separator;
      pattern += part == kYear ? core_->year : part;
    }
    core_->date_order = order.code;
    core_->date_pattern = std::move(pattern);
  });
}

// The host's clock may change or drop everything that the host gave, this object too.
bool clsFileExport::GenerarArchivoPlanoDesdeBD(Variant& rvarDatos, const Ref<Campos>& vcolCampos,
                                               std::int32_t vlngRows, const Text& vstrArchivoSalida,
                                               const Text&) {
  const Ref<clsFileExport> alive = Hold(*this);
  core_->last_failure.reset();
  std::optional<ExportRun> run;
  std::optional<Error> error;
  try {
    error = CatchError([&] {
      run.emplace(ExportInput{rvarDatos.Value(), vcolCampos, vlngRows, vstrArchivoSalida,
                              core_->date_pattern, core_->text_qualifier,
                              core_->format != TEXTO_DELIMITADO, core_->clock});
      run->Write();
    });
  } catch (...) {  // what the host's clock may throw
    error = Error{kObjectError, Text(kClassName), u"Excepción desconocida"};
  }
  if (!error) return true;
  FailureReport report;
  report.error = std::move(*error);
  core_->last_failure = std::move(report);
  if (run) CatchError([&] { run->Describe(*core_->last_failure); });
  return false;
}

}  // namespace tovalin
