#include <cmath>
#include <optional>

#include "frame/format/patterns.h"
#include "frame/value/date_text.h"
#include "tests/fuzz/fuzz_input.h"
#include "tovalin/evaluador.h"
#include "tovalin/lib_fecha.h"
#include "tovalin/lib_general.h"
#include "tovalin/lib_texto.h"

// Values under patterns, texts that may read as dates or numbers, and tag strings, from
// the lines of the input; then the choices of values.

namespace tovalin::fuzz {
namespace {

template <class Work>
void TryTo(Work work) {
  try {
    work();
  } catch (const Error&) {
    // Any error may come; anything else ends the run.
  }
}

// What a value's text reads as has the same text.
void CheckNumberText(const Text& text) {
  TryTo([&] { LeadingNumber(text); });
  const std::optional<double> number = ReadNumber(text);
  Require(number.has_value() == IsNumeric(text), "the numeric test agrees with reading");
  if (!number) return;
  const Text shown = ToText(*number);
  const std::optional<double> again = ReadNumber(shown);
  Require(again && ToText(*again) == shown, "a number reads as it shows");
}

void CheckDateText(const Text& text) {
  const std::optional<Date> date = ReadDate(text);
  Require(date.has_value() == IsDate(text), "the date test agrees with reading");
  if (!date) return;
  const Text shown = DateText(*date);
  const std::optional<Date> again = ReadDate(shown);
  // Day 0 at midnight and times alone show without their day.
  Require(again && DateText(*again) == shown, "a date reads as it shows");
}

void CheckConversions(const Variant& value) {
  constexpr Subtype kScalars[] = {Subtype::Integer,  Subtype::Long, Subtype::Single,
                                  Subtype::Double,   Subtype::Date, Subtype::String,
                                  Subtype::Currency, Subtype::Byte, Subtype::Boolean};
  for (Subtype target : kScalars)
    TryTo([&] { Require(Convert(value, target).Is(target), "a conversion gives its subtype"); });
}

std::size_t FieldsOf(const Text& tag) {
  return static_cast<std::size_t>(std::count(tag.begin(), tag.end(), u'»'));
}

void CheckTag(const LibGeneral& forms, const Text& tag, std::uint8_t index, const Text& text) {
  TryTo([&] {
    const Text changed = forms.LetTag(tag, index, text);
    if (index == 0) return;
    if (index > FieldsOf(tag)) {
      Require(changed == tag, "a tag without the field stays");
      Require(forms.GetTag(tag, index).empty(), "a field that is not there is empty");
    } else if (text.find(u'»') == Text::npos) {
      Require(forms.GetTag(changed, index) == text, "a tag gives back its field");
      Require(FieldsOf(changed) == FieldsOf(tag), "a tag keeps the number of its fields");
    }
  });
}

class Run {
 public:
  Run(const std::uint8_t* data, std::size_t size) : input_(data, size) {
    lines_ = input_.TakeLines();
    fecha_->UseClock([] { return Date{45337.5}; });
    forms_->UseHost({.active_control = {},
                     .message_box = [](TextView, std::int32_t, TextView) { return kOkButton; },
                     .status_bar = {}});
  }

  void All() {
    for (const Text& line : lines_) {
      CheckNumberText(line);
      CheckDateText(line);
      CheckConversions(line);
      Format(line);
      TryTo([&] { texto_->TipoFrase(line); });
    }
    do {
      Once();
    } while (input_.HasChoices() && ++rounds_ < 32);
  }

 private:
  const Text& Line() { return input_.OneOf(lines_); }

  void Format(const Text& pattern) {
    for (const Text& line : lines_) TryTo([&] { tovalin::Format(line, pattern); });
    for (double number : {0.0, -0.5, 1234567.891, 45337.5, 3e6, 1e300})
      TryTo([&] { tovalin::Format(number, pattern); });
    TryTo([&] { tovalin::Format(Variant::Null(), pattern); });
  }

  void Once() {
    const Variant value = input_.Scalar(lines_);
    const Variant other = input_.Scalar(lines_);
    CheckConversions(value);
    TryTo([&] { tovalin::Format(value, Line()); });
    CheckTag(*forms_, Line(), input_.Byte(), Line());
    TryTo([&] { fecha_->cdbDate(value, Line()); });
    TryTo([&] { fecha_->DateDiffStr(value, other); });
    TryTo([&] { fecha_->MonthEnd(value); });
    TryTo([&] { fecha_->Dias360(ToDate(value), ToDate(other)); });
    TryTo([&] { fecha_->Date2Julian(ToDate(value)); });
    TryTo([&] {
      auto seconds = input_.Bytes<std::int32_t>();
      auto form = static_cast<std::int16_t>(input_.Below(2));
      fecha_->Duration(seconds, form);
    });
    TryTo([&] {
      Text condition = Line();
      forms_->AdicionarParametro(condition, Line(), u" and ", u"=", value,
                                 static_cast<std::int16_t>(input_.Below(20)));
    });
    TryTo([&] { forms_->Check(value, static_cast<std::int16_t>(input_.Below(20))); });
    TryTo([&] { forms_->AddText(Line(), input_.Byte()); });
    TryTo([&] { forms_->AddNumber(Line(), input_.Byte()); });
    TryTo([&] { forms_->StripDelimiter(Line(), Line()); });
    TryTo([&] { texto_->ExtraerFrase(Line(), input_.Byte()); });
    TryTo([&] { CallBuiltins(value, other); });
  }

  // The functions of formulas on dates and texts, with these as their arguments.
  void CallBuiltins(const Variant& value, const Variant& other) {
    constexpr const char16_t* kFormulas[] = {u"FORMAT( V , W )",
                                             u"DATEADD( W , 1 , V )",
                                             u"DATESERIAL( V , W , 1 )",
                                             u"YEAR( V ) & DAY( W )",
                                             u"ESFECHA( V )",
                                             u"VAL( V )",
                                             u"AJUSTAR( V , 9 , W )",
                                             u"DESAJUSTAR( V , W , 1 )",
                                             u"ReemplazarCadena( V , W , 'x' )",
                                             u"Redondear( V , W )",
                                             u"AjusteMedio( V , W , 2 )",
                                             u"MontoEscrito( V )",
                                             u"DigitoV( V )",
                                             u"StripNit( V )",
                                             u"NombreMes( V )",
                                             u"MEDIO( V , W , 3 )"};
    const Ref<Campos> locals = Make<Campos>();
    for (const auto& [name, given] : {std::pair(u"V", &value), std::pair(u"W", &other)}) {
      const auto record = Make<Campo>(name);
      record->LetValue(*given);
      locals->Add(record);
    }
    Ref<Campos> passed = locals;
    Variant result;
    Evaluator().EvaluatePosfijo(input_.OneOf(kFormulas), result, &passed);
  }

  static Evaluador& Evaluator() {
    class Silence : public SettingsStore {
      void Save(TextView, TextView, TextView, TextView) override {}
      Text Get(TextView, TextView, TextView, TextView otherwise) const override {
        return Text(otherwise);
      }
    };
    static const Ref<Evaluador> evaluator = [] {
      auto made = Make<Evaluador>();
      made->UseSettings(Make<Silence>());
      return made;
    }();
    return *evaluator;
  }

  Input input_;
  std::vector<Text> lines_;
  int rounds_ = 0;
  Ref<LibFecha> fecha_ = Make<LibFecha>();
  Ref<LibGeneral> forms_ = Make<LibGeneral>();
  Ref<LibTexto> texto_ = Make<LibTexto>();
};

}  // namespace
}  // namespace tovalin::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tovalin::fuzz::Run(data, size).All();
  return 0;
}
