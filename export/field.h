#pragma once

#include <optional>
#include <vector>

#include "tovalin/campos.h"

namespace tovalin {

/// What a value becomes before it is aligned.
enum class FieldForm { Plain, Time, Date };

/// Where a fixed-width field gets its fill.
enum class FieldFill {
  None,
  NulLeft,  // the character of code 0, on purpose: readers of these files expect it
  BlankLeft,
  BlankRight,
};

/// How a data type is written.
struct FieldType {
  std::int32_t code = 0;
  FieldForm form = FieldForm::Plain;
  FieldFill fill = FieldFill::None;
  std::int32_t width = 0;
  bool is_text = false;  // as wide as the field's size; quoted in delimited mode
};

/// A field of an export with everything that its rows need.
struct Field {
  TextView name;
  FieldType type;
  std::int16_t column = 0;
};

/// The fields in their order. They refer to the records. Raises 91 for no table.
std::vector<Field> ResolveFields(const Campos* fields);

}  // namespace tovalin
