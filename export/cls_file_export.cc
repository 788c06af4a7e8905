#include "tovalin/cls_file_export.h"

#include <algorithm>
#include <iterator>

#include "export/export_run.h"
#include "export/numeric_widths.h"
#include "frame/object/guarded.h"
#include "tovalin/convert.h"

namespace tovalin {
namespace {

/// The parts of a date pattern in the order of a code: "Y" stands for the year.
struct DateOrder {
  TextView code;
  TextView parts[3];
};

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

}  // namespace

std::uint8_t clsFileExport::Precision(const Variant& vPrecision) const {
  return FindWidth(vPrecision).width;
}

// Deliberately of no use: hosts that try it handle the failure and go on with the
// widths that their readers know.
void clsFileExport::LetPrecision(const Variant& vPrecision, std::uint8_t) const {
  FindWidth(vPrecision);
  Raise(Failure::ObjectRequired);
}

void clsFileExport::LetOrdenFechas(const Text& NewValue) {
  RaisingErrors([&] {
    const auto known = std::ranges::find(kDateOrders, NewValue, &DateOrder::code);
    const DateOrder& order = known == std::end(kDateOrders) ? kOtherOrder : *known;
    Text pattern;
    for (const TextView part : order.parts) {
      if (!pattern.empty()) pattern += date_separator_;
      pattern += part == kYear ? year_ : part;
    }
    date_order_ = order.code;
    date_pattern_ = std::move(pattern);
  });
}

// The host's clock may change or drop everything that the host gave, this object too.
bool clsFileExport::GenerarArchivoPlanoDesdeBD(Variant& rvarDatos, const Ref<Campos>& vcolCampos,
                                               std::int32_t vlngRows, const Text& vstrArchivoSalida,
                                               const Text&) {
  const Ref<clsFileExport> alive = Hold(*this);
  last_failure_.reset();
  std::optional<ExportRun> run;
  std::optional<Error> error;
  try {
    error = Guarded([&] {
      run.emplace(ExportInput{rvarDatos.Value(), vcolCampos, vlngRows, vstrArchivoSalida,
                              date_pattern_, text_qualifier_, format_ != TEXTO_DELIMITADO, clock_});
      run->Write();
    });
  } catch (...) {  // what the host's clock may throw
    error = Error{kObjectError, Text(kClassName), u"Excepción desconocida"};
  }
  if (!error) return true;
  FailureReport report;
  report.error = std::move(*error);
  last_failure_ = std::move(report);
  if (run) Guarded([&] { run->Describe(*last_failure_); });
  return false;
}

}  // namespace tovalin
