#pragma once

#include <functional>
#include <memory>
#include <span>
#include <vector>

#include "tovalin/api.h"
#include "tovalin/cls_file_export.h"
#include "tovalin/collection.h"
#include "tovalin/evaluador.h"
#include "tovalin/event.h"
#include "tovalin/object.h"
#include "tovalin/variant.h"

namespace tovalin {

/// Writes, reads and verifies flat files by a layout: files of fixed width or
/// delimited ones, with headers, details of several kinds and trailers with totals.
/// Nothing is lost in silence: a value that a field cannot show whole is refused with
/// row, field and reason, and a file with a refused row is not published.
///
///     auto archivo = Make<ArchivoPlano>();
///     archivo->LeerDiseno(u"C:\\banco\\nomina.json");
///     archivo->LetParametro(u"FechaPago", Date{45992});
///     if (!archivo->Escribir(datos, u"C:\\banco\\nomina.txt")) ...  // see Errores
///
/// docs/archivos.md describes the layouts. A layout is set first: without one, what
/// needs it raises kObjectError.
class TOVALIN_API ArchivoPlano : public Object {
 public:
  static constexpr TextView kClassName = u"ArchivoPlano";

  ArchivoPlano();
  ~ArchivoPlano() override;
  static const ClassInfo kInfo;
  const ClassInfo& Class() const override;

  // --- Events ---------------------------------------------------------------

  /// EscribirFilas wants row `Numero` (from 1): the handler puts its values into
  /// `Valores`, in the order of Columnas, and sets `Hay`; a name in `Registro`
  /// chooses its kind of record. The file ends when `Hay` stays False.
  Event<std::int32_t, Ref<Collection>&, Text&, bool&> PedirFila;
  /// LeerFilas read record `Numero` of the file, of kind `Registro`: `Valores` holds
  /// its values under the names of its fields. `Cancelar` ends the reading.
  Event<std::int32_t, const Text&, const Ref<Collection>&, bool&> FilaLeida;

  // --- The layout -------------------------------------------------------------

  /// The layout as JSON: a Table Schema with keys of our own under "tovalin:". Setting
  /// raises kObjectError with the place of a fault, and keeps the layout there was.
  Text Diseno() const;
  void LetDiseno(const Text& NewValue);
  /// The same from and to a file, in UTF-8. Raise 53, 70, 75 and 61 for the file.
  void LeerDiseno(const Text& vArchivo);
  void GuardarDiseno(const Text& vArchivo) const;
  /// The layout of a section of a schema.ini, by default the first.
  void LeerSchemaIni(const Text& vArchivo, const Text& oSeccion = {});
  /// The layout as the section of a schema.ini. Raises kObjectError for what such a
  /// file cannot say.
  Text SchemaIni(const Text& vSeccion) const;
  /// The layout that the description (".ref") of a clsFileExport tells: names and
  /// places; all fields are texts, and the last one takes the rest of the record.
  void LeerDescripcion(const Text& vArchivo);
  /// The layout of what `vExport` writes with `vCampos`. In fixed width the files are the
  /// same to the byte as long as every value fits; a delimited one carries the value of
  /// every field. Raises kObjectError for a field without a fixed width.
  void DesdeExport(const Ref<clsFileExport>& vExport, const Ref<Campos>& vCampos);

  /// The names of the columns that rows have, in their order.
  Ref<Collection> Columnas() const;
  /// The names of the kinds of records in their order: all, or those of one part of the file,
  /// "inicio", "detalle" or "fin". Raises 5 for another.
  Ref<Collection> ClasesDeRegistro(const Text& oPapel = {}) const;
  /// The names of the fields of a kind of record, by default the first detail.
  Ref<Collection> CamposDe(const Text& oRegistro = {}) const;

  // --- Writing ------------------------------------------------------------------

  /// A value of headers and trailers, or of a formula, by its name; Empty without one.
  /// An object or an array raises 13.
  Variant Parametro(const Text& Nombre) const;
  void LetParametro(const Text& Nombre, const Variant& NewValue);
  /// Computes the formulas of fields: with functions of the host, say. None: its own.
  Ref<Evaluador> EvaluadorDeFormulas() const;
  void SetEvaluadorDeFormulas(const Ref<Evaluador>& NewValue);
  /// Whether a file is published although rows were refused, without those. False at first.
  bool PermitirParcial() const;
  void LetPermitirParcial(bool NewValue);

  /// Writes the rows of an array indexed (column, row), whose columns are `oColumnas`
  /// (names separated by commas), by default Columnas. True when every row was
  /// written; the file then stands under its name, whole and on the disk. False when
  /// rows were refused: see Errores. Raises 13 for no array, 61, 70 and 75 for the
  /// file, and kObjectError for a layout that does not go with the columns.
  bool Escribir(const Variant& vDatos, const Text& vArchivo, const Text& oColumnas = {});
  /// The same with rows from PedirFila.
  bool EscribirFilas(const Text& vArchivo, const Text& oColumnas = {});
  /// The same with the detail records of another file, read by the layout of `vOrigen`.
  /// Its faults are in Errores too.
  bool Convertir(const Ref<ArchivoPlano>& vOrigen, const Text& vEntrada, const Text& vArchivo);

  // --- Reading ------------------------------------------------------------------

  /// The records of one kind, by default the first detail, as an array indexed
  /// (column, row) with typed values. What could not be read is in Errores.
  Variant Leer(const Text& vArchivo, const Text& oRegistro = {});
  /// Raises FilaLeida for each record that could be read, headers and trailers too. True
  /// without faults.
  bool LeerFilas(const Text& vArchivo);
  /// Whether the file is of the layout, with its counts and totals.
  bool Verificar(const Text& vArchivo);

  // --- What the last writing or reading found --------------------------------------

  /// A Collection of Collections with the items "Fila" (from 1; of a file read the
  /// record), "Registro", "Campo", "Valor" and "Motivo".
  Ref<Collection> Errores() const;
  /// How many faults there were, also beyond LimiteErrores.
  std::int32_t NumeroErrores() const;
  /// How many faults Errores keeps, 1000 at first. Raises 5 for a negative number.
  std::int32_t LimiteErrores() const;
  void LetLimiteErrores(std::int32_t NewValue);
  /// Rows (records of a file read) that were refused.
  std::int32_t FilasRechazadas() const;
  /// The records written or read of a kind, by default of all.
  std::int32_t Registros(const Text& oRegistro = {}) const;
  /// Whether the last writing published its file.
  bool Publicado() const;

  // --- For C++ hosts ----------------------------------------------------------

  struct Fallo {
    std::int64_t fila = 0;  // 0 for a fault of no row
    Text registro;
    Text campo;
    Text valor;
    Text motivo;
  };
  const std::vector<Fallo>& Fallos() const;

  /// A file that is being written row by row. It holds its ArchivoPlano, which can write
  /// and read nothing else meanwhile.
  class TOVALIN_API Escritura {
   public:
    Escritura(ArchivoPlano& archivo, std::span<const Text> columnas, const Text& vArchivo);
    /// Without Terminar nothing is published.
    ~Escritura();
    /// Writes a row, whose values are in the order of the columns; a name in `registro`
    /// chooses its kind of record. What is wrong with it is in Fallos.
    void Fila(std::span<const Variant> valores, TextView registro = {});
    /// Publishes the file: see ArchivoPlano::Escribir. The ArchivoPlano is free then.
    bool Terminar();

   private:
    class Core;
    std::unique_ptr<Core> core_;
  };
  /// A record that was read: values in the order of CamposDe.
  struct Leida {
    std::int64_t numero;
    TextView registro;
    std::span<const Variant> valores;
  };
  /// LeerFilas with a function that answers whether to go on.
  bool LeerFilas(const std::function<bool(const Leida&)>& toma, const Text& vArchivo);
  /// A type of the column for what reads rows from text, by its name, as a code of
  /// Campo: kText, kNumeric, kCurrency, kInteger, kLogical, kDate, kTime.
  std::int32_t TipoDeColumna(const Text& Nombre) const;

 private:
  class Core;
  std::unique_ptr<Core> core_;
};

}  // namespace tovalin
