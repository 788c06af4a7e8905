#pragma once

#include "export/field.h"
#include "frame/format/date_pattern.h"
#include "tovalin/locale.h"
#include "tovalin/variant.h"

namespace tovalin {

/// Makes the text forms of values, one at a time in one place: a form stays
/// readable until the next one is asked for, or the value changes. Raises 13 for
/// a value that has no text; Null is the empty text.
class ValueText {
 public:
  /// An empty pattern means the general form of dates.
  explicit ValueText(TextView date_pattern)
      : time_(u"Short Time", CurrentLocale().short_time), date_(date_pattern, date_pattern) {}

  /// The ordinary text.
  TextView Plain(const Variant& value);

  TextView Formed(const Variant& value, FieldForm form);

 private:
  /// A pattern by its name, for any value, and parsed, for dates.
  struct Pattern {
    Pattern(TextView name, TextView pattern) : name(name), parsed(ParseDatePattern(pattern)) {}
    Text name;
    DatePattern parsed;
  };

  template <class Number>
  TextView NumberText(Number number);

  Pattern time_;
  Pattern date_;
  Text text_;
};

}  // namespace tovalin
