#include "tovalin/factory.h"

#include <gtest/gtest.h>

#include <set>

#include "tovalin/campos.h"
#include "tovalin/collection.h"
#include "tovalin/convert.h"

namespace tovalin {
namespace {

TEST(CreateObject, MakesEveryClassByName) {
  for (TextView name : {u"Evaluador", u"LibMonto", u"LibTexto", u"LibFecha", u"clsFileExport",
                        u"LibGeneral", u"LibFile", u"LibConstan", u"Collection", u"Campos"}) {
    EXPECT_EQ(CreateObject(name)->Class().name, name);
    EXPECT_EQ(CreateObject(u"TOVALIN." + ToUpper(name))->Class().name, name);
  }
  for (TextView name : {u"", u"Tovalin.", u"Otra", u"Tovalin.Tovalin.Evaluador", u"Evaluador "}) {
    try {
      CreateObject(name);
      ADD_FAILURE() << ToUtf8(name);
    } catch (const Error& error) {
      EXPECT_EQ(error.number, 429);
    }
  }
}

// A binding relies on it: ids name one member, and parameters have names.
TEST(Classes, DescribeTheirMembersConsistently) {
  for (const ClassInfo* info : Classes()) {
    std::set<std::pair<int, MemberKind>> ids;
    std::set<std::pair<std::string, MemberKind>> names;
    for (const MemberInfo& member : info->members) {
      const std::string where = ToUtf8(info->name) + "." + ToUtf8(member.name);
      EXPECT_TRUE(ids.insert({member.id, member.kind}).second) << where;
      EXPECT_TRUE(names.insert({ToUtf8(ToLower(member.name)), member.kind}).second) << where;
      bool optional = false;
      for (const ParameterInfo& parameter : member.parameters) {
        EXPECT_FALSE(parameter.name.empty()) << where;
        EXPECT_TRUE(parameter.optional || !optional) << where;
        optional = parameter.optional;
      }
      EXPECT_EQ(info->Find(member.id, member.kind), &member) << where;
    }
  }
}

struct CallCase {
  const char16_t* member;
  MemberKind kind;
  std::vector<Variant> arguments;
  std::int32_t error;
};

TEST(Invoke, AnswersErrorsInsteadOfThrowing) {
  const CallCase cases[] = {
      {u"add", MemberKind::Method, {1.0}, 0},
      {u"ADD", MemberKind::Method, {2.0, u"clave"}, 0},
      {u"Add", MemberKind::Method, {3.0, Variant::Missing(), u"clave"}, 0},
      {u"Add", MemberKind::Method, {3.0, u"clave"}, 457},
      {u"Add", MemberKind::Method, {}, 449},
      {u"Add", MemberKind::Method, {Variant::Missing()}, 449},
      {u"Item", MemberKind::Method, {1.0, 2.0}, 450},
      {u"Item", MemberKind::Method, {9.0}, 9},
      {u"Item", MemberKind::Method, {u"otra"}, 5},
      {u"Nada", MemberKind::Method, {}, 438},
      {u"Count", MemberKind::Method, {}, 438},
      {u"Count", MemberKind::Get, {}, 0},
      {u"Count", MemberKind::Let, {1.0}, 438},
  };
  const Ref<Object> collection = CreateObject(u"Collection");
  for (const CallCase& row : cases) {
    std::vector<Variant> arguments = row.arguments;
    Variant result;
    const auto error = collection->Invoke(row.member, row.kind, arguments, result);
    EXPECT_EQ(error ? error->number : 0, row.error) << ToUtf8(row.member);
  }
  Variant count;
  collection->Invoke(u"Count", MemberKind::Get, {}, count);
  EXPECT_EQ(count.AsLong(), 3);
}

TEST(Invoke, ConvertsArgumentsAndCarriesThemBack) {
  const Ref<Object> evaluator = CreateObject(u"Evaluador");
  Variant result;
  Variant expression = u"medio('abc',1,2)";
  Variant locals;
  Variant check[] = {Variant::ByReference(expression), Variant::ByReference(locals)};
  EXPECT_FALSE(evaluator->Invoke(u"CheckInfijo", MemberKind::Method, check, result));
  EXPECT_EQ(ToUtf8(expression.AsText()), "MEDIO( \"abc\" , 1 , 2 ) ");
  EXPECT_TRUE(locals.AsObject().As<Campos>());
  EXPECT_EQ(result.AsObject().As<Collection>()->Count(), 7);

  Variant flag[] = {u"True"};
  EXPECT_FALSE(evaluator->Invoke(u"closepila", MemberKind::Let, flag, result));
  EXPECT_FALSE(evaluator->Invoke(u"closepila", MemberKind::Get, {}, result));
  EXPECT_TRUE(result.AsBoolean());

  struct TypeCase {
    Variant argument;
    std::int32_t error;
  };
  for (const TypeCase& row : {TypeCase{5.0, 424}, TypeCase{Variant(Make<Collection>()), 13},
                              TypeCase{Variant(Ref<Object>()), 91}, TypeCase{Variant(), 91},
                              TypeCase{Variant(Make<Campos>()), 0}}) {
    Variant arguments[] = {row.argument};
    const auto error = evaluator->Invoke(u"Variables", MemberKind::Set, arguments, result);
    EXPECT_EQ(error ? error->number : 0, row.error);
  }
}

}  // namespace
}  // namespace tovalin
