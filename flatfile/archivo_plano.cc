#include "tovalin/archivo_plano.h"

#include <algorithm>

#include "flatfile/archivo_plano_core.h"
#include "flatfile/export_layout.h"
#include "flatfile/keywords.h"
#include "flatfile/layout_json.h"
#include "flatfile/schema_ini.h"
#include "flatfile/text_file.h"
#include "frame/object/error_translation.h"
#include "frame/system/replaced_file.h"

// The layout and the properties; archivo_plano_files.cc writes and reads.

namespace tovalin {

namespace flat {

std::vector<Text> NamesOf(const Layout& layout) {
  std::vector<Text> names;
  for (const flat::ColumnLayout& column : flat::ColumnsOf(layout)) names.push_back(column.name);
  return names;
}

std::size_t KindOf(const Layout& layout, TextView name) {
  const auto wanted = [&](const RecordLayout& record) {
    return name.empty() ? record.role == Role::Detail : EqualFolded(record.name, name);
  };
  const auto found = std::ranges::find_if(layout.records, wanted);
  if (found == layout.records.end()) Raise(Failure::InvalidArgument);
  return static_cast<std::size_t>(found - layout.records.begin());
}

std::int32_t ToCount(std::int64_t count) {
  return static_cast<std::int32_t>(std::min<std::int64_t>(count, INT32_MAX));
}

}  // namespace flat

namespace {

Ref<Collection> ToCollection(const std::vector<Text>& names) {
  auto list = Make<Collection>();
  for (const Text& name : names) list->Add(name);
  return list;
}

}  // namespace

ArchivoPlano::ArchivoPlano() : core_(std::make_unique<Core>()) {}
ArchivoPlano::~ArchivoPlano() = default;

Text ArchivoPlano::Diseno() const {
  return RaisingErrors(
      [&] { return core_->layout ? FromUtf8(flat::WriteLayoutJson(*core_->layout)) : Text(); });
}
void ArchivoPlano::LetDiseno(const Text& NewValue) {
  RaisingErrors([&] { core_->Set(flat::ReadLayoutJson(ToUtf8(NewValue))); });
}
void ArchivoPlano::LeerDiseno(const Text& vArchivo) {
  RaisingErrors([&] {
    core_->Set(flat::InFile(vArchivo,
                            [&] { return flat::ReadLayoutJson(flat::ReadWholeFile(vArchivo)); }));
  });
}
void ArchivoPlano::GuardarDiseno(const Text& vArchivo) const {
  RaisingErrors([&] {
    ReplacedFile file(flat::PathToWrite(vArchivo));
    file.Write(flat::WriteLayoutJson(*core_->Required()));
    file.Commit();
  });
}
void ArchivoPlano::LeerSchemaIni(const Text& vArchivo, const Text& oSeccion) {
  RaisingErrors([&] {
    core_->Set(flat::InFile(
        vArchivo, [&] { return flat::ReadSchemaIni(flat::ReadWholeFile(vArchivo), oSeccion); }));
  });
}
Text ArchivoPlano::SchemaIni(const Text& vSeccion) const {
  return RaisingErrors([&] { return flat::WriteSchemaIni(*core_->Required(), vSeccion); });
}
void ArchivoPlano::LeerDescripcion(const Text& vArchivo) {
  RaisingErrors([&] {
    core_->Set(flat::InFile(vArchivo,
                            [&] { return flat::ReadDescription(flat::ReadWholeFile(vArchivo)); }));
  });
}
void ArchivoPlano::DesdeExport(const Ref<clsFileExport>& vExport, const Ref<Campos>& vCampos) {
  RaisingErrors([&] {
    if (!vExport || !vCampos) Raise(Failure::ObjectNotSet);
    core_->Set(flat::LayoutOfExport(*vExport, *vCampos));
  });
}

Ref<Collection> ArchivoPlano::Columnas() const {
  return ToCollection(flat::NamesOf(*core_->Required()));
}

Ref<Collection> ArchivoPlano::ClasesDeRegistro(const Text& oPapel) const {
  return RaisingErrors([&] {
    const auto role = flat::FindWord<flat::Role>(flat::kRoleWords, ToUtf8(ToLower(oPapel)));
    if (!oPapel.empty() && !role) Raise(Failure::InvalidArgument);
    std::vector<Text> names;
    for (const flat::RecordLayout& record : core_->Required()->records)
      if (!role || record.role == *role) names.push_back(record.name);
    return ToCollection(names);
  });
}

Ref<Collection> ArchivoPlano::CamposDe(const Text& oRegistro) const {
  return RaisingErrors([&] {
    const auto layout = core_->Required();
    std::vector<Text> names;
    for (const flat::FieldLayout& field : layout->records[flat::KindOf(*layout, oRegistro)].fields)
      names.push_back(field.name);
    return ToCollection(names);
  });
}

std::int32_t ArchivoPlano::TipoDeColumna(const Text& Nombre) const {
  return RaisingErrors([&] {
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
  });
}

Variant ArchivoPlano::Parametro(const Text& Nombre) const {
  return RaisingErrors([&] {
    const Campo* parameter = core_->parameters->Find(Nombre);
    return parameter ? parameter->Value() : Variant();
  });
}
void ArchivoPlano::LetParametro(const Text& Nombre, const Variant& NewValue) {
  RaisingErrors([&] {
    // No field can show an object, and one that holds this one would never be released.
    if (NewValue.Value().MayOwnObjects()) Raise(Failure::TypeMismatch);
    if (!core_->parameters->Exists(Nombre)) core_->parameters->Add(Make<Campo>(Nombre));
    core_->parameters->Find(Nombre)->LetValue(NewValue.Value());
  });
}
Ref<Evaluador> ArchivoPlano::EvaluadorDeFormulas() const { return core_->evaluator; }
void ArchivoPlano::SetEvaluadorDeFormulas(const Ref<Evaluador>& NewValue) {
  RaisingErrors([&] { core_->evaluator = NewValue; });
}
bool ArchivoPlano::PermitirParcial() const { return core_->partial; }
void ArchivoPlano::LetPermitirParcial(bool NewValue) { core_->partial = NewValue; }

const std::vector<ArchivoPlano::Fallo>& ArchivoPlano::Fallos() const { return core_->log.Faults(); }

Ref<Collection> ArchivoPlano::Errores() const {
  return RaisingErrors([&] {
    auto list = Make<Collection>();
    for (const Fallo& fault : core_->log.Faults()) {
      auto record = Make<Collection>();
      record->Add(flat::ToCount(fault.fila), u"Fila");
      record->Add(fault.registro, u"Registro");
      record->Add(fault.campo, u"Campo");
      record->Add(fault.valor, u"Valor");
      record->Add(fault.motivo, u"Motivo");
      list->Add(record);
    }
    return list;
  });
}
std::int32_t ArchivoPlano::NumeroErrores() const { return flat::ToCount(core_->log.Count()); }
std::int32_t ArchivoPlano::LimiteErrores() const { return core_->limit; }
void ArchivoPlano::LetLimiteErrores(std::int32_t NewValue) {
  RaisingErrors([&] {
    if (NewValue < 0) Raise(Failure::InvalidArgument);
    core_->limit = NewValue;
  });
}
std::int32_t ArchivoPlano::FilasRechazadas() const { return flat::ToCount(core_->refused); }

std::int32_t ArchivoPlano::Registros(const Text& oRegistro) const {
  return RaisingErrors([&] {
    std::int64_t count = 0;
    for (std::size_t i = 0; i < core_->records.size(); ++i)
      if (oRegistro.empty() || EqualFolded(core_->kinds[i], oRegistro)) count += core_->records[i];
    return flat::ToCount(count);
  });
}
bool ArchivoPlano::Publicado() const { return core_->published; }

}  // namespace tovalin
