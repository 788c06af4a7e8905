#include "forms/layout.h"

#include <algorithm>
#include <array>
#include <optional>
#include <span>

#include "forms/member_access.h"
#include "tovalin/convert.h"

namespace tovalin {
namespace {

// What a grid needs beside its columns. Deliberately different: a restored layout
// leaves room for a scroll bar that a fitted one does not have.
constexpr double kRestoreMargin = 250;
constexpr double kFitMargin = 200;

constexpr double kNormalState = 0;

constexpr std::array<TextView, 5> kFormProperties = {u"Width", u"Height", u"Left", u"Top",
                                                     u"WindowState"};
constexpr std::span<const TextView> kPlaceProperties = std::span(kFormProperties).first(4);

double ReadDouble(Object& control, TextView name) { return ToDouble(ReadMember(control, name)); }

double ColumnWidth(Object& grid, std::int32_t column) {
  return ToDouble(ReadMember(grid, u"ColWidth", {Variant(column)}));
}

std::int32_t ColumnCount(Object& grid) { return ToLong(ReadMember(grid, u"Cols")); }

/// The width of a grid without its margin, a whole number.
std::int32_t AvailableWidth(Object& grid, double margin) {
  return ToLong(Variant(ReadDouble(grid, u"Width") - margin));
}

void AppendItem(Text& layout, const Variant& number) { layout.append(ToText(number)).append(u","); }

Text PropertiesText(Object& control, std::span<const TextView> names) {
  Text layout;
  for (const TextView name : names) AppendItem(layout, ReadMember(control, name));
  return layout;
}

Text GridText(Object& grid) {
  Text layout;
  AppendItem(layout, ReadMember(grid, u"Width"));
  const std::int32_t count = ColumnCount(grid);
  for (std::int32_t i = 0; i < count; ++i)
    AppendItem(layout, ReadMember(grid, u"ColWidth", {Variant(i)}));
  return layout;
}

Text ListViewText(Object& view) {
  Text layout;
  AppendItem(layout, ReadMember(view, u"View"));
  const Ref<Object> headers = RequireObject(ReadMember(view, u"ColumnHeaders"));
  const std::int32_t count = ToLong(ReadMember(*headers, u"Count"));
  for (std::int32_t i = 0; i < count; ++i) {
    const Ref<Object> header = ReadElement(view, u"ColumnHeaders", Variant(i + 1));
    AppendItem(layout, ReadMember(*header, u"Width"));
  }
  return layout;
}

// A minimised or maximised form is not saved. Deliberate: its last normal layout
// stays stored, and a form never opens minimised.
Text FormText(Object& form) {
  if (ReadDouble(form, u"WindowState") != kNormalState) return {};
  return PropertiesText(form, kFormProperties);
}

/// The numbers of a layout text, one after the other.
class LayoutItems {
 public:
  explicit LayoutItems(TextView layout) : rest_(layout) {}

  bool AtEnd() const { return rest_.empty(); }
  double Next() {
    const std::size_t comma = rest_.find(u',');
    const TextView item = rest_.substr(0, comma);
    rest_ = comma == TextView::npos ? TextView() : rest_.substr(comma + 1);
    return LeadingNumber(item);
  }

 private:
  TextView rest_;
};

void ApplyProperties(Object& control, std::span<const TextView> names, TextView layout) {
  LayoutItems items(layout);
  for (const TextView name : names) {
    if (items.AtEnd()) return;
    WriteMember(control, name, Variant(items.Next()));
  }
}

// The width that a column gets, or none for a hidden column, which stays hidden.
std::optional<std::int16_t> RestoredWidth(Object& grid, std::int32_t column, double saved,
                                          std::int32_t available) {
  const std::int16_t width = std::max(ToInteger(Variant(saved)), std::int16_t{0});
  if (ColumnWidth(grid, column) <= 0) return std::nullopt;
  return width > available ? ToInteger(Variant(available / 2.0)) : width;
}

void ApplyColumnWidths(Object& grid, TextView layout) {
  const std::int32_t available = AvailableWidth(grid, kRestoreMargin);
  LayoutItems items(layout);
  items.Next();  // the width that the grid had: it keeps its present one
  const std::int32_t count = ColumnCount(grid);
  for (std::int32_t i = 0; i < count && !items.AtEnd(); ++i) {
    const std::optional<std::int16_t> width = RestoredWidth(grid, i, items.Next(), available);
    if (width) WriteMember(grid, u"ColWidth", Variant(i), Variant(*width));
  }
}

void ApplyGridLayout(Object& grid, TextView layout) {
  Variant redraw;
  bool redraw_is_off = false;
  IgnoreErrors([&] {
    redraw = ReadMember(grid, u"Redraw");
    WriteMember(grid, u"Redraw", Variant(false));
    redraw_is_off = true;
    ApplyColumnWidths(grid, layout);
  });
  // The caller must hear of a grid that stays without drawing.
  if (redraw_is_off) WriteMember(grid, u"Redraw", redraw);
}

void ApplyListViewLayout(Object& view, TextView layout) {
  LayoutItems items(layout);
  WriteMember(view, u"View", Variant(items.Next()));
  for (std::int32_t i = 1; !items.AtEnd(); ++i) {
    const Variant width(items.Next());
    const Ref<Object> header = ReadElement(view, u"ColumnHeaders", Variant(i));
    WriteMember(*header, u"Width", width);
  }
}

}  // namespace

Text LayoutText(Object& control) {
  switch (KindOf(control)) {
    case ControlKind::Grid:
      return GridText(control);
    case ControlKind::ListView:
      return ListViewText(control);
    case ControlKind::Form:
      return FormText(control);
    default:
      return PropertiesText(control, kPlaceProperties);
  }
}

void ApplyLayout(Object& control, TextView layout) {
  switch (KindOf(control)) {
    case ControlKind::Grid:
      return ApplyGridLayout(control, layout);
    case ControlKind::ListView:
      return IgnoreErrors([&] { ApplyListViewLayout(control, layout); });
    case ControlKind::Form:
      return IgnoreErrors([&] { ApplyProperties(control, kFormProperties, layout); });
    default:
      return IgnoreErrors([&] { ApplyProperties(control, kPlaceProperties, layout); });
  }
}

void FitGridColumns(Object& grid) {
  const std::int32_t count = ColumnCount(grid);
  std::int32_t total = 0;
  for (std::int32_t i = 0; i < count; ++i) total = ToLong(Variant(total + ColumnWidth(grid, i)));
  const bool has_fixed_column = ReadDouble(grid, u"FixedCols") == 1;
  const double fixed = has_fixed_column ? ColumnWidth(grid, 0) : 0;
  const std::int32_t available = AvailableWidth(grid, kFitMargin + fixed);
  if (total == 0) Raise(Failure::DivisionByZero);
  for (std::int32_t i = 0; i < count; ++i) {
    const double fitted = ColumnWidth(grid, i) * available / total;
    WriteMember(grid, u"ColWidth", Variant(i), Variant(fitted));
  }
}

}  // namespace tovalin
