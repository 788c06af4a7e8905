#include <cmath>
#include <cstring>
#include <random>

#include "flatfile/flat_fixture.h"
#include "tovalin/convert.h"

// What is written and read is equal to the last digit, for random values of every type in
// random layouts.

namespace tovalin {
namespace {

class RoundTrip : public FlatFileTest {
 protected:
  std::uint64_t Below(std::uint64_t limit) { return random_() % limit; }
  std::size_t Index(std::size_t size) { return static_cast<std::size_t>(Below(size)); }
  bool Chance() { return Below(2) == 0; }
  template <class T>
  const T& OneOf(const std::vector<T>& values) {
    return values[Index(values.size())];
  }

  /// A field of a random form with the values that it must keep.
  struct Field {
    std::string json;
    std::function<Variant()> value;
  };

  Field MakeField() {
    switch (Below(9)) {
      case 0:
        return MakeAmount();
      case 1:
        return MakeWhole();
      case 2:
        return {R"("type": "number")", [this] {
                  if (Chance()) return Variant(RandomDouble());
                  return Variant(static_cast<float>(static_cast<std::int64_t>(random_())) / 3);
                }};
      case 7:
        return MakeLongFraction();
      case 3:
        return {R"("type": "boolean", "trueValues": ["Sí"], "falseValues": ["No"])",
                [this] { return Variant(Chance()); }};
      case 4:
        return {R"("type": "date", "format": ")" +
                    OneOf<std::string>({"%Y%m%d", "%d/%m/%Y", "%Y-%m-%d"}) + "\"",
                [this] { return Variant(Date{std::floor(Days())}); }};
      case 5:
        return {R"("type": "time", "format": "%H%M%S")",
                [this] { return Variant(Date{static_cast<double>(Below(86400)) / 86400}); }};
      case 6:
        return {
            R"("type": "datetime")", [this] {
              return Variant(Date{std::floor(Days()) + static_cast<double>(Below(86400)) / 86400});
            }};
      default:
        return {R"("type": "string")", [this] { return RandomText(); }};
    }
  }

  Field MakeAmount() {
    const std::uint64_t decimals = Below(5);
    std::string json = R"("type": "number", "tovalin:decimales": )" + std::to_string(decimals);
    const bool zone = fixed_ && Chance();
    if (zone) json += R"(, "tovalin:signo": "zona")";
    if (!zone && Chance()) json += R"(, "tovalin:signo": "atras")";
    if (Chance()) json += R"(, "tovalin:implicito": true)";
    if (fixed_ && Chance()) json += R"(, "tovalin:relleno": "0")";
    if (!zone && Chance()) json += R"(, "tovalin:signoMas": true)";
    return {json, [this, decimals] {
              std::int64_t scale = 1;
              for (std::uint64_t i = decimals; i < 4; ++i) scale *= 10;
              const std::int64_t units = static_cast<std::int64_t>(random_() >> Below(63)) / 2;
              return Variant(Currency{(Chance() ? units : -units) / scale * scale});
            }};
  }

  /// Fifteen digits, of which more are decimals than Currency has.
  Field MakeLongFraction() {
    const std::uint64_t decimals = 5 + Below(11);
    return {R"("type": "number", "tovalin:decimales": )" + std::to_string(decimals),
            [this, decimals] {
              const auto units = static_cast<double>(Below(1'000'000'000'000'000) >> Below(40));
              return Variant(units / std::pow(10.0, static_cast<double>(decimals)));
            }};
  }

  Field MakeWhole() {
    return {R"("type": "integer")" +
                std::string(fixed_ && Chance() ? R"(, "tovalin:relleno": "0")" : ""),
            [this] {
              const auto units =
                  static_cast<std::int32_t>(static_cast<std::uint32_t>(random_()) >> Below(31));
              if (Below(4) == 0) return Variant(static_cast<std::int16_t>(units));
              return Below(4) == 0 ? Variant(static_cast<std::uint8_t>(units)) : Variant(units);
            }};
  }

  double RandomDouble() {
    for (;;) {
      const std::uint64_t bits = random_();
      double value = 0;
      std::memcpy(&value, &bits, sizeof value);
      if (Chance()) value = static_cast<double>(static_cast<std::int64_t>(bits)) / 1000;
      if (std::isfinite(value)) return value;
    }
  }
  double Days() { return static_cast<double>(Below(2'900'000)) - 600'000; }

  Variant RandomText() {
    static const Text kLetters = u"abcÑñáÉ€ 0123;,\"'|-\t.";
    Text text;
    for (std::uint64_t i = 1 + Below(12); i > 0; --i) text += kLetters[Index(kLetters.size())];
    // Blanks at the ends of a fixed field belong to nobody.
    text.front() = u'<';
    text.back() = u'>';
    return text;
  }

  static void ExpectSame(const Variant& wrote, const Variant& read) {
    if (wrote.Is(Subtype::Date)) {
      ASSERT_TRUE(read.Is(Subtype::Date));
      EXPECT_EQ(ToText(read), ToText(wrote));
      EXPECT_NEAR(read.AsDate().days, wrote.AsDate().days, 1e-9);
      return;
    }
    if (wrote.Is(Subtype::Single)) {
      EXPECT_EQ(static_cast<float>(read.AsDouble()), wrote.AsSingle());
      return;
    }
    if (wrote.Is(Subtype::Integer) || wrote.Is(Subtype::Byte)) {
      EXPECT_EQ(read.AsLong(), ToLong(wrote));
      return;
    }
    ASSERT_EQ(static_cast<int>(read.Kind()), static_cast<int>(wrote.Kind()))
        << ToUtf8(ToText(wrote));
    if (wrote.Is(Subtype::Double)) {
      EXPECT_EQ(read.AsDouble(), wrote.AsDouble());
    } else if (wrote.Is(Subtype::Currency)) {
      EXPECT_EQ(read.AsCurrency().ten_thousandths, wrote.AsCurrency().ten_thousandths);
    } else if (!wrote.Is(Subtype::Null)) {
      EXPECT_EQ(ToText(read), ToText(wrote));
    }
  }

  std::mt19937_64 random_{20240305};
  bool fixed_ = false;
};

TEST_F(RoundTrip, EveryTypeInEveryForm) {
  constexpr int kLayouts = 100;
  constexpr int kRows = 40;
  for (int round = 0; round < kLayouts; ++round) {
    fixed_ = Chance();
    std::vector<Field> fields;
    std::string json = fixed_ ? R"({"tovalin:formato": "fijo")"
                              : R"({"tovalin:dialecto": {"delimiter": ")" +
                                    OneOf<std::string>({",", ";", "|", "\\t"}) +
                                    R"(", "header": )" + (Chance() ? "true" : "false") + "}";
    json += R"(, "tovalin:codificacion": ")" + OneOf<std::string>({"1252", "utf-8", "utf-8-bom"}) +
            R"(", "tovalin:finLinea": ")" + OneOf<std::string>({"crlf", "lf"}) +
            R"(", "fields": [)";
    for (std::uint64_t i = 1 + Below(8); i > 0; --i) {
      fields.push_back(MakeField());
      if (fields.size() > 1) json += ", ";
      json += R"({"name": "C)" + std::to_string(fields.size()) + R"(", "tovalin:ancho": 26, )" +
              fields.back().json + "}";
    }
    json += "]}";
    SCOPED_TRACE(json);
    std::vector<Row> rows(kRows);
    for (Row& row : rows)
      for (const Field& field : fields)
        row.push_back(Below(10) == 0 ? Variant::Null() : field.value());
    const auto file = WithLayout(json);
    ASSERT_TRUE(file->Escribir(TableOf(rows), Path())) << Faults(*file);
    // The layout is the same through its own text.
    const auto again = WithLayout(ToUtf8(file->Diseno()));
    EXPECT_EQ(again->Diseno(), file->Diseno());
    const Variant read = again->Leer(Path());
    ASSERT_EQ(Faults(*again), "");
    ASSERT_EQ(read.AsArray().Rows(), rows.size());
    for (std::size_t r = 0; r < rows.size(); ++r)
      for (std::size_t c = 0; c < fields.size(); ++c)
        ExpectSame(rows[r][c], read.AsArray().At(c, r));
  }
}

}  // namespace
}  // namespace tovalin
