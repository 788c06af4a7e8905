// Binds the widgets of a small form to LibGeneral: a text box that is checked as
// the focus leaves it, and a grid whose columns each user arranges.

#include <cstdio>
#include <string>
#include <vector>

#include "tovalin/control.h"
#include "tovalin/lib_general.h"

using namespace tovalin;

namespace {

// What a window toolkit would bring.
struct Edit {
  std::string text;
  std::string tag;
  void Focus() { std::puts("El foco vuelve al campo"); }
};

struct Table {
  std::vector<int> widths;
  int width = 0;
  bool drawing = true;
};

Ref<Control> Bind(Edit& edit) {
  return MakeControl(
      ControlKind::TextBox,
      {{u"Text", [&] { return FromUtf8(edit.text); }, [&](Text text) { edit.text = ToUtf8(text); }},
       {u"Tag", [&] { return FromUtf8(edit.tag); }, [&](Text tag) { edit.tag = ToUtf8(tag); }},
       {u"SetFocus", [&] { edit.Focus(); }}});
}

Ref<Control> Bind(Table& table) {
  return MakeControl(
      ControlKind::Grid,
      {{u"Cols", [&] { return static_cast<int>(table.widths.size()); }},
       {u"ColWidth", [&](int i) { return table.widths.at(static_cast<std::size_t>(i)); },
        [&](int i, int width) { table.widths.at(static_cast<std::size_t>(i)) = width; }},
       {u"FixedCols", [] { return 0; }},
       {u"Width", [&] { return table.width; }},
       {u"Redraw", [&] { return table.drawing; }, [&](bool on) { table.drawing = on; }}});
}

HostServices Services() {
  HostServices services;
  services.message_box = [](TextView prompt, std::int32_t, TextView) {
    std::printf("Mensaje: %s\n", ToUtf8(prompt).c_str());
    return kOkButton;
  };
  return services;
}

// Type 7 in field 6 of the tag: the field takes dates. Field 4 is the mark.
void LeaveDateField(const LibGeneral& general) {
  Edit date{"ayer", "»»Fecha de ingreso»0»07/03/2004»7»"};
  const Ref<Control> control = Bind(date);
  for (const char* typed : {"ayer", "08/03/2004"}) {
    date.text = typed;
    general.LostFocus(control);
    std::printf("%s: modificado %s\n", typed,
                ToUtf8(general.GetTag(FromUtf8(date.tag), 4)).c_str());
  }
}

// Without layouts of each user, the columns are stretched to the grid.
void FitTable(const LibGeneral& general) {
  Table table{{100, 300, 100}, 1200};
  general.GetControlProperties(u"Empleados", u"Tabla", Bind(table));
  std::printf("Columnas: %d %d %d\n", table.widths[0], table.widths[1], table.widths[2]);
}

}  // namespace

int main() {
  LibGeneral general;
  general.UseHost(Services());
  LeaveDateField(general);
  FitTable(general);
  return 0;
}
