#include <gtest/gtest.h>

#include <algorithm>

#include "tovalin/convert.h"
#include "tovalin/dispatch.h"
#include "tovalin/factory.h"

namespace tovalin {
namespace {

// Calls `visit` with where it stands for each parameter of each member and event.
template <class Visit>
void ForEachParameter(const ClassInfo& info, Visit visit) {
  const auto each = [&](TextView name, std::span<const ParameterInfo> parameters) {
    for (const ParameterInfo& parameter : parameters)
      visit(ToUtf8(info.name) + "." + ToUtf8(name) + " " + ToUtf8(parameter.name), parameter);
  };
  for (const MemberInfo& member : info.members) each(member.name, member.parameters);
  for (const EventInfo& event : info.events) each(event.name, event.parameters);
}

TEST(Description, HasATextForEverything) {
  for (const ClassInfo* info : Classes()) {
    const std::string where = ToUtf8(info->name);
    EXPECT_FALSE(info->doc.empty()) << where;
    for (const MemberInfo& member : info->members) {
      EXPECT_FALSE(Explanation(member).empty()) << where << "." << ToUtf8(member.name);
      for (const ErrorInfo& error : member.errors)
        EXPECT_FALSE(error.number == 0 || error.when.empty()) << where << ToUtf8(member.name);
    }
    for (const EventInfo& event : info->events)
      EXPECT_FALSE(Explanation(event).empty()) << where << "." << ToUtf8(event.name);
    ForEachParameter(*info, [](const std::string& parameter, const ParameterInfo& described) {
      EXPECT_FALSE(described.doc.empty()) << parameter;
    });
    for (const EnumInfo* enumeration : info->enumerations) {
      EXPECT_FALSE(enumeration->doc.empty()) << ToUtf8(enumeration->name);
      for (const EnumValueInfo& value : enumeration->values)
        EXPECT_FALSE(value.doc.empty()) << ToUtf8(value.name);
    }
  }
}

// An object that a member takes or gives is of a class in the list, and a code of an
// enumeration that a host finds there.
TEST(Description, NamesOnlyWhatItDescribes) {
  const auto check = [](const std::string& where, const ValueType& type) {
    EXPECT_TRUE(type.class_name.empty() || FindClass(type.class_name)) << where;
    if (!type.enumeration) return;
    EXPECT_EQ(FindEnumeration(type.enumeration->name), type.enumeration) << where;
    EXPECT_TRUE(type.subtype == Subtype::Integer || type.subtype == Subtype::Long ||
                type.subtype == Subtype::Byte)
        << where;
  };
  for (const ClassInfo* info : Classes()) {
    for (const MemberInfo& member : info->members)
      check(ToUtf8(info->name) + "." + ToUtf8(member.name), member.result);
    ForEachParameter(*info, [&](const std::string& where, const ParameterInfo& parameter) {
      check(where, parameter.type);
      EXPECT_TRUE(parameter.by_reference || parameter.passing == Passing::In) << where;
    });
  }
}

TEST(Description, TellsWhatAHostMayDoWithAClass) {
  struct Row {
    TextView name;
    bool creatable;
    TextView default_member, enumerator;
  };
  for (const Row& row :
       {Row{u"Evaluador", true, u"", u""}, Row{u"Formula", false, u"", u""},
        Row{u"Enumerador", false, u"", u""}, Row{u"tovalin.collection", true, u"Item", u"_NewEnum"},
        Row{u"Campos", true, u"Item", u"_NewEnum"}, Row{u"CAMPO", true, u"Value", u""}}) {
    const ClassInfo* info = FindClass(row.name);
    ASSERT_TRUE(info) << ToUtf8(row.name);
    EXPECT_EQ(info->create != nullptr, row.creatable) << ToUtf8(row.name);
    const auto name_of = [](const MemberInfo* member) { return member ? member->name : u""; };
    EXPECT_EQ(name_of(info->DefaultMember()), row.default_member) << ToUtf8(row.name);
    EXPECT_EQ(name_of(info->Enumerator()), row.enumerator) << ToUtf8(row.name);
    if (const MemberInfo* member = info->Enumerator()) {
      EXPECT_TRUE(member->hidden && member->restricted);
    }
    if (info->create) {
      EXPECT_EQ(&info->create()->Class(), info);
    }
  }
  EXPECT_FALSE(FindClass(u"Control"));
}

constexpr EnumValueInfo kColours[] = {{u"colRojo", 1, u"Rojo"}, {u"colVerde", -2, u"Verde"}};
constexpr EnumInfo kColour{u"Color", u"Los colores", kColours};
constexpr const EnumInfo* kEnumerations[] = {&kColour};

class Muestra : public Object {
 public:
  static constexpr TextView kClassName = u"Muestra";
  static const ClassInfo kInfo;
  const ClassInfo& Class() const override { return kInfo; }

  std::int32_t Color(const Text&) const { return color_; }
  void LetColor(const Text&, std::int32_t NewValue) { color_ = NewValue; }
  bool Buscar(Text& Donde, double& Hallado, Ref<Campos>* Tabla, bool, Text) {
    Donde += u"!";
    Hallado = Tabla ? 1 : 2;
    return true;
  }
  Event<const Text&, bool&> Cambio;

 private:
  std::int32_t color_ = 1;
};

constexpr MemberRow kMembers[] = {
    Get<&Muestra::Color>(kDefaultMemberId, u"Color", u"El \"color\"\n\\de algo",
                         {{u"Parte", u"La parte"}})
        .Result(kColour),
    Let<&Muestra::LetColor>(kDefaultMemberId, u"Color", {{u"Otra"}, {u"NewValue"}})
        .Errors({{5, u"no hay ese color"}}),
    Method<&Muestra::Buscar>(
        7, u"Buscar",
        {Unchanged({u"Donde", u"Dónde"}), Out({u"Hallado", u"Qué"}), Optional({u"Tabla", u"Tabla"}),
         Optional({u"Todo", u"Todo"}, false), Optional({u"Texto", u"Texto"}, u"*")})
        .Reference(u"Busca")
        .Hidden(),
};
constexpr EventRow kEvents[] = {DescribeEvent<&Muestra::Cambio>(
    3, u"Cambio", {{u"Cual", u"Cuál"}, {u"Sigue", u"Si sigue"}}, u"Cambió")};

constinit const ClassInfo Muestra::kInfo =
    DescribeClass<Muestra, kMembers, kEvents>(u"Una muestra", kEnumerations);

TEST(Description, IsJson) {
  EXPECT_EQ(DescribeJson(Muestra::kInfo), R"({
  "name": "Muestra",
  "creatable": true,
  "doc": "Una muestra",
  "default": "Color",
  "members": [
    {
      "id": 0,
      "name": "Color",
      "kind": "get",
      "doc": "El \"color\"\u000a\\de algo",
      "parameters": [
        {
          "name": "Parte",
          "type": "String",
          "code": 8,
          "passing": "in",
          "doc": "La parte"
        }
      ],
      "result": {
        "type": "Long",
        "code": 3,
        "enumeration": "Color"
      }
    },
    {
      "id": 0,
      "name": "Color",
      "kind": "let",
      "doc": "El \"color\"\u000a\\de algo",
      "parameters": [
        {
          "name": "Parte",
          "type": "String",
          "code": 8,
          "passing": "in",
          "doc": "La parte"
        },
        {
          "name": "NewValue",
          "type": "Long",
          "code": 3,
          "enumeration": "Color",
          "passing": "in",
          "doc": "El valor nuevo"
        }
      ],
      "errors": [
        {
          "number": 5,
          "when": "no hay ese color"
        }
      ]
    },
    {
      "id": 7,
      "name": "Buscar",
      "kind": "method",
      "hidden": true,
      "restricted": true,
      "reference": "Busca",
      "parameters": [
        {
          "name": "Donde",
          "type": "String",
          "code": 8,
          "byReference": true,
          "passing": "in",
          "doc": "Dónde"
        },
        {
          "name": "Hallado",
          "type": "Double",
          "code": 5,
          "byReference": true,
          "passing": "out",
          "doc": "Qué"
        },
        {
          "name": "Tabla",
          "type": "Object",
          "code": 9,
          "class": "Campos",
          "byReference": true,
          "passing": "inout",
          "optional": true,
          "doc": "Tabla"
        },
        {
          "name": "Todo",
          "type": "Boolean",
          "code": 11,
          "passing": "in",
          "optional": true,
          "default": false,
          "doc": "Todo"
        },
        {
          "name": "Texto",
          "type": "String",
          "code": 8,
          "passing": "in",
          "optional": true,
          "default": "*",
          "doc": "Texto"
        }
      ],
      "result": {
        "type": "Boolean",
        "code": 11
      }
    }
  ],
  "events": [
    {
      "id": 3,
      "name": "Cambio",
      "doc": "Cambió",
      "parameters": [
        {
          "name": "Cual",
          "type": "String",
          "code": 8,
          "passing": "in",
          "doc": "Cuál"
        },
        {
          "name": "Sigue",
          "type": "Boolean",
          "code": 11,
          "byReference": true,
          "passing": "inout",
          "doc": "Si sigue"
        }
      ]
    }
  ],
  "enumerations": [
    {
      "name": "Color",
      "doc": "Los colores",
      "values": [
        {
          "name": "colRojo",
          "value": 1,
          "doc": "Rojo"
        },
        {
          "name": "colVerde",
          "value": -2,
          "doc": "Verde"
        }
      ]
    }
  ]
})");
}

TEST(Description, OfAHostsClassServesItsCalls) {
  const Ref<Object> sample = Muestra::kInfo.create();
  Variant where = u"aquí", found, result;
  Variant arguments[] = {Variant::ByReference(where), Variant::ByReference(found)};
  EXPECT_FALSE(sample->Invoke(u"buscar", MemberKind::Method, arguments, result));
  EXPECT_EQ(ToUtf8(where.AsText()), "aquí!");
  EXPECT_EQ(found.AsDouble(), 2);
  Variant colour[] = {u"parte", 4.0};
  EXPECT_FALSE(Invoke(*sample, *Muestra::kInfo.Find(0, MemberKind::Let), colour, result));
  EXPECT_FALSE(
      Invoke(*sample, *Muestra::kInfo.DefaultMember(), std::span(colour).first(1), result));
  EXPECT_EQ(result.AsLong(), 4);
}

}  // namespace
}  // namespace tovalin
