#include "frame/arithmetic.h"

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

struct Row {
  const char* left;
  const char* right;
  const char* result;
};

template <std::size_t N>
void ExpectRows(const char* name, Binary operation, const Row (&rows)[N]) {
  for (const Row& row : rows) {
    const Variant left = Value(row.left);
    Variant target = Value(row.right);
    const Variant right = Variant::ByReference(target);
    EXPECT_EQ(Outcome([&] { return operation(left, right); }), row.result)
        << row.left << ' ' << name << ' ' << row.right;
  }
}

TEST(Arithmetic, Add) {
  ExpectRows("+", Add,
             {{"d:0.1", "d:0.2", "d:0.30000000000000004"},
              {"d:1.5e308", "d:1.5e308", "!6"},
              // Whole numbers move on to the subtype that holds the result.
              {"y:255", "y:1", "i:256"},
              {"y:7", "i:-32768", "i:-32761"},
              {"y:7", "i:32767", "l:32774"},
              {"i:32767", "i:1", "l:32768"},
              {"i:-32768", "i:-1", "l:-32769"},
              {"l:2147483647", "i:1", "d:2147483648"},
              {"l:-2147483648", "l:-2147483648", "d:-4294967296"},
              {"b:-1", "b:-1", "i:-2"},
              {"b:-1", "y:7", "i:6"},
              {"empty", "empty", "i:0"},
              {"empty", "y:7", "y:7"},
              {"empty", "t:0", "t:0"},
              // A Single keeps its subtype beside what it holds exactly.
              {"f:0.1", "f:0.1", "f:0.2"},
              {"i:7", "f:-2.5", "f:4.5"},
              {"l:3", "f:0.1", "d:3.100000001490116"},
              {"f:0.1", "d:0", "d:0.10000000149011612"},
              {"f:3e38", "f:3e38", "d:6.0000000109955115e+38"},
              // Amounts.
              {"c:1.5000", "c:-12.3456", "c:-10.8456"},
              {"c:-12.3456", "l:40000", "c:39987.6544"},
              {"f:0.1", "c:1.5000", "c:1.6000"},
              {"d:123456.789", "c:0.0001", "c:123456.7891"},
              {"c:0.0001", "s:1,234.5", "c:1234.5001"},
              {"c:250000000000.0001", "c:250000000000.0002", "c:500000000000.0003"},
              {"c:922337203685477.5807", "i:0", "c:922337203685477.5807"},
              {"c:922337203685477.5807", "l:-2147483648", "c:922335056201829.6250"},
              {"c:922337203685477.5807", "y:1", "!6"},
              {"c:0.0000", "d:1e15", "!6"},
              // Dates, as long as the sum is one.
              {"t:45292", "i:300", "t:45592"},
              {"t:45292.75", "t:45292.75", "t:90585.5"},
              {"t:2958465", "b:0", "t:2958465"},
              {"t:2958465", "y:1", "d:2958466"},
              {"t:-1.25", "c:0.0001", "t:-1.2499"},
              {"s:1e3", "t:-1.25", "t:998.75"},
              // Texts.
              {"i:32767", "s: 7 ", "d:32774"},
              {"s:12", "s: 7 ", "s:12 7 "},
              {"empty", "s:abc", "s:abc"},
              {"s:", "d:2.5", "!13"},
              {"d:2.5", "s:31/12/2023", "!13"},
              {"s:True", "i:1", "!13"},
              {"null", "s:abc", "null"},
              {"c:1.5000", "null", "null"}});
}

TEST(Arithmetic, Subtract) {
  ExpectRows("-", Subtract,
             {{"d:1", "d:0.9", "d:0.09999999999999998"},
              {"empty", "i:-32768", "l:32768"},
              {"empty", "y:1", "i:-1"},
              {"y:7", "y:7", "y:0"},
              {"l:-2147483648", "y:1", "d:-2147483649"},
              {"f:0.1", "i:32767", "f:-32766.9"},
              {"c:0.0001", "c:-12.3456", "c:12.3457"},
              {"c:1.5000", "c:922337203685477.5807", "c:-922337203685476.1250"},
              {"d:0", "c:922337203685477.5807", "c:-922337203685477.5807"},
              {"c:922337203685477.5807", "c:-12.3456", "!6"},
              {"t:45292.75", "t:45292", "d:0.75"},
              {"t:45292.75", "d:2.5", "t:45290.25"},
              {"d:0", "t:45292", "t:-45292"},
              {"i:-1", "t:2958465", "d:-2958466"},
              {"s:1,234.5", "s:1e3", "d:234.5"},
              {"s:12", "s:abc", "!13"},
              {"null", "t:0", "null"}});
}

TEST(Arithmetic, Multiply) {
  ExpectRows("*", Multiply,
             {{"d:1.1", "d:1.1", "d:1.2100000000000002"},
              {"d:1e308", "i:300", "!6"},
              {"y:7", "y:7", "y:49"},
              {"y:255", "y:255", "l:65025"},
              {"i:300", "i:300", "l:90000"},
              {"l:2147483647", "l:2147483647", "d:4611686014132420608"},
              {"b:-1", "l:-2147483648", "d:2147483648"},
              {"empty", "y:7", "y:0"},
              {"f:0.1", "f:0.1", "f:0.010000001"},
              {"f:0.1", "l:3", "d:0.30000000447034836"},
              {"i:-32768", "f:3e38", "d:-9.830400018015046e+42"},
              // An amount stays one only beside whole numbers and amounts.
              {"c:-12.3456", "c:-12.3456", "c:152.4138"},
              {"c:0.0001", "c:1.5000", "c:0.0002"},
              {"c:0.0001", "c:2.5000", "c:0.0002"},
              {"c:0.0001", "c:922337203685477.5807", "c:92233720368.5478"},
              {"c:1.5000", "l:-2147483648", "c:-3221225472.0000"},
              {"b:-1", "c:922337203685477.5807", "c:-922337203685477.5807"},
              {"i:300", "c:922337203685477.5807", "!6"},
              {"c:1.5000", "d:0.1", "d:0.15000000000000002"},
              {"f:-2.5", "c:0.0001", "d:-0.00025"},
              {"c:-12.3456", "s:-3", "d:37.0368"},
              {"t:45292.75", "y:7", "d:317049.25"},
              {"s:12", "s:1e3", "d:12000"},
              {"s:True", "null", "null"}});
}

TEST(Arithmetic, Divide) {
  ExpectRows("/", Divide,
             {{"d:10", "d:3", "d:3.3333333333333335"},
              {"i:300", "b:-1", "d:-300"},
              {"i:7", "f:-2.5", "f:-2.8"},
              {"f:0.1", "i:7", "f:0.014285714"},
              {"f:0.1", "l:2147483647", "d:4.656612944634736e-11"},
              {"f:3e38", "f:0.1", "d:2.999999960794273e+39"},
              {"c:0.0001", "b:-1", "d:-1e-04"},
              {"t:45292.75", "c:1.5000", "d:30195.166666666668"},
              {"s:1e3", "s:1,234.5", "d:0.8100445524503848"},
              {"d:1e308", "d:0.1", "!6"},
              {"d:1", "d:0", "!11"},
              {"t:45292", "b:0", "!11"},
              {"d:0", "d:0", "!6"},
              {"i:0", "empty", "!6"},
              {"s:12", "empty", "!11"},
              {"s:abc", "i:0", "!13"},
              {"i:1", "null", "null"}});
}

TEST(Arithmetic, Power) {
  ExpectRows("^", Power,
             {{"i:300", "l:3", "d:2.7e+07"},
              {"i:7", "d:-2.5", "d:0.007713560673657699"},
              {"s:-3", "b:-1", "d:-0.3333333333333333"},
              {"l:-2147483648", "s:-3", "d:-1.0097419586828951e-28"},
              {"empty", "empty", "d:1"},
              {"f:3e38", "c:0.0000", "d:1"},
              {"empty", "i:300", "d:0"},
              {"i:7", "l:-2147483648", "d:0"},
              {"i:7", "l:40000", "!6"},
              {"b:-1", "d:0.1", "!5"},
              {"c:-12.3456", "c:0.0001", "!5"},
              {"empty", "i:-1", "!5"},
              {"s:abc", "i:1", "!13"},
              {"null", "i:-1", "null"}});
}

TEST(Arithmetic, And) {
  ExpectRows("And", And,
             {{"b:-1", "b:0", "b:0"},
              {"y:255", "y:7", "y:7"},
              {"y:255", "i:300", "i:44"},
              {"b:-1", "y:7", "i:7"},
              {"empty", "y:7", "i:0"},
              {"i:300", "s:1e3", "i:296"},
              {"i:-1", "s:40000", "l:40000"},
              {"l:40000", "s:1,234.5", "l:1088"},
              {"d:-2.5", "i:-1", "l:-2"},
              {"t:45292.75", "b:-1", "l:45293"},
              {"b:0", "s:True", "b:0"},
              {"t:45292", "s:true", "l:45292"},
              {"s:12", "s:4", "l:4"},
              {"d:1e15", "i:1", "!6"},
              {"f:3e38", "s:abc", "!6"},
              {"s:abc", "f:3e38", "!13"},
              {"i:7", "s:", "!13"},
              // Null is what is not known: it matters only if the other does not decide.
              {"null", "empty", "i:0"},
              {"null", "b:0", "b:0"},
              {"c:0.0000", "null", "l:0"},
              {"null", "d:1e15", "null"},
              {"null", "s:", "!13"},
              {"null", "null", "null"}});
}

TEST(Arithmetic, Or) {
  ExpectRows("Or", Or,
             {{"b:0", "b:-1", "b:-1"},
              {"y:1", "y:255", "y:255"},
              {"y:7", "i:300", "i:303"},
              {"i:1", "s:1,234.5", "i:1235"},
              {"b:-1", "s:1e3", "b:-1"},
              {"c:1.5000", "t:45292.75", "l:45295"},
              {"l:-2147483648", "i:300", "l:-2147483348"},
              {"d:2.5", "s:31/12/2023", "!13"},
              {"null", "i:1", "i:1"},
              {"null", "b:-1", "b:-1"},
              {"f:-2.5", "null", "l:-2"},
              {"null", "i:0", "null"},
              {"f:3e38", "null", "!6"},
              {"null", "null", "null"}});
}

TEST(Arithmetic, Concatenate) {
  ExpectRows("&", Concatenate,
             {{"i:-1", "d:1e15", "s:-11E+15"},
              {"d:0.30000000000000004", "s: kg", "s:0.3 kg"},
              {"c:922337203685477.5807", "y:7", "s:922337203685477.58077"},
              {"f:0.1", "l:40000", "s:0.140000"},
              {"b:-1", "b:0", "s:VerdaderoFalso"},
              {"empty", "s:año", "s:año"},
              {"null", "i:300", "s:300"},
              {"s:", "null", "s:"},
              {"null", "null", "null"}});
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

TEST(Arithmetic, NegateAndAbs) {
  struct {
    const char* value;
    const char* negated;
    const char* absolute;
  } const kRows[] = {{"i:1", "i:-1", "i:1"},
                     {"i:-32768", "l:32768", "l:32768"},
                     {"l:-2147483648", "d:2147483648", "d:2147483648"},
                     {"y:7", "i:-7", "y:7"},
                     {"b:-1", "i:1", "i:1"},
                     {"empty", "i:0", "i:0"},
                     {"f:-2.5", "f:2.5", "f:2.5"},
                     {"d:-123456.789", "d:123456.789", "d:123456.789"},
                     {"c:-0.5000", "c:0.5000", "c:0.5000"},
                     {"c:-922337203685477.5808", "!6", "!6"},
                     {"t:-1.25", "t:1.25", "t:1.25"},
                     {"t:2958465", "d:-2958465", "t:2958465"},
                     {"s:-3", "d:3", "d:3"},
                     {"s:1,234.5", "d:-1234.5", "d:1234.5"},
                     {"s:True", "!13", "!13"},
                     {"null", "null", "null"}};
  for (const auto& row : kRows) {
    const Variant value = Value(row.value);
    EXPECT_EQ(Outcome([&] { return Negate(value); }), row.negated) << row.value;
    EXPECT_EQ(Outcome([&] { return Abs(value); }), row.absolute) << row.value;
  }
}

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
