#include "frame/arithmetic.h"

#include <gtest/gtest.h>

#include <limits>
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

}  // namespace
}  // namespace tovalin
