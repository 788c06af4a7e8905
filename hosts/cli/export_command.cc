#include <algorithm>
#include <cmath>
#include <iostream>
#include <limits>
#include <optional>

#include "frame/text/characters.h"
#include "frame/value/decimal_digits.h"
#include "hosts/cli/command_line.h"
#include "hosts/cli/csv.h"
#include "hosts/cli/encoding.h"
#include "hosts/cli/export_report.h"
#include "hosts/cli/input.h"
#include "tovalin/convert.h"
#include "tovalin/locale.h"

// tovalin export: clsFileExport over the rows of a CSV file.

namespace tovalin::tool {
namespace {

[[noreturn]] void RaiseFor(const std::string& problem) { RaiseOwn(u"tovalin", FromUtf8(problem)); }

std::optional<Variant> ReadDouble(const Text& text) { return ReadNumber(text); }

// A number with more digits than a Double keeps stays the text that it is.
std::optional<Variant> ReadExact(const Text& text) {
  const std::optional<double> number = ReadNumber(text);
  if (!number) return std::nullopt;
  if (std::ranges::count_if(text, IsDigit) > kDoubleDigits) return text;
  return *number;
}

// A fraction would be lost to whoever reads the field. Where a Double no longer tells,
// the digits behind the point do.
std::optional<Variant> ReadWhole(const Text& text) {
  std::optional<Variant> number = ReadExact(text);
  if (!number) return std::nullopt;
  const std::size_t point = text.find(CurrentLocale().decimal_separator);
  const bool has_fraction =
      number->Is(Subtype::Double)
          ? std::trunc(number->AsDouble()) != number->AsDouble()
          : text.find_first_of(u"123456789", std::min(point, text.size())) != Text::npos;
  return has_fraction ? std::nullopt : number;
}

std::optional<Variant> ReadMoney(const Text& text) {
  if (!ReadNumber(text)) return std::nullopt;
  return ToCurrency(Variant(text));
}

std::optional<Variant> ReadMoment(const Text& text) {
  if (!IsDate(Variant(text))) return std::nullopt;
  return ToDate(Variant(text));
}

struct CellReading {
  std::int32_t type;
  std::optional<Variant> (*read)(const Text&);
  std::string_view wanted;
};

// The cells of any other type are texts.
constexpr CellReading kCellReadings[] = {
    {kInteger, ReadWhole, "número entero"}, {kWholeNumber, ReadWhole, "número entero"},
    {kNumeric, ReadExact, "número"},        {kCurrency, ReadMoney, "importe"},
    {kDouble, ReadDouble, "número"},        {kFloat, ReadDouble, "número"},
    {kDate, ReadMoment, "fecha"},           {kTime, ReadMoment, "hora"},
    {kTimeOfDay, ReadMoment, "hora"},
};

struct ExportField {
  std::string name;
  std::int32_t type;
  std::int32_t size;
  std::size_t column;
};

// An empty cell is Null, as in a table of a database. Raises kObjectError, with the
// place, for one that does not read as its field's type.
Variant CellValue(const std::string& cell, const ExportField& field, std::size_t row) {
  if (cell.empty()) return Variant::Null();
  const Text text = FromUtf8(cell);
  const auto reading = std::ranges::find(kCellReadings, field.type, &CellReading::type);
  if (reading == std::end(kCellReadings)) return text;
  if (std::optional<Variant> value = reading->read(text)) return *value;
  RaiseFor("Fila " + std::to_string(row) + ", campo " + field.name + ": " + Quoted(cell) +
           " no es del tipo " + std::to_string(field.type) + ", " + std::string(reading->wanted));
}

std::int32_t WholeNumber(const std::string& text, std::int32_t least, std::int32_t most,
                         const std::string& what) {
  const std::optional<double> number = ReadNumber(FromUtf8(text));
  if (!number || std::trunc(*number) != *number || *number < least || *number > most)
    RaiseFor(what + ": " + Quoted(text) + " no es un número entero de " + std::to_string(least) +
             " a " + std::to_string(most));
  return static_cast<std::int32_t>(*number);
}

// The fields of an export, from a file with the columns name, type, size, column.
class FieldList {
 public:
  FieldList(const std::string& path, Encoding encoding) : path_(path) {
    CsvReader reader(path, encoding);
    reader.ForEachRow([this](const CsvRow& row) { HandleRow(row); });
    if (rows_ == 0) RaiseFor(path_ + ": no tiene encabezado");
  }

  const std::vector<ExportField>& Fields() const { return fields_; }

 private:
  enum Column { kName, kType, kSize, kPosition, kColumns };
  static constexpr TextView kHeaders[kColumns] = {u"name", u"type", u"size", u"column"};
  static constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();

  void HandleRow(const CsvRow& row) {
    if (rows_++ == 0) return HandleHeader(row);
    if (row.size() != columns_)
      RaiseFor(Place() + ": tiene " + std::to_string(row.size()) + " campos y el encabezado " +
               std::to_string(columns_));
    const std::string& size = row[places_[kSize]];
    fields_.push_back(
        {row[places_[kName]], WholeNumber(row[places_[kType]], 0, kMost, Place() + ", type"),
         size.empty() ? 0 : WholeNumber(size, 0, kMost, Place() + ", size"),
         static_cast<std::size_t>(WholeNumber(row[places_[kPosition]], 0,
                                              std::numeric_limits<std::int16_t>::max(),
                                              Place() + ", column"))});
  }

  void HandleHeader(const CsvRow& row) {
    columns_ = row.size();
    for (std::size_t i = 0; i < kColumns; ++i) {
      const auto named = [&](const std::string& header) {
        return EqualFolded(Trim(FromUtf8(header)), kHeaders[i]);
      };
      const auto found = std::ranges::find_if(row, named);
      if (found == row.end())
        RaiseFor(path_ + ": falta la columna " + ToUtf8(kHeaders[i]) + SeparatorHint(row));
      places_[i] = static_cast<std::size_t>(found - row.begin());
    }
  }

  std::string Place() const { return path_ + ", fila " + std::to_string(rows_ - 1); }

  std::string path_;
  std::size_t rows_ = 0;
  std::size_t columns_ = 0;
  std::size_t places_[kColumns] = {};
  std::vector<ExportField> fields_;
};

// The array has a column for each field, not for each column of the file: a field
// may then read the same column under another type.
class ExportRows {
 public:
  ExportRows(const std::vector<ExportField>& fields, std::optional<std::int32_t> most)
      : fields_(fields), most_(most) {}

  void HandleRow(const CsvRow& row) {
    if (!header_) return HandleHeader(row);
    if (most_ && rows_ == static_cast<std::size_t>(*most_)) return;
    ++rows_;
    if (row.size() > *header_)
      RaiseFor("Fila " + std::to_string(rows_) + ": tiene " + std::to_string(row.size()) +
               " campos y el encabezado " + std::to_string(*header_));
    for (const ExportField& field : fields_)
      values_.push_back(field.column < row.size() ? CellValue(row[field.column], field, rows_)
                                                  : Variant::Null());
  }

  std::size_t Rows() const { return rows_; }

  Variant Array() {
    auto array = Make<VariantArray>(fields_.size(), rows_);
    for (std::size_t row = 0; row < rows_; ++row)
      for (std::size_t i = 0; i < fields_.size(); ++i)
        array->At(i, row) = std::move(values_[row * fields_.size() + i]);
    return array;
  }

 private:
  void HandleHeader(const CsvRow& row) {
    header_ = row.size();
    for (const ExportField& field : fields_)
      if (field.column >= row.size())
        RaiseFor("El campo " + field.name + " es la columna " + std::to_string(field.column) +
                 " y el archivo tiene de 0 a " + std::to_string(row.size() - 1) +
                 SeparatorHint(row));
  }

  const std::vector<ExportField>& fields_;
  std::optional<std::int32_t> most_;
  std::optional<std::size_t> header_;
  std::size_t rows_ = 0;
  std::vector<Variant> values_;  // row by row
};

Ref<Campos> MakeCampos(const std::vector<ExportField>& fields) {
  auto records = Make<Campos>();
  for (const ExportField& field : fields) {
    auto record = Make<Campo>(FromUtf8(field.name));
    if (records->Exists(record->Name())) RaiseAbout(Failure::DuplicateKey, field.name);
    record->LetDataType(field.type);
    record->LetSize(field.size);
    record->LetPosition(static_cast<std::int16_t>(records->Count()));
    records->Add(record);
  }
  return records;
}

// The order of dates is set last: it uses the other two. The class makes an
// order that it does not know into AMD.
Ref<clsFileExport> MakeExport(const ExportOptions& options) {
  auto writer = Make<clsFileExport>();
  if (options.fixed) writer->LetFomato(clsFileExport::LONGITUDFIJA);
  if (options.year4) writer->LetAnoCompleto(true);
  if (!options.date_separator.empty())
    writer->LetSeparadorFecha(TextOfArgument(options.date_separator));
  if (!options.text_separator.empty())
    writer->LetSeparadorCadena(TextOfArgument(options.text_separator));
  if (options.date_order) {
    const Text order = TextOfArgument(*options.date_order);
    writer->LetOrdenFechas(order);
    if (writer->OrdenFechas() != order)
      RaiseFor("--date-order: " + Quoted(*options.date_order) +
               " no es DMY, DYM, MDY, MYD, YDM, YMD ni AMD");
  } else if (options.year4 || !options.date_separator.empty()) {
    writer->LetOrdenFechas(writer->OrdenFechas());
  }
  return writer;
}

}  // namespace

int RunExport(const ExportOptions& options) {
  constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
  const Ref<clsFileExport> writer = MakeExport(options);
  const Text output = TextOfArgument(options.output);
  const Encoding encoding = ReadEncoding(options.encoding);
  const FieldList list(options.fields, encoding);
  const Ref<Campos> records = MakeCampos(list.Fields());
  std::optional<std::int32_t> most;
  if (options.rows != "all") most = WholeNumber(options.rows, 0, kMost, "--rows");
  ExportRows rows(list.Fields(), most);
  CsvReader reader(options.input, encoding);
  reader.ForEachRow([&rows](const CsvRow& row) { rows.HandleRow(row); });
  for (const char* extension : {".txt", ".ref"})
    for (const std::string& input : {options.input, options.fields})
      RequireOtherFile(input, options.output + extension);

  Variant data = rows.Array();
  const std::int32_t wanted = most.value_or(static_cast<std::int32_t>(rows.Rows()));
  if (writer->GenerarArchivoPlanoDesdeBD(data, records, wanted - 1, output)) return kDone;
  std::cerr << DescribeFailure(*writer->LastFailure(), options.output, wanted, rows.Rows());
  return kFaults;
}

}  // namespace tovalin::tool
