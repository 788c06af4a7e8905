#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "tests/forms/fakes.h"
#include "tovalin/lib_general.h"

namespace tovalin {
namespace {

// A configuration directory of its own for the time of a test.
class OwnConfiguration {
 public:
  OwnConfiguration() {
    std::string name = testing::TempDir() + "tovalin_forms_XXXXXX";
    directory = mkdtemp(name.data());
    if (const char* before = std::getenv("XDG_CONFIG_HOME")) before_ = before;
    setenv("XDG_CONFIG_HOME", directory.c_str(), 1);
  }
  ~OwnConfiguration() {
    if (before_.empty())
      unsetenv("XDG_CONFIG_HOME");
    else
      setenv("XDG_CONFIG_HOME", before_.c_str(), 1);
    std::filesystem::remove_all(directory);
  }

  std::filesystem::path directory;

 private:
  std::string before_;
};

TEST(LayoutInTheDefaultStore, IsThereForTheNextRun) {
  const OwnConfiguration configuration;
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

  std::ifstream file(configuration.directory / "tovalin" / "Nomina.ini");
  std::ostringstream content;
  content << file.rdbuf();
  EXPECT_NE(content.str().find("[Empleados]"), std::string::npos);
  EXPECT_NE(content.str().find("3,1440,"), std::string::npos);
}

}  // namespace
}  // namespace tovalin
