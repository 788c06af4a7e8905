#include "tovalin/cls_file_export.h"

#include <algorithm>
#include <iterator>

#include "export/layout_description.h"
#include "export/numeric_widths.h"
#include "export/output_file.h"
#include "export/record_writer.h"
#include "frame/clock.h"
#include "frame/code_page.h"
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
  const auto known = std::ranges::find(kDateOrders, NewValue, &DateOrder::code);
  const DateOrder& order = known == std::end(kDateOrders) ? kOtherOrder : *known;
  date_order_ = order.code;
  date_pattern_.clear();
  for (const TextView part : order.parts) {
    if (!date_pattern_.empty()) date_pattern_ += date_separator_;
    date_pattern_ += part == kYear ? year_ : part;
  }
}

bool clsFileExport::GenerarArchivoPlanoDesdeBD(Variant& rvarDatos, const Ref<Campos>& vcolCampos,
                                               std::int32_t vlngRows, const Text& vstrArchivoSalida,
                                               const Text&) const {
  try {
    Export(rvarDatos, vcolCampos.get(), vlngRows, vstrArchivoSalida);
    return true;
  } catch (...) {  // whatever it was, also in the host's clock
    return false;
  }
}

void clsFileExport::Export(const Variant& data, const Campos* fields, std::int32_t last_row,
                           const Text& path) const {
  const bool fixed_width = format_ != TEXTO_DELIMITADO;
  OutputFile data_file(path + u".txt");
  LayoutDescription layout(path, clock_ ? clock_() : SystemNow(), fixed_width);
  RecordWriter records(date_pattern_, text_qualifier_, fixed_width);
  std::vector<Field> resolved;
  for (std::int64_t row = 0; row <= last_row; ++row) {
    if (row == 0) resolved = ResolveFields(fields);
    records.Start();
    for (const Field& field : resolved) {
      const std::size_t length = records.Add(field, data, static_cast<std::size_t>(row));
      if (row == 0) layout.AddField(field.name, length);
    }
    data_file.Write(records.Finish());
  }
  std::string description;
  AppendToCodePage(description, layout.Finish(last_row));
  data_file.Close();
  OutputFile layout_file(path + u".ref");
  layout_file.Write(description += "\r\n");
  layout_file.Close();
}

}  // namespace tovalin
