#include <gtest/gtest.h>

#include "tests/forms/fakes.h"
#include "tovalin/lib_general.h"

namespace tovalin {
namespace {

struct FakeGrid {
  double width = 5000;
  std::int32_t fixed_columns = 0;
  std::vector<double> columns;
  bool redraw = true;
  std::vector<bool> redraws;  // what Redraw was set to, in order
  int failing_column = -1;
  bool redraw_stays_off = false;

  double& Column(std::int32_t i) {
    if (i == failing_column) Raise(Failure::InvalidArgument);
    if (i < 0 || i >= static_cast<std::int32_t>(columns.size()))
      Raise(Failure::SubscriptOutOfRange);
    return columns[static_cast<std::size_t>(i)];
  }
  void SetRedraw(bool to) {
    if (to && redraw_stays_off) RaiseOwn(u"Grid", u"Sin ventana");
    redraw = to;
    redraws.push_back(to);
  }

  Ref<Object> AsControl() {
    return MakeControl(ControlKind::Grid,
                       {{u"Cols", [this] { return static_cast<std::int32_t>(columns.size()); }},
                        {u"FixedCols", [this] { return fixed_columns; }},
                        {u"Width", [this] { return width; }, [this](double to) { width = to; }},
                        {u"Redraw", [this] { return redraw; }, [this](bool to) { SetRedraw(to); }},
                        {u"ColWidth", [this](std::int32_t i) { return Column(i); },
                         [this](std::int32_t i, double to) { Column(i) = to; }}});
  }
};

struct FakeListView {
  double view = 3;
  std::vector<double> widths;

  Ref<Object> AsControl() {
    const Ref<Collection> headers = Make<Collection>();
    for (double& width : widths)
      headers->Add(MakeControl(ControlKind::Other, {{u"Width", [&width] { return width; },
                                                     [&width](double to) { width = to; }}}));
    return MakeControl(ControlKind::ListView,
                       {{u"ColumnHeaders", [headers] { return headers; }},
                        {u"View", [this] { return view; }, [this](double to) { view = to; }}});
  }
};

struct FakeWindow {
  double width = 6000, height = 4000, left = 120, top = 300, state = 0;
  std::vector<std::string> set;  // the properties set, in order

  Ref<Object> As(ControlKind kind) {
    const auto property = [this](const char16_t* name, double& value) {
      return ControlMember(
          name, [&value] { return value; },
          [this, name, &value](double to) {
            if (to < 0) Raise(Failure::InvalidArgument);
            value = to;
            set.push_back(ToUtf8(name));
          });
    };
    return MakeControl(
        kind, {property(u"Width", width), property(u"Height", height), property(u"Left", left),
               property(u"Top", top), property(u"WindowState", state)});
  }
  std::vector<double> Place() const { return {width, height, left, top, state}; }
};

class Layout : public testing::Test {
 protected:
  Layout() {
    general.UseSettings(store);
    general.LetgbolCUI(true);
    general.LetAplicacion(u"Nómina");
  }

  /// What is stored after the control was saved.
  std::string Saved(const Ref<Object>& control) {
    general.SaveControlProperties(u"Formas", u"uno", control);
    return ToUtf8(store->Get(u"Nómina", u"Formas", u"uno", u"(nada)"));
  }
  void Restore(TextView layout, const Ref<Object>& control) {
    store->Save(u"Nómina", u"Formas", u"uno", layout);
    general.GetControlProperties(u"Formas", u"uno", control);
  }

  Ref<MemorySettings> store = Make<MemorySettings>();
  LibGeneral general;
};

TEST_F(Layout, IsSavedAsNumbersWithCommas) {
  FakeWindow window;
  EXPECT_EQ(Saved(window.As(ControlKind::Form)), "6000,4000,120,300,0,");
  window.top = -7.25;
  EXPECT_EQ(Saved(window.As(ControlKind::Other)), "6000,4000,120,-7.25,");
  EXPECT_EQ(Saved(window.As(ControlKind::TextBox)), "6000,4000,120,-7.25,");
  FakeGrid grid;
  EXPECT_EQ(Saved(grid.AsControl()), "5000,");
  grid.columns = {100, 0, 0.5};
  EXPECT_EQ(Saved(grid.AsControl()), "5000,100,0,0.5,");
  FakeListView view;
  EXPECT_EQ(Saved(view.AsControl()), "3,");
  view.widths = {1440, 2000.5};
  EXPECT_EQ(Saved(view.AsControl()), "3,1440,2000.5,");
}

TEST_F(Layout, OfAMaximisedFormStaysTheNormalOne) {
  FakeWindow window;
  Saved(window.As(ControlKind::Form));
  window = {12000, 9000, 0, 0, 2, {}};
  EXPECT_EQ(Saved(window.As(ControlKind::Form)), "6000,4000,120,300,0,");
  general.GetControlProperties(u"Formas", u"uno", window.As(ControlKind::Form));
  EXPECT_EQ(window.Place(), (std::vector<double>{6000, 4000, 120, 300, 0}));
}

TEST_F(Layout, OfAFailingControlIsNotSaved) {
  FakeGrid grid;
  grid.columns = {1, 2, 3};
  grid.failing_column = 1;
  EXPECT_EQ(Saved(grid.AsControl()), "(nada)");
  EXPECT_EQ(Saved(MakeControl(ControlKind::Form, {})), "(nada)");
  EXPECT_EQ(Saved(MakeControl(ControlKind::ListView, {{u"View", [] { return 1; }}})), "(nada)");
  EXPECT_EQ(Saved(nullptr), "(nada)");
}

TEST_F(Layout, FailuresOfTheStoreAreQuiet) {
  FakeWindow window;
  store->fails = true;
  general.SaveControlProperties(u"Formas", u"uno", window.As(ControlKind::Form));
  general.GetControlProperties(u"Formas", u"uno", window.As(ControlKind::Form));
  EXPECT_TRUE(window.set.empty());
}

TEST_F(Layout, IsNotUsedUntilTheHostAsks) {
  general.LetgbolCUI(false);
  FakeWindow window;
  FakeListView view;
  view.widths = {1, 2};
  EXPECT_EQ(Saved(window.As(ControlKind::Form)), "(nada)");
  Restore(u"1,2,3,4,0,", window.As(ControlKind::Form));
  Restore(u"1,2,3,4,", window.As(ControlKind::Other));
  Restore(u"1,2,3,", view.AsControl());
  EXPECT_TRUE(window.set.empty());
  EXPECT_EQ(view.widths, (std::vector<double>{1, 2}));
  EXPECT_FALSE(LibGeneral().gbolCUI());
}

TEST_F(Layout, ComesBackInOrder) {
  FakeWindow window;
  Restore(u"1,2,3,4,1,99,", window.As(ControlKind::Form));
  EXPECT_EQ(window.Place(), (std::vector<double>{1, 2, 3, 4, 1}));
  EXPECT_EQ(window.set,
            (std::vector<std::string>{"Width", "Height", "Left", "Top", "WindowState"}));
  window = {};
  Restore(u"1,2,3,4,1,99,", window.As(ControlKind::Other));
  EXPECT_EQ(window.Place(), (std::vector<double>{1, 2, 3, 4, 0}));
}

TEST_F(Layout, ReadsNumbersLeniently) {
  FakeWindow window;
  Restore(u" 1 2.5cm,,x,4", window.As(ControlKind::Form));
  EXPECT_EQ(window.Place(), (std::vector<double>{12.5, 0, 0, 4, 0}));
  EXPECT_EQ(window.set.size(), 4u);
}

TEST_F(Layout, KeepsWhatWasAppliedBeforeAFailure) {
  FakeWindow window;
  Restore(u"1,2,-3,4,0,", window.As(ControlKind::Form));
  EXPECT_EQ(window.Place(), (std::vector<double>{1, 2, 120, 300, 0}));
  FakeListView view;
  view.widths = {10, 20};
  Restore(u"2,11,21,31,41,", view.AsControl());
  EXPECT_EQ(view.view, 2);
  EXPECT_EQ(view.widths, (std::vector<double>{11, 21}));
}

TEST_F(Layout, AbsentSettingChangesNothing) {
  FakeWindow window;
  FakeGrid grid;
  grid.columns = {100, 200};
  general.GetControlProperties(u"Formas", u"otro", window.As(ControlKind::Form));
  general.GetControlProperties(u"Formas", u"otro", grid.AsControl());
  EXPECT_TRUE(window.set.empty());
  EXPECT_EQ(grid.columns, (std::vector<double>{100, 200}));
  EXPECT_TRUE(grid.redraws.empty());
}

TEST_F(Layout, OfAGridRestoresItsColumns) {
  struct {
    const char16_t* layout;
    double width;
    std::vector<double> before, after;
  } const kCases[] = {
      {u"9,10,20,30,", 5000, {1, 2, 3}, {10, 20, 30}},
      {u"9,10,", 5000, {1, 2, 3}, {10, 2, 3}},
      {u"9,", 5000, {1, 2, 3}, {1, 2, 3}},
      {u"9,10,20,30,40,50,", 5000, {1, 2}, {10, 20}},
      {u"9,10,20,", 5000, {1, 0}, {10, 0}},
      {u"9,10,20,", 5000, {-1, 5}, {-1, 20}},
      {u"9,0,-5,", 5000, {1, 2}, {0, 0}},
      {u"9,4750,4751,", 5000, {1, 2}, {4750, 2375}},
      {u"9,800,801,", 1053, {1, 2}, {800, 801}},
      {u"9,804,", 1053, {1}, {402}},  // 401.5, to the even neighbour
      {u"9,2.5,3.5,x,", 5000, {1, 1, 1}, {2, 4, 0}},
      {u"9,10,40000,30,", 5000, {1, 2, 3}, {10, 2, 3}},  // 40000 is no 16-bit integer
      {u"9,10,20", 5000, {1, 2}, {10, 20}},
      {u"9,10,", 5000, {}, {}},
  };
  for (const auto& c : kCases) {
    FakeGrid grid;
    grid.width = c.width;
    grid.columns = c.before;
    Restore(c.layout, grid.AsControl());
    EXPECT_EQ(grid.columns, c.after) << ToUtf8(c.layout);
    EXPECT_EQ(grid.width, c.width);
    EXPECT_EQ(grid.redraws, (std::vector<bool>{false, true})) << ToUtf8(c.layout);
  }
}

TEST_F(Layout, OfAGridSetsRedrawBackInEveryCase) {
  for (const bool redraw : {true, false}) {
    FakeGrid grid;
    grid.columns = {1, 2, 3};
    grid.failing_column = 1;
    grid.redraw = redraw;
    Restore(u"9,10,20,30,", grid.AsControl());
    EXPECT_EQ(grid.columns, (std::vector<double>{10, 2, 3}));
    EXPECT_EQ(grid.redraws, (std::vector<bool>{false, redraw}));
  }
}

TEST_F(Layout, OfAGridRaisesARedrawThatDoesNotComeBack) {
  FakeGrid grid;
  grid.columns = {1, 2};
  grid.redraw_stays_off = true;
  const Error error = RaisedBy([&] { Restore(u"9,10,20,", grid.AsControl()); });
  EXPECT_EQ(error, (Error{kObjectError, u"Grid", u"Sin ventana"}));
  EXPECT_EQ(grid.columns, (std::vector<double>{10, 20}));
  // A grid that has no Redraw at all fails before, and quietly.
  Restore(u"9,10,", MakeControl(ControlKind::Grid, {{u"Width", [] { return 1; }}}));
}

TEST_F(Layout, WithoutUsersFitsAGridToItsWidth) {
  struct {
    double width;
    std::int32_t fixed;
    std::vector<double> before, after;
  } const kCases[] = {
      {1200, 0, {100, 300, 100}, {200, 600, 200}},
      {1200, 1, {100, 300, 100}, {180, 540, 180}},  // 1200 - 200 - 100
      {1200, 2, {100, 300, 100}, {200, 600, 200}},
      {1100, 0, {100, 200, 0}, {300, 600, 0}},
      {1200, 0, {0, 0}, {0, 0}},  // nothing to share out
      {1200, 0, {}, {}},
      {300, 0, {30, 10}, {75, 25}},
      {1000000, 0, {400000, 600000}, {399920, 599880}},
  };
  general.LetgbolCUI(false);
  for (const auto& c : kCases) {
    FakeGrid grid;
    grid.width = c.width;
    grid.fixed_columns = c.fixed;
    grid.columns = c.before;
    general.GetControlProperties(u"Formas", u"uno", grid.AsControl());
    EXPECT_EQ(grid.columns, c.after) << c.width;
    EXPECT_TRUE(grid.redraw);
  }
}

// A host's own class in place of the adapter, whose headers take their index
// at once.
class OwnListView : public Control {
 public:
  ControlKind Kind() const override { return ControlKind::ListView; }
  std::optional<Error> Invoke(TextView name, MemberKind kind, std::span<Variant> arguments,
                              Variant& result) override {
    if (EqualFolded(name, u"View")) {
      if (kind == MemberKind::Get) result = std::int16_t{1};
      return std::nullopt;
    }
    if (!EqualFolded(name, u"ColumnHeaders")) return PlatformError(Failure::NoSuchMember);
    if (arguments.empty())
      result = MakeControl(ControlKind::Other, {{u"Count", [] { return 2; }}});
    else
      result = MakeControl(ControlKind::Other, {{u"Width", [this] { return width; },
                                                 [this](std::int32_t to) { width += to; }}});
    return std::nullopt;
  }
  std::int32_t width = 5;
};

TEST_F(Layout, WorksOnAHostsOwnClass) {
  const Ref<OwnListView> view = Make<OwnListView>();
  EXPECT_EQ(Saved(view), "1,5,5,");
  Restore(u"1,10,20,", view);
  EXPECT_EQ(view->width, 35);
}

}  // namespace
}  // namespace tovalin
