#include "frame/value/arithmetic.h"

#include <gtest/gtest.h>

#include <limits>
#include <new>
#include <string>

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
