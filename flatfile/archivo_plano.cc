#include "tovalin/archivo_plano.h"

#include <algorithm>
#include <utility>

#include "flatfile/export_layout.h"
#include "flatfile/file_reader.h"
#include "flatfile/file_writer.h"
#include "flatfile/layout_json.h"
#include "flatfile/problem.h"
#include "flatfile/schema_ini.h"
#include "flatfile/text_file.h"
#include "flatfile/words.h"
#include "frame/replaced_file.h"
#include "tovalin/convert.h"

namespace tovalin {

using flat::FieldLayout;
using flat::Layout;
using flat::RecordLayout;
using flat::Role;

class ArchivoPlano::Core {
 public:
  // A layout is never changed, so that a handler that sets another one in the midst of a
  // file leaves that file its own.
  std::shared_ptr<const Layout> layout;
  Ref<Campos> parameters = Make<Campos>();
  Ref<Evaluador> evaluator;
  bool partial = false;
  std::int32_t limit = 1000;
  flat::ErrorLog log{0};
  std::int64_t refused = 0;
  std::vector<std::int64_t> records;
  std::vector<Text> kinds;  // the names of those records
  bool published = false;
  bool busy = false;

  std::shared_ptr<const Layout> Required() const {
    if (!layout) RaiseOwn(kClassName, u"No se ha dado el diseño del archivo");
    return layout;
  }
  void Set(Layout value) { layout = std::make_shared<const Layout>(std::move(value)); }
  const Layout* Begin(const std::shared_ptr<const Layout>& begun) {
    const Layout& used = *begun;
    log = flat::ErrorLog(static_cast<std::size_t>(limit));
    refused = 0;
    published = false;
    records.assign(used.records.size(), 0);
    kinds.clear();
    for (const RecordLayout& record : used.records) kinds.push_back(record.name);
    return &used;
  }
};

namespace {

// One writing or reading at a time: a handler may not begin another one with the object
// whose errors are being collected.
class Running {
 public:
  explicit Running(bool& busy) : busy_(busy) {
    if (busy) RaiseOwn(ArchivoPlano::kClassName, u"El objeto ya está escribiendo o leyendo");
    busy_ = true;
  }
  ~Running() { busy_ = false; }
  Running(const Running&) = delete;
  Running& operator=(const Running&) = delete;

 private:
  bool& busy_;
};

std::vector<Text> NamesOf(const Layout& layout) {
  std::vector<Text> names;
  for (const flat::ColumnLayout& column : flat::ColumnsOf(layout)) names.push_back(column.name);
  return names;
}

std::vector<Text> SplitNames(TextView list) {
  std::vector<Text> names;
  for (;;) {
    const std::size_t comma = std::min(list.find(u','), list.size());
    names.emplace_back(Trim(list.substr(0, comma)));
    if (comma == list.size()) return names;
    list.remove_prefix(comma + 1);
  }
}

std::size_t KindOf(const Layout& layout, TextView name) {
  const auto wanted = [&](const RecordLayout& record) {
    return name.empty() ? record.role == Role::Detail : EqualFolded(record.name, name);
  };
  const auto found = std::ranges::find_if(layout.records, wanted);
  if (found == layout.records.end()) Raise(Failure::InvalidArgument);
  return static_cast<std::size_t>(found - layout.records.begin());
}

Ref<Collection> ToCollection(const std::vector<Text>& names) {
  auto list = Make<Collection>();
  for (const Text& name : names) list->Add(name);
  return list;
}

std::int32_t ToCount(std::int64_t count) {
  return static_cast<std::int32_t>(std::min<std::int64_t>(count, INT32_MAX));
}

}  // namespace

ArchivoPlano::ArchivoPlano() : core_(std::make_unique<Core>()) {}
ArchivoPlano::~ArchivoPlano() = default;

Text ArchivoPlano::Diseno() const {
  return core_->layout ? FromUtf8(flat::WriteLayoutJson(*core_->layout)) : Text();
}
void ArchivoPlano::LetDiseno(const Text& NewValue) {
  core_->Set(flat::ReadLayoutJson(ToUtf8(NewValue)));
}
void ArchivoPlano::LeerDiseno(const Text& vArchivo) {
  core_->Set(
      flat::InFile(vArchivo, [&] { return flat::ReadLayoutJson(flat::ReadWholeFile(vArchivo)); }));
}
void ArchivoPlano::GuardarDiseno(const Text& vArchivo) const {
  ReplacedFile file(ToNativePath(vArchivo));
  file.Write(flat::WriteLayoutJson(*core_->Required()));
  file.Commit();
}
void ArchivoPlano::LeerSchemaIni(const Text& vArchivo, const Text& oSeccion) {
  core_->Set(flat::InFile(
      vArchivo, [&] { return flat::ReadSchemaIni(flat::ReadWholeFile(vArchivo), oSeccion); }));
}
Text ArchivoPlano::SchemaIni(const Text& vSeccion) const {
  return flat::WriteSchemaIni(*core_->Required(), vSeccion);
}
void ArchivoPlano::LeerDescripcion(const Text& vArchivo) {
  core_->Set(
      flat::InFile(vArchivo, [&] { return flat::ReadDescription(flat::ReadWholeFile(vArchivo)); }));
}
void ArchivoPlano::DesdeExport(const Ref<clsFileExport>& vExport, const Ref<Campos>& vCampos) {
  if (!vExport || !vCampos) Raise(Failure::ObjectNotSet);
  core_->Set(flat::LayoutOfExport(*vExport, *vCampos));
}

Ref<Collection> ArchivoPlano::Columnas() const { return ToCollection(NamesOf(*core_->Required())); }

Ref<Collection> ArchivoPlano::ClasesDeRegistro(const Text& oPapel) const {
  const auto role = flat::FindWord<Role>(flat::kRoleWords, ToUtf8(ToLower(oPapel)));
  if (!oPapel.empty() && !role) Raise(Failure::InvalidArgument);
  std::vector<Text> names;
  for (const RecordLayout& record : core_->Required()->records)
    if (!role || record.role == *role) names.push_back(record.name);
  return ToCollection(names);
}

Ref<Collection> ArchivoPlano::CamposDe(const Text& oRegistro) const {
  const auto layout = core_->Required();
  std::vector<Text> names;
  for (const FieldLayout& field : layout->records[KindOf(*layout, oRegistro)].fields)
    names.push_back(field.name);
  return ToCollection(names);
}

std::int32_t ArchivoPlano::TipoDeColumna(const Text& Nombre) const {
  for (const flat::ColumnLayout& column : flat::ColumnsOf(*core_->Required())) {
    if (!EqualFolded(column.name, Nombre)) continue;
    switch (column.type) {
      case flat::FieldType::Whole:
        return kInteger;
      case flat::FieldType::Number:
        return kNumeric;
      case flat::FieldType::Logical:
        return kLogical;
      case flat::FieldType::Time:
        return kTime;
      case flat::FieldType::Date:
      case flat::FieldType::DateTime:
        return kDate;
      default:
        return kText;
    }
  }
  Raise(Failure::InvalidArgument);
}

Variant ArchivoPlano::Parametro(const Text& Nombre) const {
  const Campo* parameter = core_->parameters->Find(Nombre);
  return parameter ? parameter->Value() : Variant();
}
void ArchivoPlano::LetParametro(const Text& Nombre, const Variant& NewValue) {
  if (!core_->parameters->Exists(Nombre)) core_->parameters->Add(Make<Campo>(Nombre));
  core_->parameters->Find(Nombre)->LetValue(NewValue.Value());
}
Ref<Evaluador> ArchivoPlano::EvaluadorDeFormulas() const { return core_->evaluator; }
void ArchivoPlano::SetEvaluadorDeFormulas(const Ref<Evaluador>& NewValue) {
  core_->evaluator = NewValue;
}
bool ArchivoPlano::PermitirParcial() const { return core_->partial; }
void ArchivoPlano::LetPermitirParcial(bool NewValue) { core_->partial = NewValue; }

class ArchivoPlano::Escritura::Core {
 public:
  Core(ArchivoPlano& file, std::span<const Text> columns, const Text& path)
      : alive_(Hold(file)),
        file_(*file.core_),
        layout_(file_.Required()),
        running_(file_.busy),
        context_{{columns.begin(), columns.end()}, file_.parameters, file_.evaluator},
        writer_(*file_.Begin(layout_), context_, path, file_.log) {}

  void Write(std::span<const Variant> values, TextView kind) { writer_.Write(values, kind); }
  bool Finish() {
    file_.published = writer_.Finish(file_.partial);
    file_.refused = writer_.Refused();
    file_.records = writer_.Records();
    return file_.published && file_.log.Count() == 0;
  }

 private:
  Ref<ArchivoPlano> alive_;
  ArchivoPlano::Core& file_;
  std::shared_ptr<const Layout> layout_;
  Running running_;
  flat::WriteContext context_;
  flat::FileWriter writer_;
};

ArchivoPlano::Escritura::Escritura(ArchivoPlano& archivo, std::span<const Text> columnas,
                                   const Text& vArchivo)
    : core_(std::make_unique<Core>(archivo, columnas, vArchivo)) {}
ArchivoPlano::Escritura::~Escritura() = default;
void ArchivoPlano::Escritura::Fila(std::span<const Variant> valores, TextView registro) {
  if (!core_) RaiseOwn(kClassName, u"La escritura ya terminó");
  core_->Write(valores, registro);
}
bool ArchivoPlano::Escritura::Terminar() {
  if (!core_) RaiseOwn(kClassName, u"La escritura ya terminó");
  return std::exchange(core_, nullptr)->Finish();
}

bool ArchivoPlano::Escribir(const Variant& vDatos, const Text& vArchivo, const Text& oColumnas) {
  if (!vDatos.Is(Subtype::Array)) Raise(Failure::TypeMismatch);
  const Variant kept = vDatos.Value();  // whatever a formula's host does with the original
  const VariantArray& array = kept.AsArray();
  const std::vector<Text> names =
      oColumnas.empty() ? NamesOf(*core_->Required()) : SplitNames(oColumnas);
  if (names.size() > array.Columns())
    flat::RaiseFault("Datos", "el arreglo tiene " + std::to_string(array.Columns()) +
                                  " columnas y se esperan " + std::to_string(names.size()));
  Escritura writing(*this, names, vArchivo);
  for (std::size_t row = 0; row < array.Rows(); ++row)
    writing.Fila({&array.At(0, row), array.Columns()});
  return writing.Terminar();
}

bool ArchivoPlano::EscribirFilas(const Text& vArchivo, const Text& oColumnas) {
  const std::vector<Text> names =
      oColumnas.empty() ? NamesOf(*core_->Required()) : SplitNames(oColumnas);
  Escritura writing(*this, names, vArchivo);
  std::vector<Variant> values;
  for (std::int32_t number = 1;; ++number) {
    auto given = Make<Collection>();
    Text kind;
    bool any = false;
    PedirFila.Raise(number, given, kind, any);
    if (!any) return writing.Terminar();
    values.clear();
    if (given) values = given->List().Items();
    for (Variant& value : values) value = Variant(value.Value());
    writing.Fila(values, kind);
  }
}

bool ArchivoPlano::LeerFilas(const std::function<bool(const Leida&)>& toma, const Text& vArchivo) {
  const Ref<ArchivoPlano> alive = Hold(*this);
  const auto layout = core_->Required();
  const Running running(core_->busy);
  core_->Begin(layout);
  flat::FileReader reader(*layout, vArchivo, core_->log);
  const auto keep = [&] {
    core_->refused = reader.Refused();
    core_->records = reader.Records();
  };
  try {
    reader.Read([&](std::size_t kind, std::span<const Variant> values) {
      return toma({reader.Number(), layout->records[kind].name, values});
    });
  } catch (...) {
    keep();
    throw;
  }
  keep();
  return core_->log.Count() == 0;
}

bool ArchivoPlano::LeerFilas(const Text& vArchivo) {
  const auto layout = core_->Required();
  return LeerFilas(
      [&](const Leida& read) {
        const RecordLayout& record = layout->records[KindOf(*layout, read.registro)];
        auto values = Make<Collection>();
        for (std::size_t i = 0; i < read.valores.size(); ++i)
          values->Add(read.valores[i], record.fields[i].name);
        bool cancel = false;
        FilaLeida.Raise(ToCount(read.numero), Text(read.registro), values, cancel);
        return !cancel;
      },
      vArchivo);
}

Variant ArchivoPlano::Leer(const Text& vArchivo, const Text& oRegistro) {
  const auto layout = core_->Required();
  const RecordLayout& wanted = layout->records[KindOf(*layout, oRegistro)];
  std::vector<Variant> values;
  LeerFilas(
      [&](const Leida& read) {
        if (read.registro == wanted.name)
          values.insert(values.end(), read.valores.begin(), read.valores.end());
        return true;
      },
      vArchivo);
  const std::size_t columns = wanted.fields.size();
  auto array = Make<VariantArray>(columns, values.size() / columns);
  for (std::size_t i = 0; i < values.size(); ++i)
    array->At(i % columns, i / columns) = std::move(values[i]);
  return array;
}

bool ArchivoPlano::Verificar(const Text& vArchivo) {
  return LeerFilas([](const Leida&) { return true; }, vArchivo);
}

bool ArchivoPlano::Convertir(const Ref<ArchivoPlano>& vOrigen, const Text& vEntrada,
                             const Text& vArchivo) {
  if (!vOrigen) Raise(Failure::ObjectNotSet);
  if (vOrigen.get() == this) Raise(Failure::InvalidArgument);
  const auto source = vOrigen->core_->Required();
  // The columns are the fields of all details; a record leaves those of other kinds Null.
  std::vector<Text> names;
  std::vector<std::vector<std::size_t>> places(source->records.size());
  for (std::size_t kind = 0; kind < source->records.size(); ++kind) {
    if (source->records[kind].role != Role::Detail) continue;
    for (const FieldLayout& field : source->records[kind].fields) {
      const auto same = [&](const Text& name) { return EqualFolded(name, field.name); };
      const auto found = std::ranges::find_if(names, same);
      places[kind].push_back(static_cast<std::size_t>(found - names.begin()));
      if (found == names.end()) names.push_back(field.name);
    }
  }
  Escritura writing(*this, names, vArchivo);
  std::vector<Variant> row;
  const bool clean = vOrigen->LeerFilas(
      [&](const Leida& read) {
        const std::size_t kind = KindOf(*source, read.registro);
        if (source->records[kind].role != Role::Detail) return true;
        row.assign(names.size(), Variant::Null());
        for (std::size_t i = 0; i < read.valores.size(); ++i)
          row[places[kind][i]] = read.valores[i];
        writing.Fila(row);
        return true;
      },
      vEntrada);
  for (const Fallo& fault : vOrigen->Fallos()) core_->log.Add(fault);
  const bool written = (clean || core_->partial) && writing.Terminar();
  core_->refused += vOrigen->core_->refused;
  return written && clean;
}

const std::vector<ArchivoPlano::Fallo>& ArchivoPlano::Fallos() const { return core_->log.Faults(); }

Ref<Collection> ArchivoPlano::Errores() const {
  auto list = Make<Collection>();
  for (const Fallo& fault : core_->log.Faults()) {
    auto record = Make<Collection>();
    record->Add(ToCount(fault.fila), u"Fila");
    record->Add(fault.registro, u"Registro");
    record->Add(fault.campo, u"Campo");
    record->Add(fault.valor, u"Valor");
    record->Add(fault.motivo, u"Motivo");
    list->Add(record);
  }
  return list;
}
std::int32_t ArchivoPlano::NumeroErrores() const { return ToCount(core_->log.Count()); }
std::int32_t ArchivoPlano::LimiteErrores() const { return core_->limit; }
void ArchivoPlano::LetLimiteErrores(std::int32_t NewValue) {
  if (NewValue < 0) Raise(Failure::InvalidArgument);
  core_->limit = NewValue;
}
std::int32_t ArchivoPlano::FilasRechazadas() const { return ToCount(core_->refused); }

std::int32_t ArchivoPlano::Registros(const Text& oRegistro) const {
  std::int64_t count = 0;
  for (std::size_t i = 0; i < core_->records.size(); ++i)
    if (oRegistro.empty() || EqualFolded(core_->kinds[i], oRegistro)) count += core_->records[i];
  return ToCount(count);
}
bool ArchivoPlano::Publicado() const { return core_->published; }

}  // namespace tovalin
