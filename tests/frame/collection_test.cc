#include "tovalin/collection.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>

#include "tovalin/campos.h"
#include "tovalin/convert.h"
#include "tovalin/dispatch.h"
#include "tovalin/enumerador.h"

namespace tovalin {
namespace {

std::int32_t RaisedNumber(const std::function<void()>& work) {
  try {
    work();
  } catch (const Error& error) {
    return error.number;
  }
  return 0;
}

// The same operations on a Collection and on a plain vector.
TEST(Collection, AgreesWithAVector) {
  struct Entry {
    std::int32_t item;
    Text key;
  };
  std::mt19937 random(3);
  const auto below = [&random](std::size_t limit) {
    return static_cast<std::size_t>(random()) % limit;
  };
  auto collection = Make<Collection>();
  std::vector<Entry> model;
  for (std::int32_t step = 0; step < 20'000; ++step) {
    const Text key = below(3) ? u"Clave" + FromUtf8(std::to_string(below(60))) : Text();
    const auto place = static_cast<std::int32_t>(below(model.size() + 2));
    const bool taken = !key.empty() && std::ranges::any_of(model, [&](const Entry& entry) {
      return EqualFolded(entry.key, key);
    });
    const bool exists = place >= 1 && place <= static_cast<std::int32_t>(model.size());
    const Variant key_argument = key.empty() ? Variant::Missing() : Variant(ToUpper(key));
    const auto add = [&](const Variant& before, const Variant& after, std::size_t position) {
      const std::int32_t error =
          RaisedNumber([&] { collection->Add(step, key_argument, before, after); });
      if (!exists && !(before.IsMissing() && after.IsMissing())) {
        EXPECT_EQ(error, 9);
      } else if (taken) {
        EXPECT_EQ(error, 457);
      } else {
        EXPECT_EQ(error, 0);
        model.insert(model.begin() + static_cast<std::ptrdiff_t>(position), {step, key});
      }
    };
    switch (below(6)) {
      case 0:
      case 1:
        add(Variant::Missing(), Variant::Missing(), model.size());
        break;
      case 2:
        add(place, Variant::Missing(), static_cast<std::size_t>(place) - 1);
        break;
      case 3:
        add(Variant::Missing(), place, static_cast<std::size_t>(place));
        break;
      case 4:
        EXPECT_EQ(RaisedNumber([&] { collection->Remove(place); }), exists ? 0 : 9);
        if (exists) model.erase(model.begin() + place - 1);
        break;
      case 5:
        if (key.empty()) break;
        EXPECT_EQ(RaisedNumber([&] { collection->Remove(Variant(key)); }), taken ? 0 : 5);
        std::erase_if(model, [&](const Entry& entry) { return EqualFolded(entry.key, key); });
    }
    ASSERT_EQ(collection->Count(), static_cast<std::int32_t>(model.size()));
    if (step % 50 != 0) continue;
    for (std::size_t i = 0; i < model.size(); ++i) {
      ASSERT_EQ(collection->Item(static_cast<std::int32_t>(i) + 1).AsLong(), model[i].item);
      if (!model[i].key.empty()) {
        ASSERT_EQ(collection->Item(ToLower(model[i].key)).AsLong(), model[i].item);
      }
    }
  }
}

TEST(Collection, RefusesWhatItCannotPlace) {
  auto collection = Make<Collection>();
  collection->Add(1.0, u"uno");
  EXPECT_EQ(RaisedNumber([&] { collection->Add(2.0, 5.0); }), 13);
  EXPECT_EQ(RaisedNumber([&] { collection->Add(2.0, u"dos", u"uno", u"uno"); }), 5);
  EXPECT_EQ(RaisedNumber([&] { collection->Add(2.0, u"dos", u"tres"); }), 5);
  EXPECT_EQ(RaisedNumber([&] { collection->Item(0.4); }), 9);
  EXPECT_EQ(RaisedNumber([&] { collection->Item(Variant::Null()); }), 13);
  EXPECT_EQ(collection->Item(1.4).AsDouble(), 1.0);
  EXPECT_EQ(collection->Count(), 1);
}

std::string Iterate(const Ref<Collection>& collection,
                    const std::function<void(std::int32_t)>& at_item) {
  std::string met;
  for (const Variant& item : *collection) {
    met += ToUtf8(ToText(item)) + " ";
    if (item.Is(Subtype::Long)) at_item(item.AsLong());
  }
  return met;
}

Ref<Collection> OneToFive() {
  auto collection = Make<Collection>();
  for (std::int32_t i = 1; i <= 5; ++i) collection->Add(i);
  return collection;
}

TEST(Iteration, StaysRightWhileItemsComeAndGo) {
  auto collection = OneToFive();
  EXPECT_EQ(Iterate(collection,
                    [&](std::int32_t item) {
                      if (item == 2) collection->Remove(2);
                    }),
            "1 2 3 4 5 ");
  collection = OneToFive();
  EXPECT_EQ(Iterate(collection,
                    [&](std::int32_t item) {
                      if (item == 3) collection->Remove(1);
                    }),
            "1 2 3 4 5 ");
  collection = OneToFive();
  EXPECT_EQ(Iterate(collection,
                    [&](std::int32_t item) {
                      if (item == 2) collection->Add(u"nuevo", Variant::Missing(), std::int32_t{1});
                      if (item == 4) collection->Add(u"luego");
                    }),
            "1 2 3 4 5 luego ");
  collection = OneToFive();
  EXPECT_EQ(Iterate(collection,
                    [&](std::int32_t item) {
                      if (item != 3) return;
                      collection->Remove(3);
                      collection->Add(u"aquí", Variant::Missing(), std::int32_t{3});
                    }),
            "1 2 3 aquí 4 5 ");
  collection = OneToFive();
  EXPECT_EQ(Iterate(collection,
                    [&](std::int32_t) {
                      while (collection->Count()) collection->Remove(1);
                    }),
            "1 ");
  collection = OneToFive();
  EXPECT_EQ(Iterate(collection,
                    [&](std::int32_t item) {
                      if (item == 5) collection->Remove(5);
                    }),
            "1 2 3 4 5 ");
  // Nested iterations, and a list that is released during one.
  collection = OneToFive();
  std::string inner;
  auto doomed = OneToFive();
  EXPECT_EQ(Iterate(collection,
                    [&](std::int32_t item) {
                      if (item == 1)
                        inner = Iterate(collection, [&](std::int32_t i) {
                          if (i == 4) collection->Remove(2);
                        });
                    }),
            "1 3 4 5 ");
  EXPECT_EQ(inner, "1 2 3 4 5 ");
  for (const Variant& item : *doomed) {
    EXPECT_EQ(item.AsLong(), 1);
    doomed = nullptr;
  }
}

// What a late-bound iteration visits: "key=item " for each item. Calls `change` at each.
std::string LateBoundWalk(Object& list, const std::function<void(const std::string&)>& change) {
  const MemberInfo* new_enum = list.Class().Find(kNewEnumId, MemberKind::Method);
  EXPECT_TRUE(new_enum && new_enum->hidden);
  Variant items;
  EXPECT_FALSE(list.Invoke(u"_newenum", MemberKind::Method, {}, items));
  const Ref<Object> iterator = items.AsObject();
  std::string met;
  for (;;) {
    Variant item;
    Variant found;
    Variant key;
    Variant arguments[] = {Variant::ByReference(item)};
    EXPECT_FALSE(iterator->Invoke(u"Siguiente", MemberKind::Method, arguments, found));
    EXPECT_FALSE(iterator->Invoke(u"Clave", MemberKind::Get, {}, key));
    if (!found.AsBoolean()) return met;
    const auto record = item.Is(Subtype::Object) ? item.AsObject().As<Campo>() : Ref<Campo>();
    const std::string shown = ToUtf8(record ? record->Name() : ToText(item));
    met += ToUtf8(key.AsText()) + "=" + shown + " ";
    change(shown);
  }
}

TEST(Iteration, WorksLateBound) {
  auto collection = Make<Collection>();
  collection->Add(u"a", u"Uno");
  collection->Add(u"b");
  collection->Add(u"c", u"Tres");
  EXPECT_EQ(LateBoundWalk(*collection, [](const std::string&) {}), "Uno=a =b Tres=c ");
  EXPECT_EQ(LateBoundWalk(*collection,
                          [&](const std::string& item) {
                            if (item != "a") return;
                            collection->Remove(u"Uno");
                            collection->Add(u"d");
                          }),
            "Uno=a =b Tres=c =d ");
  Variant keys;
  EXPECT_FALSE(collection->Invoke(u"Claves", MemberKind::Get, {}, keys));
  EXPECT_EQ(LateBoundWalk(*keys.AsObject(), [](const std::string&) {}), "= =Tres = ");

  auto table = Make<Campos>();
  table->Add(Make<Campo>(u"Saldo"));
  table->Add(Make<Campo>(u"Tasa"));
  table->Item(u"Tasa")->LetName(u"Otro");
  EXPECT_EQ(LateBoundWalk(*table, [](const std::string&) {}), "Saldo=Saldo Tasa=Otro ");
  EXPECT_EQ(table->Claves()->Item(std::int32_t{2}).AsText(), u"Tasa");
}

TEST(Iteration, StartsAgainAndOutlivesItsList) {
  auto collection = Make<Collection>();
  collection->Add(1.0);
  const Ref<Enumerador> items = collection->NewEnum();
  Variant item;
  collection->Remove(1);
  EXPECT_FALSE(items->Siguiente(item));
  collection->Add(2.0);
  EXPECT_FALSE(items->Siguiente(item));  // it has ended
  items->Reiniciar();
  collection = nullptr;  // the iterator holds it
  EXPECT_TRUE(items->Siguiente(item));
  EXPECT_EQ(item.AsDouble(), 2.0);
  Ref<Enumerador> of_a_local;
  {
    Collection local;
    local.Add(3.0);
    of_a_local = local.NewEnum();
  }
  EXPECT_FALSE(of_a_local->Siguiente(item));
  // An iteration that assigns into the variable that holds it.
  Variant self = Variant(items);
  items->Reiniciar();
  EXPECT_TRUE(items->Siguiente(self));
  EXPECT_EQ(self.AsDouble(), 2.0);
}

TEST(Campos, KeepsRecordsUnderTheirNames) {
  auto table = Make<Campos>();
  const auto record = Make<Campo>(u"Año");
  table->Add(record);
  table->Add(Make<Campo>(u"B"), u"AÑO");
  EXPECT_EQ(table->Item(std::int32_t{2})->Name(), u"Año");
  EXPECT_EQ(table->Item(u"año"), record);
  EXPECT_FALSE(table->Exists(u"ano"));
  EXPECT_EQ(RaisedNumber([&] { table->Add(Make<Campo>(u"b")); }), 457);
  EXPECT_EQ(RaisedNumber([&] { table->Add(nullptr); }), 91);
  EXPECT_EQ(RaisedNumber([&] { table->Remove(u"C"); }), 5);
  record->LetName(u"Otro");  // it stays where it was put
  EXPECT_TRUE(table->Exists(u"año") && !table->Exists(u"Otro"));
  const std::uint64_t version = table->Version();
  record->LetValue(5.0);
  EXPECT_EQ(table->Version(), version);
  record->LetFormula(u"B + 1");
  EXPECT_GT(table->Version(), version);
  table->Remove(u"año");
  table = nullptr;
  record->LetFormula(u"");  // tells no table that is gone
}

// A table says of what its records are changed by, and of nothing else.
TEST(Campos, CountsChangesOfNamesFormulasAndValues) {
  auto table = Make<Campos>();
  auto other = Make<Campos>();
  const auto record = Make<Campo>(u"A");
  table->Add(record);
  other->Add(record);
  struct Change {
    const char* what;
    std::function<void()> make;
    bool grows, values_grow;
  };
  const Change kChanges[] = {
      {"name", [&] { record->LetName(u"B"); }, true, false},
      {"formula", [&] { record->LetFormula(u"1"); }, true, false},
      {"value", [&] { record->LetValue(1.0); }, false, true},
      {"direction", [&] { record->LetDirection(1.0); }, false, false},
      {"status", [&] { record->LetStatus(1); }, false, false},
      {"another record", [&] { table->Add(Make<Campo>(u"C")), other->Add(Make<Campo>(u"C")); },
       true, false},
      {"one record less", [&] { table->Remove(u"C"), other->Remove(u"C"); }, true, false},
  };
  for (const Change& change : kChanges) {
    const std::uint64_t before[] = {table->Version(), other->Version()};
    const std::uint64_t values[] = {table->ValuesVersion(), other->ValuesVersion()};
    change.make();
    EXPECT_EQ(table->Version() > before[0], change.grows) << change.what;
    EXPECT_EQ(other->Version() > before[1], change.grows) << change.what;
    EXPECT_EQ(table->ValuesVersion() > values[0], change.values_grow) << change.what;
    EXPECT_EQ(other->ValuesVersion() > values[1], change.values_grow) << change.what;
  }
  other->Remove(u"A");  // and no more of a record that it has not
  const std::uint64_t version = other->Version();
  const std::uint64_t in_table = table->Version();
  record->LetName(u"D");
  EXPECT_EQ(other->Version(), version);
  EXPECT_GT(table->Version(), in_table);
}

TEST(Campos, ACopyHasEveryAttributeAndBelongsToNoTable) {
  auto table = Make<Campos>();
  const auto record = Make<Campo>(u"A");
  record->LetDataType(kDate);
  record->LetSize(12);
  record->LetPosition(3);
  record->LetValue(u"valor");
  record->LetDescription(u"descripción");
  record->LetFormula(u"B + 1");
  record->LetSourceName(u"palabra");
  record->LetSintax(u"sintaxis");
  record->LetDirection(7.0);
  record->LetStatus(Campo::kBeingComputed);
  table->Add(record);
  const Ref<Campo> copy = record->Copy();
  const std::uint64_t version = table->Version();
  record->LetValue(Variant());  // what it was, the copy keeps
  EXPECT_EQ(copy->Name(), u"A");
  EXPECT_EQ(copy->DataType(), kDate);
  EXPECT_EQ(copy->Size(), 12);
  EXPECT_EQ(copy->Position(), 3);
  EXPECT_EQ(copy->Value().AsText(), u"valor");
  EXPECT_EQ(copy->Description(), u"descripción");
  EXPECT_EQ(copy->Formula(), u"B + 1");
  EXPECT_TRUE(copy->HasFormula());
  EXPECT_EQ(copy->SourceName(), u"palabra");
  EXPECT_EQ(copy->Sintax(), u"sintaxis");
  EXPECT_EQ(copy->Direction().AsDouble(), 7.0);
  EXPECT_EQ(copy->Status(), Campo::kBeingComputed);
  copy->LetFormula(u"  ");
  EXPECT_FALSE(copy->HasFormula());  // blanks are none
  EXPECT_EQ(record->Formula(), u"B + 1");
  EXPECT_EQ(table->Version(), version);
}

TEST(Campos, KnowsTheNamesOfTheSystem) {
  auto table = Make<Campos>();
  EXPECT_FALSE(table->IsSystem(u"UNO"));
  table->LetSystemList(u"Uno,DOS,Año");
  for (const TextView name : {u"uno", u"Dos", u"AÑO"}) EXPECT_TRUE(table->IsSystem(name));
  for (const TextView name : {u"un", u"unos", u"Uno,DOS", u"tres"})
    EXPECT_FALSE(table->IsSystem(name));
}

TEST(Variant, SharesTextAndCopiesArraysWhenWritten) {
  EXPECT_LE(sizeof(Variant), 16u);  // 12 where a Double needs no alignment of 8
  Variant text = u"un texto más largo que cualquier otro";
  const Variant copy = text;
  EXPECT_EQ(text.AsText().data(), copy.AsText().data());
  const Variant moved = std::move(text);
  EXPECT_TRUE(text.Is(Subtype::Empty));
  EXPECT_EQ(moved.AsText(), copy.AsText());

  Variant array = Make<VariantArray>(2, 3);
  EXPECT_EQ(array.Code(), 8204);
  array.MutableArray().At(1, 2) = 5.0;
  const Variant other = array;
  array.MutableArray().At(1, 2) = 6.0;
  EXPECT_EQ(other.AsArray().At(1, 2).AsDouble(), 5.0);
  EXPECT_EQ(RaisedNumber([&] { other.AsArray().At(2, 0); }), 9);

  Variant target = std::int16_t{3};
  Variant reference = Variant::ByReference(target);
  EXPECT_EQ(reference.Code(), 16386);
  Variant chained = Variant::ByReference(reference);
  chained.Assign(u"cambiado");
  EXPECT_EQ(target.AsText(), u"cambiado");
  EXPECT_EQ(chained.AsText(), u"cambiado");
}

// What is assigned to itself, or a reference to itself, stays what it is.
TEST(Variant, IsAssignedToItself) {
  for (const Variant& kept : {Variant(2.5), Variant(u"un texto más largo que cualquier otro"),
                              Variant(Make<VariantArray>(1, 1)), Variant(Make<Collection>())}) {
    Variant value = kept;
    Variant& same = value;
    value = same;
    EXPECT_EQ(value.Code(), kept.Code());
    value = std::move(same);
    EXPECT_EQ(value.Code(), kept.Code());
    value = Variant::ByReference(same);
    EXPECT_EQ(value.Code(), kept.Code());
    if (kept.Is(Subtype::String)) {
      EXPECT_EQ(value.AsText(), kept.AsText());
    }
  }
}

}  // namespace
}  // namespace tovalin
