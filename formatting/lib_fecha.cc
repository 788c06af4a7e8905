#include "tovalin/lib_fecha.h"

#include <array>
#include <span>

#include "formatting/date_difference.h"
#include "formatting/dias360.h"
#include "formatting/duration.h"
#include "frame/format/patterns.h"
#include "frame/object/error_translation.h"
#include "frame/value/calendar.h"
#include "frame/value/number_text.h"
#include "tovalin/convert.h"

namespace tovalin {
namespace {

constexpr Date kMonday{2};

/// Adds the names under "K1", "K2" ... to a collection that has no items; all or none.
void FillOnce(Ref<Collection>& collection, std::span<const Text> names) {
  if (collection->Count() > 0) return;  // a host's clock may have asked for it
  auto filled = Make<Collection>();
  for (std::size_t i = 0; i < names.size(); ++i) {
    Text key = u"K";
    AppendNumber(key, static_cast<std::int64_t>(i + 1));
    filled->Add(names[i], key);
  }
  collection = std::move(filled);
}

}  // namespace

struct LibFecha::Core {
  HostClock clock;
  Ref<Collection> days = Make<Collection>();
  Ref<Collection> months = Make<Collection>();
};

LibFecha::LibFecha() : core_(std::make_unique<Core>()) {}
LibFecha::~LibFecha() = default;

void LibFecha::UseClock(Clock clock) { core_->clock.Use(std::move(clock)); }

Variant LibFecha::MonthBegin(Variant& vbdate) const {
  return RaisingErrors([&]() -> Variant {
    if (!IsDate(vbdate)) return vbdate.Value();
    const CivilDate date = DateOf(ToDate(vbdate));
    return DateSerial(date.year, date.month, 1);
  });
}

Text LibFecha::DateDiffStr(const Variant& vvarFechaIni, const Variant& vvarFechaFin) const {
  return RaisingErrors(
      [&] { return DateDifferenceText(ToDate(vvarFechaIni), ToDate(vvarFechaFin)); });
}

Variant LibFecha::MonthEnd(const Variant& vbdate) const {
  return RaisingErrors([&]() -> Variant {
    if (!IsDate(vbdate)) return vbdate.Value();
    const CivilDate date = DateOf(ToDate(vbdate));
    return DateSerial(date.year, date.month, DaysInMonth(date.year, date.month));
  });
}

Text LibFecha::cdbDate(const Variant& vFecha, const Text& vstrFormat) const {
  return RaisingErrors([&] { return u"'" + Format(ToDate(vFecha), vstrFormat) + u"'"; });
}

std::int32_t LibFecha::Dias360(Date vInicial, Date vFin) const {
  return tovalin::Dias360(vInicial, vFin);
}

Ref<Collection> LibFecha::DiasSemana() {
  return RaisingErrors([&] {
    if (core_->days->Count() == 0) {
      std::array<Text, 7> names;
      // Deliberately the same day seven times: hosts show this list as it has
      // always been, and seven different names would change their forms.
      names.fill(Format(kMonday, u"ddd"));
      FillOnce(core_->days, names);
    }
    return core_->days;
  });
}

Ref<Collection> LibFecha::MesesDelAno() {
  return RaisingErrors([&] {
    if (core_->months->Count() > 0) return core_->months;
    const Ref<LibFecha> alive = Hold(*this);
    const int year = DateOf(core_->clock.Now()).year;
    std::array<Text, 12> names;
    for (std::size_t i = 0; i < names.size(); ++i)
      names[i] = Format(DateSerial(year, static_cast<int>(i + 1), 1), u"mmmm");
    FillOnce(core_->months, names);
    return core_->months;
  });
}

std::int32_t LibFecha::Date2Julian(Date vDate) const {
  return DateOf(vDate).year * 1000 + DayOfYear(vDate);
}

bool LibFecha::IsLeapYear(std::int16_t& TestYear) const {
  return DateOf(DateSerial(TestYear, 3, 0)).day == 29;
}

Text LibFecha::Duration(std::int32_t& TotalSeconds, std::int16_t& UpFormat) const {
  return RaisingErrors(
      [&] { return UpFormat == 0 ? ShortDuration(TotalSeconds) : LongDuration(TotalSeconds); });
}

}  // namespace tovalin
