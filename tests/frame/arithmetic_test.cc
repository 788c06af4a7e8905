#include "frame/value/arithmetic.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <limits>
#include <new>
#include <optional>
#include <string>

#include "frame/value/amount_product.h"
#include "frame/value_notation.h"
#include "tovalin/convert.h"

namespace tovalin {
namespace {

using testing::Notation;
using testing::Outcome;
using testing::Value;

using Binary = Variant (*)(const Variant&, const Variant&);

TEST(Arithmetic, WhatIsNoOperandRaisesTypeMismatch) {
  const Variant strangers[] = {Variant(Ref<Object>()), Variant::Missing(),
                               Variant(Make<VariantArray>(1, 1))};
  const Variant partners[] = {Variant(2.5), Variant(u"abc"), Variant::Null(), Variant()};
  const Binary operations[] = {Add, Subtract, Multiply, Divide, Power, And, Or, Concatenate};
  for (const Variant& stranger : strangers) {
    EXPECT_EQ(Outcome([&] { return Negate(stranger); }), "!13");
    EXPECT_EQ(Outcome([&] { return Abs(stranger); }), "!13");
    for (const Variant& partner : partners)
      for (const Binary operation : operations) {
        EXPECT_EQ(Outcome([&] { return operation(stranger, partner); }), "!13");
        EXPECT_EQ(Outcome([&] { return operation(partner, stranger); }), "!13");
      }
  }
}

TEST(Arithmetic, ValuesThatAreNotFiniteRaiseOverflow) {
  const double values[] = {std::numeric_limits<double>::infinity(),
                           -std::numeric_limits<double>::infinity(),
                           std::numeric_limits<double>::quiet_NaN()};
  const Binary operations[] = {Add, Subtract, Multiply, And, Or};
  for (const double value : values)
    for (const Binary operation : operations)
      for (const Variant& partner : {Variant(2.5), Variant(Date{1}), Variant(Currency{1})})
        EXPECT_EQ(Outcome([&] { return operation(value, partner); }), "!6") << value;
}

TEST(AmountProduct, AtTheLimits) {
  constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();
  constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
  struct Row {
    std::int64_t left, right;
    std::optional<std::int64_t> product;
  };
  const Row rows[] = {
      {kMost, 10000, kMost},
      {kLeast, 10000, kLeast},
      {kMost, -10000, -kMost},
      {kLeast, -10000, std::nullopt},
      {kMost, 10001, std::nullopt},
      {kMost, kMost, std::nullopt},
      {kLeast, kLeast, std::nullopt},
      {kLeast, 1, -922337203685478},  // ...477.5808
      {1, 5000, 0},                   // halves go to the even neighbour
      {3, 5000, 2},
      {-1, 5000, 0},
      {-3, 5000, -2},
      {1, 5001, 1},
      {-1, 5001, -1},
      {kMost, 9999, 9222449699651090329},
      {6148914691236517205, 15000, std::nullopt},  // ...807.5, of which only one neighbour fits
      {-6148914691236517205, 15000, kLeast},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(AmountProduct(row.left, row.right), row.product) << row.left << ' ' << row.right;
    EXPECT_EQ(AmountProduct(row.right, row.left), row.product) << row.left << ' ' << row.right;
  }
}

#ifdef __SIZEOF_INT128__
// What a compiler that has them computes with numbers of 128 bits.
TEST(AmountProduct, IsTheSameInWiderNumbers) {
  __extension__ using Int128 = __int128;
  std::uint64_t state = 1;
  const auto next = [&](int shift) {
    state = state * 6364136223846793005u + 1442695040888963407u;
    return static_cast<std::int64_t>(state) >> shift;
  };
  for (int i = 0; i < 200000; ++i) {
    const std::int64_t left = next(i % 64);
    const std::int64_t right = next(i / 64 % 64);
    const Int128 product = Int128{left} * right;
    Int128 units = product / 10000;
    const auto rest = static_cast<int>(product % 10000);
    if (std::abs(rest) > 5000 || (std::abs(rest) == 5000 && units % 2 != 0))
      units += rest < 0 ? -1 : 1;
    std::optional<std::int64_t> expected;
    if (units == static_cast<std::int64_t>(units)) expected = static_cast<std::int64_t>(units);
    ASSERT_EQ(AmountProduct(left, right), expected) << left << ' ' << right;
  }
}
#endif

// A text of a gigabyte beside itself: what would be too long is not made at all.
TEST(Arithmetic, ConcatenateRaisesBeyondTheLongestText) {
  Text text;
  try {
    text.reserve(kLongestText / 2 + 1);
  } catch (const std::bad_alloc&) {
    GTEST_SKIP() << "too little memory";
  }
  text = u"xx";
  while (text.size() < kLongestText / 2) text.append(text);
  text.pop_back();
  text.append(u"yz");
  Variant half = std::move(text);
  EXPECT_EQ(half.AsText().size(), kLongestText / 2 + 1);
  const Variant& again = half;
  EXPECT_EQ(Outcome([&] { return Concatenate(half, again); }), "!7");
  EXPECT_EQ(Outcome([&] { return Concatenate(std::move(half), again); }), "!7");
}

}  // namespace
}  // namespace tovalin
