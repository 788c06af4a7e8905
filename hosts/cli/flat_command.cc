#include <algorithm>
#include <charconv>
#include <iostream>
#include <memory>
#include <optional>

#include "frame/text/characters.h"
#include "frame/value/decimal_digits.h"
#include "hosts/cli/command_line.h"
#include "hosts/cli/csv.h"
#include "hosts/cli/encoding.h"
#include "hosts/cli/export_report.h"
#include "hosts/cli/input.h"
#include "tovalin/archivo_plano.h"
#include "tovalin/convert.h"

// tovalin flat: ArchivoPlano over CSV files.

namespace tovalin::tool {
namespace {

Ref<ArchivoPlano> ReadLayout(const FlatOptions& options) {
  auto file = Make<ArchivoPlano>();
  const Text path = TextOfArgument(options.layout);
  const Text name = ToLower(path);
  if (name.ends_with(u".ini"))
    file->LeerSchemaIni(path, TextOfArgument(options.section));
  else if (name.ends_with(u".ref"))
    file->LeerDescripcion(path);
  else
    file->LeerDiseno(path);
  return file;
}

// Numbers and dates for formulas; the writer reads all others from their texts. A number
// that a Double does not keep stays the text that it is.
Variant CellValue(const std::string& cell, std::int32_t type) {
  if (cell.empty()) return Variant::Null();
  const Text text = FromUtf8(cell);
  if (type == kDate && IsDate(Variant(text))) return ToDate(Variant(text));
  if (type != kNumeric && type != kInteger) return text;
  const std::optional<double> number = ReadNumber(text);
  if (!number || std::ranges::count_if(text, IsDigit) > kDoubleDigits) return text;
  return *number;
}

// The type of a column; one that only formulas read is a number where it reads as one.
std::int32_t TypeOf(const ArchivoPlano& file, const Text& column) {
  const Ref<Collection> columns = file.Columnas();
  for (const Variant& name : columns->List().Items())
    if (EqualFolded(name.AsText(), column)) return file.TipoDeColumna(column);
  return kNumeric;
}

// The rows of a CSV file, whose first one names the columns.
class RowWriter {
 public:
  RowWriter(ArchivoPlano& file, const Text& output) : file_(file), output_(output) {}

  void HandleRow(const CsvRow& row) {
    if (!writing_) return HandleHeader(row);
    ++rows_;
    if (row.size() > types_.size())
      RaiseOwn(u"tovalin",
               FromUtf8("Fila " + std::to_string(rows_) + ": tiene " + std::to_string(row.size()) +
                        " campos y el encabezado " + std::to_string(types_.size())));
    values_.assign(types_.size(), Variant::Null());
    for (std::size_t i = 0; i < row.size(); ++i) values_[i] = CellValue(row[i], types_[i]);
    writing_->Fila(values_);
  }

  bool Finish() {
    if (!writing_) RaiseOwn(u"tovalin", u"El archivo CSV no tiene encabezado");
    return writing_->Terminar();
  }

 private:
  void HandleHeader(const CsvRow& row) {
    std::vector<Text> names;
    for (const std::string& cell : row) {
      names.emplace_back(Trim(FromUtf8(cell)));
      types_.push_back(TypeOf(file_, names.back()));
    }
    writing_ = std::make_unique<ArchivoPlano::Escritura>(file_, names, output_);
  }

  ArchivoPlano& file_;
  Text output_;
  std::unique_ptr<ArchivoPlano::Escritura> writing_;
  std::vector<std::int32_t> types_;
  std::vector<Variant> values_;
  std::size_t rows_ = 0;
};

// Each fault a line, and how many there were.
void ShowFaults(const ArchivoPlano& file) {
  for (const ArchivoPlano::Fallo& fault : file.Fallos()) {
    std::string line;
    const auto add = [&line](std::string_view word, const std::string& what) {
      if (what.empty()) return;
      if (!line.empty()) line += ", ";
      line.append(word).append(" ").append(what);
    };
    if (fault.fila > 0) add("fila", std::to_string(fault.fila));
    add("registro", ToUtf8(fault.registro));
    add("campo", ToUtf8(fault.campo));
    if (!fault.valor.empty()) add("valor", Quoted(ToUtf8(fault.valor)));
    std::cerr << OneLine(line) << ": " << ToUtf8(fault.motivo) << '\n';
  }
  std::cerr << file.NumeroErrores() << " errores, " << file.FilasRechazadas()
            << " filas rechazadas\n";
}

void SetParameters(ArchivoPlano& file, const FlatOptions& options) {
  for (const std::string& argument : options.parameters) {
    const Assignment parameter = ReadAssignment(argument);
    file.LetParametro(parameter.name, ReadValue(parameter.value));
  }
}

// What a CSV cell shows of a value that was read: nothing of it is lost.
std::string CellText(const Variant& value) {
  if (value.Is(Subtype::Null)) return {};
  if (value.Is(Subtype::Boolean)) return value.AsBoolean() ? "True" : "False";
  if (!value.Is(Subtype::Double)) return ToUtf8(ToText(value));
  char buffer[32];
  return {buffer, std::to_chars(buffer, buffer + sizeof buffer, value.AsDouble()).ptr};
}

}  // namespace

int RunFlatWrite(const FlatOptions& options) {
  const Ref<ArchivoPlano> file = ReadLayout(options);
  file->LetPermitirParcial(options.partial);
  SetParameters(*file, options);
  RequireOtherFile(options.input, options.output);
  RowWriter rows(*file, TextOfArgument(options.output));
  CsvReader reader(options.input, ReadEncoding(options.encoding));
  reader.ForEachRow([&rows](const CsvRow& row) { rows.HandleRow(row); });
  if (rows.Finish()) return kDone;
  ShowFaults(*file);
  std::cerr << (file->Publicado() ? "El archivo se publicó sin las filas rechazadas\n"
                                  : "El archivo no se publicó\n");
  return kFaults;
}

int RunFlatRead(const FlatOptions& options) {
  const Ref<ArchivoPlano> file = ReadLayout(options);
  const Text record = options.record.empty()
                          ? file->ClasesDeRegistro(u"detalle")->Item(std::int32_t{1}).AsText()
                          : TextOfArgument(options.record);
  const Ref<Collection> names = file->CamposDe(record);
  if (!options.output.empty()) RequireOtherFile(options.input, options.output);
  CsvWriter writer(options.output, ReadEncoding(options.encoding));
  for (const Variant& name : names->List().Items()) writer.Field(name.AsText());
  writer.EndRow();
  const bool clean = file->LeerFilas(
      [&](const ArchivoPlano::Leida& read) {
        if (!EqualFolded(read.registro, record)) return true;
        for (const Variant& value : read.valores) writer.Field(CellText(value));
        writer.EndRow();
        return true;
      },
      TextOfArgument(options.input));
  if (!clean) ShowFaults(*file);
  if (clean || options.output.empty()) writer.Finish();
  return clean ? kDone : kFaults;
}

int RunFlatVerify(const FlatOptions& options) {
  const Ref<ArchivoPlano> file = ReadLayout(options);
  const bool whole = file->Verificar(TextOfArgument(options.input));
  const Ref<Collection> kinds = file->ClasesDeRegistro();
  for (const Variant& name : kinds->List().Items())
    std::cout << ToUtf8(name.AsText()) << ": " << file->Registros(name.AsText()) << '\n';
  if (whole) return kDone;
  ShowFaults(*file);
  return kFaults;
}

int RunFlatLayout(const FlatOptions& options) {
  std::cout << ToUtf8(ReadLayout(options)->Diseno());
  return kDone;
}

}  // namespace tovalin::tool
