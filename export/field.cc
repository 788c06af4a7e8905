#include "export/field.h"

#include <algorithm>

#include "export/failure_reason.h"
#include "export/numeric_widths.h"

namespace tovalin {
namespace {

constexpr std::int32_t kTimeWidth = 5;
constexpr std::int32_t kDateWidth = 8;

constexpr FieldType Number(std::int32_t code, std::int32_t width) {
  return {code, FieldForm::Plain, FieldFill::NulLeft, width};
}

constexpr FieldType kFieldTypes[] = {
    Number(kInteger, WidthOf(u"Integer")),
    Number(kCurrency, WidthOf(u"Currency")),
    Number(kDouble, WidthOf(u"Double")),
    Number(kFloat, WidthOf(u"Float")),
    Number(kNumeric, WidthOf(u"Numeric")),
    {kTime, FieldForm::Time, FieldFill::BlankLeft, kTimeWidth},
    {kTimeOfDay, FieldForm::Time, FieldFill::BlankLeft, kTimeWidth},
    {kDate, FieldForm::Date, FieldFill::BlankLeft, kDateWidth},
    {kText, FieldForm::Plain, FieldFill::BlankRight, 0, true},
    {kLongText, FieldForm::Plain, FieldFill::BlankRight, 0, true},
};

Field Resolve(const Campo& campo) {
  Field field{campo.Name(), {}, campo.Position()};
  const auto type = std::ranges::find(kFieldTypes, campo.DataType(), &FieldType::code);
  if (type != std::end(kFieldTypes)) field.type = *type;
  if (field.type.is_text) field.type.width = campo.Size();
  return field;
}

}  // namespace

std::vector<Field> ResolveFields(const Campos* fields) {
  if (!fields) RaiseBecause(Failure::ObjectNotSet, "no se dieron los campos");
  std::vector<Field> resolved;
  for (const Ref<Campo>& campo : fields->List().Items()) resolved.push_back(Resolve(*campo));
  return resolved;
}

}  // namespace tovalin
