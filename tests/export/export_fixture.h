#pragma once

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

#include "files/temporary_directory.h"
#include "tovalin/cls_file_export.h"

namespace tovalin {

using Row = std::initializer_list<Variant>;

/// The array of a table given row by row.
inline Variant Table(std::initializer_list<Row> rows) {
  auto array = Make<VariantArray>(rows.size() ? rows.begin()->size() : 0, rows.size());
  std::size_t r = 0;
  for (const Row& row : rows) {
    std::size_t column = 0;
    for (const Variant& value : row) array->At(column++, r) = value;
    ++r;
  }
  return array;
}

struct FieldRow {
  const char16_t* name;
  std::int32_t type;
  std::int16_t column;
  std::int32_t size = 0;
};

inline Ref<Campos> Fields(std::initializer_list<FieldRow> rows) {
  auto fields = Make<Campos>();
  for (const FieldRow& row : rows) {
    auto field = Make<Campo>(Text(row.name));
    field->LetDataType(row.type);
    field->LetPosition(row.column);
    field->LetSize(row.size);
    fields->Add(field);
  }
  return fields;
}

/// An export into a directory of its own; its clock stands at 5 March 2024, 14:07:09.
class ExportTest : public testing::Test {
 protected:
  ExportTest() {
    exporter->UseClock([] { return Date{45356 + (14 * 3600 + 7 * 60 + 9) / 86400.0}; });
  }

  bool Export(Variant data, const Ref<Campos>& fields, std::int32_t last_row) {
    return exporter->GenerarArchivoPlanoDesdeBD(data, fields, last_row, here.Host("datos"));
  }
  const clsFileExport::FailureReport& Failure() const { return exporter->LastFailure().value(); }
  std::string Data() const { return here.Read("datos.txt"); }
  std::string Layout() const { return here.Read("datos.ref"); }

  Ref<clsFileExport> exporter = Make<clsFileExport>();
  TemporaryDirectory here;
};

}  // namespace tovalin
