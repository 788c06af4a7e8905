#include <gtest/gtest.h>

#include "frame/settings_directory.h"
#include "tests/forms/fakes.h"
#include "tovalin/lib_general.h"

namespace tovalin {
namespace {

using LayoutInTheDefaultStore = SettingsDirectoryTest;

TEST_F(LayoutInTheDefaultStore, IsThereForTheNextRun) {
  double width = 1440;
  const Ref<Control> header = MakeControl(
      ControlKind::Other, {{u"Width", [&] { return width; }, [&](double to) { width = to; }}});
  const Ref<Collection> headers = Make<Collection>();
  headers->Add(header);
  const Ref<Control> view =
      MakeControl(ControlKind::ListView, {{u"ColumnHeaders", [&] { return headers; }},
                                          {u"View", [] { return 3; }, [](std::int32_t) {}}});

  LibGeneral general;
  general.LetgbolCUI(true);
  general.LetAplicacion(u"Nomina");
  general.SaveControlProperties(u"Empleados", u"Año", view);
  width = 0;
  LibGeneral next_run;
  next_run.LetgbolCUI(true);
  next_run.LetAplicacion(u"Nomina");
  next_run.GetControlProperties(u"Empleados", u"Año", view);
  EXPECT_EQ(width, 1440);

  const std::string content = ReadFile("Nomina.ini");
  EXPECT_NE(content.find("[Empleados]"), std::string::npos);
  EXPECT_NE(content.find("3,1440,"), std::string::npos);
}

}  // namespace
}  // namespace tovalin
