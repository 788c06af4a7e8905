#include "export/layout_description.h"

#include <cmath>

#include "export/failure_reason.h"
#include "frame/value/number_text.h"
#include "tovalin/convert.h"

namespace tovalin {
namespace {

constexpr TextView kLineEnd = u"\r\n";
constexpr std::size_t kNameWidth = 30;
constexpr std::size_t kRuleLength = 26;

}  // namespace

LayoutDescription::LayoutDescription(TextView path, Date now, bool fixed_width)
    : fixed_width_(fixed_width) {
  const double day = std::trunc(now.days);
  text_ += u"Descripción de posiciones de campos para archivo ";
  AddLine(path);
  text_ += u"Fecha generación archivo de datos (.txt)";
  text_ += ToText(Date{day});
  text_ += u" - ";
  AddLine(ToText(Date{std::fabs(now.days - day)}));
  text_ += u"Nombre Campo                 ";
  AddLine(fixed_width ? u"OffSet   " : u"");
  AddLine(Text(kRuleLength, u'~'));
}

void LayoutDescription::AddLine(TextView line) {
  text_ += line;
  text_ += kLineEnd;
}

void LayoutDescription::AddField(TextView name, std::size_t length) {
  text_ += name;
  if (fixed_width_) {
    if (name.size() > kNameWidth)
      RaiseBecause(Failure::InvalidArgument, "el nombre tiene " + std::to_string(name.size()) +
                                                 " caracteres y caben " +
                                                 std::to_string(kNameWidth));
    text_.append(kNameWidth - name.size(), u' ');
    text_ += u'\t';
    AppendNumber(text_, static_cast<std::int64_t>(offset_));
    offset_ += length;
  }
  text_ += kLineEnd;
}

const Text& LayoutDescription::Finish(std::int32_t last_row) {
  text_ += kLineEnd;
  text_ += kLineEnd;
  text_ += u"Total Registros Generados : ";
  AppendNumber(text_, std::int64_t{last_row});
  return text_ += kLineEnd;
}

}  // namespace tovalin
