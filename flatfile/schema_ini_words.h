#pragma once

#include "flatfile/keywords.h"

// A section describes one file:
//
//   [nomina.txt]
//   Format=FixedLength
//   CharacterSet=1252
//   DateTimeFormat=yyyymmdd
//   Col1=Codigo Text Width 5
//   Col2="Fecha de ingreso" DateTime Width 8

namespace tovalin::flat {

/// The types of columns; the first one of a field's type is what is written.
struct ColumnType {
  TextView word;
  FieldType type;
  bool amount = false;  // CurrencyDigits decimals
};
inline constexpr ColumnType kColumnTypes[] = {
    {u"Text", FieldType::Text},
    {u"Char", FieldType::Text},
    {u"Memo", FieldType::Text},
    {u"LongChar", FieldType::Text},
    {u"Long", FieldType::Whole},
    {u"Short", FieldType::Whole},
    {u"Integer", FieldType::Whole},
    {u"Byte", FieldType::Whole},
    {u"Currency", FieldType::Number, true},
    {u"Decimal", FieldType::Number, true},
    {u"Double", FieldType::Number},
    {u"Float", FieldType::Number},
    {u"Single", FieldType::Number},
    {u"Bit", FieldType::Logical},
    {u"DateTime", FieldType::Date},
    {u"Date", FieldType::Date},
};

inline constexpr Word<Encoding> kCodePages[] = {
    {"1252", Encoding::CodePage1252}, {"ansi", Encoding::CodePage1252}, {"65001", Encoding::Utf8},
    {"28591", Encoding::Latin1},      {"20127", Encoding::Ascii},
};

}  // namespace tovalin::flat
