#include <algorithm>
#include <utility>

#include "flatfile/archivo_plano_core.h"
#include "flatfile/file_reader.h"
#include "flatfile/file_writer.h"
#include "flatfile/problem.h"
#include "frame/object/error_translation.h"

namespace tovalin {

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

std::vector<Text> SplitNames(TextView list) {
  std::vector<Text> names;
  for (;;) {
    const std::size_t comma = std::min(list.find(u','), list.size());
    names.emplace_back(Trim(list.substr(0, comma)));
    if (comma == list.size()) return names;
    list.remove_prefix(comma + 1);
  }
}

}  // namespace

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
  std::shared_ptr<const flat::Layout> layout_;
  Running running_;
  flat::WriteContext context_;
  flat::FileWriter writer_;
};

ArchivoPlano::Escritura::Escritura(ArchivoPlano& archivo, std::span<const Text> columnas,
                                   const Text& vArchivo)
    : core_(std::make_unique<Core>(archivo, columnas, vArchivo)) {}
ArchivoPlano::Escritura::~Escritura() = default;
void ArchivoPlano::Escritura::Fila(std::span<const Variant> valores, TextView registro) {
  RaisingErrors([&] {
    if (!core_) RaiseOwn(kClassName, u"La escritura ya terminó");
    core_->Write(valores, registro);
  });
}
bool ArchivoPlano::Escritura::Terminar() {
  return RaisingErrors([&] {
    if (!core_) RaiseOwn(kClassName, u"La escritura ya terminó");
    return std::exchange(core_, nullptr)->Finish();
  });
}

bool ArchivoPlano::Escribir(const Variant& vDatos, const Text& vArchivo, const Text& oColumnas) {
  return RaisingErrors([&] {
    if (!vDatos.Is(Subtype::Array)) Raise(Failure::TypeMismatch);
    const Variant kept = vDatos.Value();  // whatever a formula's host does with the original
    const VariantArray& array = kept.AsArray();
    const std::vector<Text> names =
        oColumnas.empty() ? flat::NamesOf(*core_->Required()) : SplitNames(oColumnas);
    if (names.size() > array.Columns())
      flat::RaiseFault("Datos", "el arreglo tiene " + std::to_string(array.Columns()) +
                                    " columnas y se esperan " + std::to_string(names.size()));
    Escritura writing(*this, names, vArchivo);
    for (std::size_t row = 0; row < array.Rows(); ++row)
      writing.Fila({&array.At(0, row), array.Columns()});
    return writing.Terminar();
  });
}

bool ArchivoPlano::EscribirFilas(const Text& vArchivo, const Text& oColumnas) {
  return RaisingErrors([&] {
    const std::vector<Text> names =
        oColumnas.empty() ? flat::NamesOf(*core_->Required()) : SplitNames(oColumnas);
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
  });
}

bool ArchivoPlano::LeerFilas(const std::function<bool(const Leida&)>& toma, const Text& vArchivo) {
  return RaisingErrors([&] {
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
  });
}

bool ArchivoPlano::LeerFilas(const Text& vArchivo) {
  return RaisingErrors([&] {
    const auto layout = core_->Required();
    return LeerFilas(
        [&](const Leida& read) {
          const flat::RecordLayout& record = layout->records[flat::KindOf(*layout, read.registro)];
          auto values = Make<Collection>();
          for (std::size_t i = 0; i < read.valores.size(); ++i)
            values->Add(read.valores[i], record.fields[i].name);
          bool cancel = false;
          FilaLeida.Raise(flat::ToCount(read.numero), Text(read.registro), values, cancel);
          return !cancel;
        },
        vArchivo);
  });
}

Variant ArchivoPlano::Leer(const Text& vArchivo, const Text& oRegistro) {
  return RaisingErrors([&] {
    const auto layout = core_->Required();
    const flat::RecordLayout& wanted = layout->records[flat::KindOf(*layout, oRegistro)];
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
  });
}

bool ArchivoPlano::Verificar(const Text& vArchivo) {
  return RaisingErrors([&] { return LeerFilas([](const Leida&) { return true; }, vArchivo); });
}

bool ArchivoPlano::Convertir(const Ref<ArchivoPlano>& vOrigen, const Text& vEntrada,
                             const Text& vArchivo) {
  return RaisingErrors([&] {
    if (!vOrigen) Raise(Failure::ObjectNotSet);
    if (vOrigen.get() == this) Raise(Failure::InvalidArgument);
    const auto source = vOrigen->core_->Required();
    // The columns are the fields of all details; a record leaves those of other kinds Null.
    std::vector<Text> names;
    std::vector<std::vector<std::size_t>> places(source->records.size());
    for (std::size_t kind = 0; kind < source->records.size(); ++kind) {
      if (source->records[kind].role != flat::Role::Detail) continue;
      for (const flat::FieldLayout& field : source->records[kind].fields) {
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
          const std::size_t kind = flat::KindOf(*source, read.registro);
          if (source->records[kind].role != flat::Role::Detail) return true;
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
  });
}

}  // namespace tovalin
