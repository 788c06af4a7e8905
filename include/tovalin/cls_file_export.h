#pragma once

#include <memory>
#include <optional>

#include "tovalin/api.h"
#include "tovalin/campos.h"
#include "tovalin/clock.h"
#include "tovalin/object.h"
#include "tovalin/variant.h"

namespace tovalin {

/// Writes a table to a flat file: a data file of delimited text or of fixed-width
/// records, and beside it a file that describes the layout. Both are in code page
/// 1252 ("?" for a character outside it) with lines ended by CR LF. docs/export.md
/// shows the two formats byte for byte.
class TOVALIN_API clsFileExport : public Object {
 public:
  static constexpr TextView kClassName = u"clsFileExport";

  /// The values of Fomato; any but TEXTO_DELIMITADO means fixed width.
  static constexpr std::uint8_t TEXTO_DELIMITADO = 0;
  static constexpr std::uint8_t LONGITUDFIJA = 1;

  static const ClassInfo kInfo;

  clsFileExport();
  ~clsFileExport() override;
  const ClassInfo& Class() const override;

  /// Writes the rows 0 to `vlngRows` (the number of the last one, -1 for none) of
  /// `rvarDatos`, an array indexed (column, row), which is not changed. Each Campo
  /// gives its Name, DataType, Size (the width of a text in fixed width) and
  /// Position (its column). `vstrArchivoSalida` is a path without extension: the
  /// data go to ".txt", the layout to ".ref"; files of those names are replaced.
  /// `ostrDelimitador` is accepted and not used: the delimiter is ";".
  ///
  /// Answers True when both files were written. Any failure (no such column or
  /// row, a value wider than its field, a name of more than 30 characters in fixed
  /// width, a value without text, a full disk) ends it at once with False: the
  /// records before the failing one stay in the data file. Raises nothing; LastFailure
  /// tells why.
  ///
  /// In delimited mode only text fields carry their own values: any other repeats
  /// the text field before it, in this record or an earlier one.
  bool GenerarArchivoPlanoDesdeBD(Variant& rvarDatos, const Ref<Campos>& vcolCampos,
                                  std::int32_t vlngRows, const Text& vstrArchivoSalida,
                                  const Text& ostrDelimitador = u";");

  /// The width of a numeric type, by its name ("Numeric", "Integer" ...) or its
  /// position from 1. Raises 5 for an unknown name, 9 for a position out of range.
  std::uint8_t Precision(const Variant& vPrecision) const;
  /// Raises 424 (and what the read raises): the widths cannot be changed.
  void LetPrecision(const Variant& vPrecision, std::uint8_t NewValue) const;

  /// The order of year, month and day in dates: "DMY", "DYM", "MDY", "MYD", "YDM"
  /// or "YMD", compared exactly. Any other code becomes "AMD" and means "YMD".
  const Text& OrdenFechas() const;
  /// Also takes the year form and SeparadorFecha into use as they are now: changes
  /// of theirs count from the next assignment on. Until the first one, dates are
  /// written in the general form.
  void LetOrdenFechas(const Text& NewValue);

  /// Whether years have four digits.
  bool AnoCompleto() const;
  void LetAnoCompleto(bool NewValue);

  /// One character: the first of the text assigned, a blank for the empty text. In
  /// a date, "/" stands for the locale's date separator.
  Text SeparadorFecha() const;
  void LetSeparadorFecha(const Text& NewValue);

  /// The character around texts in delimited mode, kept as SeparadorFecha is. One
  /// inside a text is not doubled.
  Text SeparadorCadena() const;
  void LetSeparadorCadena(const Text& NewValue);

  std::uint8_t Fomato() const;
  void LetFomato(std::uint8_t NewValue);

  // --- For C++ hosts ----------------------------------------------------------

  enum class FileState {
    Untouched,   // as it was before, if there was one
    Incomplete,  // what was written before the failure
    Complete,
  };
  /// Why an export answered False, and what it left on the disk.
  struct FailureReport {
    Error error;                              // its description says what was wrong
    std::int64_t row = -1;                    // of the array, from 0; -1 for a failure of no row
    Text field;                               // its Name, empty for a failure of no field
    Text value;                               // the text of the cell, if it has one
    FileState data = FileState::Untouched;    // the ".txt"
    FileState layout = FileState::Untouched;  // the ".ref"
    std::int64_t records = 0;                 // those that stand whole in the data file
    bool broken_record = false;               // a part of one more stands behind them
  };
  /// Of the last export; empty when it answered True, and before the first one.
  const std::optional<FailureReport>& LastFailure() const;

  /// The pattern of dates that the last assignment of OrdenFechas made; empty before it.
  TextView DatePattern() const;

  /// Replaces the system's clock, for the moment that the layout file tells. Without a
  /// function the system's comes back.
  void UseClock(HostClock::Function clock);

 private:
  struct Core;
  std::unique_ptr<Core> core_;
};

}  // namespace tovalin
