#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "tovalin/campos.h"
#include "tovalin/collection.h"
#include "tovalin/event.h"

// What goes does so without recursion, and last: its destructor may be code of the host.

namespace tovalin {
namespace {

class Dying : public Object {
 public:
  explicit Dying(std::function<void()> last_act) : last_act_(std::move(last_act)) {}
  ~Dying() override { last_act_(); }

 private:
  std::function<void()> last_act_;
};

// An object of a kind that the library does not know, with something in it.
class Box : public Object {
 public:
  explicit Box(Variant content) : content_(Make<Collection>()) { content_->Add(content); }

 private:
  Ref<Collection> content_;
};

TEST(Release, OfALongChainTakesNoStack) {
  struct Link {
    const char* name;
    int count;
    Variant (*around)(const Variant& inner);
  };
  const Link kLinks[] = {
      {"values", 100'000,
       [](const Variant& inner) {
         auto record = Make<Campo>(Text());
         record->LetValue(inner);
         return Variant(record);
       }},
      {"directions", 1'000'000,
       [](const Variant& inner) {
         auto record = Make<Campo>(Text());
         record->LetDirection(inner);
         return Variant(record);
       }},
      {"tables, by their directions", 100'000,
       [](const Variant& inner) {
         auto record = Make<Campo>(Text());
         record->LetDirection(inner);
         auto table = Make<Campos>();
         table->Add(record);
         return Variant(table);
       }},
      {"Collections and arrays", 100'000,
       [](const Variant& inner) {
         auto array = Make<VariantArray>(1, 1);
         array->At(0, 0) = inner;
         auto items = Make<Collection>();
         items->Add(Variant(array));
         return Variant(items);
       }},
      {"objects of the host in between", 100'000,
       [](const Variant& inner) { return Variant(Ref<Object>(Make<Box>(inner))); }},
  };
  for (const Link& link : kLinks) {
    int gone = 0;
    Variant chain = Ref<Object>(Make<Dying>([&gone] { ++gone; }));
    for (int i = 0; i < link.count; ++i) chain = link.around(chain);
    EXPECT_EQ(gone, 0) << link.name;
    chain = Variant();
    EXPECT_EQ(gone, 1) << link.name;
  }
}

// What an object sees as it goes is what took its place.
TEST(Release, IsTheLastThingThatAChangeDoes) {
  auto record = Make<Campo>(u"A");
  auto table = Make<Campos>();
  table->Add(record);
  Variant value;
  std::string seen;
  const auto bomb = [&](auto look) {
    return Variant(Ref<Object>(Make<Dying>([&seen, look] { seen = look(); })));
  };
  value = bomb([&value] { return std::to_string(Variant(value).AsLong()); });
  value = 1;
  EXPECT_EQ(seen, "1");

  record->LetValue(bomb([&] { return std::to_string(record->Value().AsLong()); }));
  record->LetValue(2);
  EXPECT_EQ(seen, "2");

  record->LetDirection(bomb([&] { return std::to_string(record->Direction().AsLong()); }));
  record->LetDirection(3);
  EXPECT_EQ(seen, "3");

  auto only = Make<Campo>(u"B");
  only->LetValue(bomb([&] {
    table = nullptr;
    return std::string("gone");
  }));
  table->Add(only);
  only = nullptr;
  Campos* const target = table.get();
  target->Remove(u"B");
  EXPECT_EQ(seen, "gone");

  // A record that its old value takes away.
  Ref<Campo> held = Make<Campo>(u"C");
  Campo* const plain = held.get();
  plain->LetValue(bomb([&] {
    held = nullptr;
    return std::string("alone");
  }));
  plain->LetValue(4);
  EXPECT_EQ(seen, "alone");
}

TEST(Release, OfAHandlerMayTakeItsEventAlong) {
  struct Owner {
    Event<int> event;
  };
  for (const bool is_raised : {false, true}) {
    auto owner = std::make_unique<Owner>();
    Owner* const plain = owner.get();
    int others = 0;
    int attachment = 0;
    const auto kept = std::shared_ptr<int>(new int, [&](int* number) {
      delete number;
      plain->event.Attach([](int) {});  // still there, and whole
      owner = nullptr;
    });
    std::weak_ptr<int> watch = kept;
    {
      auto moved = kept;
      attachment = plain->event.Attach([&, moved = std::move(moved)](int) {
        if (moved) plain->event.Detach(attachment);
      });
    }
    plain->event.Attach([&others](int) { ++others; });
    const_cast<std::shared_ptr<int>&>(kept).reset();
    EXPECT_FALSE(watch.expired());
    if (is_raised)
      plain->event.Raise(1);
    else
      plain->event.Detach(attachment);
    EXPECT_TRUE(watch.expired());
    EXPECT_FALSE(owner);
    EXPECT_EQ(others, is_raised ? 1 : 0);
  }
}

}  // namespace
}  // namespace tovalin
