#include "formatting/amount_reading.h"

#include "formatting/amount_tokens.h"
#include "formatting/argument_error.h"
#include "formatting/cents.h"
#include "formatting/currency_nouns.h"
#include "frame/value/number_text.h"

// What is read:
//
//   amount   = ["menos"] (number [noun] [cents] | noun number [cents])
//   number   = "cero" | [block billions] [block millions] [block]
//   block    = [group] "mil" [group] | group
//   group    = "cien" | [hundreds] [below 30 | tens ["y" unit]]
//   cents    = "con" number noun | ["con" | "y"] fraction [noun] [mark]
//
// A noun is one word or more that are no numerals and do not look like one; after
// exact millions a "de" stands before it. An amount of cents alone ("veintinueve
// centavos") is one too.

namespace tovalin {
namespace {

using Kind = NumeralWord::Kind;

constexpr std::uint64_t kMillion = 1'000'000;

class AmountReader {
 public:
  explicit AmountReader(TextView text) : tokens_(ScanAmount(text)) {}

  std::int64_t Read() {
    const bool negative = Accept(Kind::Minus);
    const bool noun_first = IsNoun();
    if (noun_first) AcceptCurrencyNoun();
    const std::uint64_t whole = ReadNumber();
    const bool cents_alone = !noun_first && IsNoun() && IsCentNoun(Present().text);
    const std::int64_t cents = cents_alone ? ReadCentsAlone(whole) : ReadRest(whole, noun_first);
    if (At(AmountToken::Kind::Mark)) ++next_;
    if (!At(AmountToken::Kind::End)) Refuse(u"está fuera de orden");
    return negative ? -cents : cents;
  }

 private:
  struct Group {
    std::uint64_t value = 0;
    NumeralForm ones = NumeralForm::Masculine;  // of a 1 at its end
    bool feminine = false;                      // of its hundreds
  };
  struct Block {
    std::uint64_t value = 0;
    Group last;             // the group next to what follows
    bool feminine = false;  // of any of its hundreds
    bool is_un_mil = false;
  };

  const AmountToken& Present() const { return tokens_[next_]; }
  bool At(AmountToken::Kind kind) const { return Present().kind == kind; }
  bool At(Kind kind) const { return At(AmountToken::Kind::Word) && Present().word.kind == kind; }

  bool Accept(Kind kind) {
    if (!At(kind)) return false;
    ++next_;
    return true;
  }

  [[noreturn]] void Refuse(TextView why) const { Refuse(next_, why); }

  [[noreturn]] void Refuse(std::size_t index, TextView why) const {
    const AmountToken& token = tokens_[index];
    Text message = u"El texto no es un monto: ";
    if (token.kind == AmountToken::Kind::End) {
      message += index == 0 ? u"está vacío" : u"termina antes de tiempo, después de ";
      if (index > 0) AppendPlace(message, index - 1);
    } else {
      AppendPlace(message, index);
      message += token.kind == AmountToken::Kind::Unknown ? u" no forma parte de un monto"
                                                          : u" " + Text(why);
    }
    RaiseInvalidArgument(u"LibMonto.LeerMonto", message);
  }

  /// «cien» (palabra 2, carácter 5)
  void AppendPlace(Text& message, std::size_t index) const {
    message += Quoted(tokens_[index].text) + u" (palabra ";
    AppendNumber(message, static_cast<std::int64_t>(index + 1));
    message += u", carácter ";
    AppendNumber(message, static_cast<std::int64_t>(tokens_[index].position + 1));
    message += u")";
  }

  bool IsNoun() const { return At(Kind::Other); }

  void AcceptNoun() {
    if (!IsNoun()) Refuse(u"está fuera de orden");
    while (IsNoun() || At(Kind::Of)) {
      if (ResemblesNumeral(Present().text)) Refuse(u"se parece a un numeral, pero no lo es");
      ++next_;
    }
    if (tokens_[next_ - 1].word.kind == Kind::Of) Refuse(next_ - 1, u"está fuera de orden");
  }

  void AcceptCurrencyNoun() {
    if (IsCentNoun(Present().text)) Refuse(u"no es una moneda");
    currency_ = Present().text;
    AcceptNoun();
  }

  // Numbers.

  Group ReadGroup() {
    Group group;
    if (At(Kind::Cien)) {
      ++next_;
      group.value = 100;
      return group;
    }
    const bool ciento = At(Kind::Hundreds) && Present().word.value == 100;
    if (At(Kind::Hundreds)) {
      group.feminine = Present().word.form == NumeralForm::Feminine;
      Add(group);
    }
    const std::size_t rest = next_;
    if (At(Kind::Unit) || At(Kind::Teen)) {
      Add(group);
    } else if (At(Kind::Tens)) {
      Add(group);
      // Else it is the "y" before a fraction.
      if (At(Kind::And) && IsUnit(next_ + 1)) {
        ++next_;
        Add(group);
      }
    }
    if (ciento && next_ == rest) Refuse(next_ - 1, u"pide otro numeral detrás");
    return group;
  }

  bool IsUnit(std::size_t index) const {
    return tokens_[index].kind == AmountToken::Kind::Word && tokens_[index].word.kind == Kind::Unit;
  }

  void Add(Group& group) {
    group.value += static_cast<std::uint64_t>(Present().word.value);
    group.ones = Present().word.form;
    ++next_;
  }

  Block ReadBlock() {
    Group group = ReadGroup();
    if (!At(Kind::Mil)) return {group.value, group, group.feminine, false};
    const bool explicit_one = group.value == 1;
    const bool una = explicit_one && group.ones == NumeralForm::Feminine;
    if (group.ones == NumeralForm::Alone || una) Refuse(next_ - 1, u"no va delante de «mil»");
    ++next_;
    const std::uint64_t thousands = group.value == 0 ? 1 : group.value;
    const Group units = ReadGroup();
    return {1000 * thousands + units.value, units, group.feminine || units.feminine,
            explicit_one && units.value == 0};
  }

  /// Adds a block with its scale word, if one is here, and reads the next one.
  void ReadScale(Kind kind, std::uint64_t scale, Block& block, std::uint64_t& total) {
    if (!At(kind)) return;
    const bool singular = Present().word.value == 1;
    // "un mil millón" is how MontoEscrito counts 1000 of them.
    const bool agrees = singular ? block.value == 1 || block.is_un_mil : block.value > 1;
    if (!agrees || block.feminine || block.last.ones != NumeralForm::Masculine)
      Refuse(u"no concuerda con lo que va delante");
    total += block.value * scale;
    ++next_;
    ends_in_scale_ = true;
    const std::size_t before = next_;
    block = ReadBlock();
    if (next_ != before) ends_in_scale_ = false;
  }

  std::uint64_t ReadNumber() {
    ends_in_scale_ = false;
    if (Accept(Kind::Zero)) return 0;
    const std::size_t begin = next_;
    Block block = ReadBlock();
    std::uint64_t total = 0;
    ReadScale(Kind::Billion, kMillion * kMillion, block, total);
    ReadScale(Kind::Million, kMillion, block, total);
    if (next_ == begin) Refuse(u"no es un numeral");
    return total + block.value;
  }

  // What follows the number.

  static std::int64_t Total(std::uint64_t whole, std::uint64_t cents) {
    constexpr std::uint64_t kMost = kMostCents;
    if (whole > kMost / 100 || 100 * whole + cents > kMost) Raise(Failure::Overflow);
    return static_cast<std::int64_t>(100 * whole + cents);
  }

  std::int64_t ReadCentsAlone(std::uint64_t cents) {
    if (cents > 99) Refuse(u"son más de 99");
    AcceptNoun();
    return static_cast<std::int64_t>(cents);
  }

  std::int64_t ReadRest(std::uint64_t whole, bool noun_seen) {
    if (!noun_seen) noun_seen = AcceptNounOfNumber();
    const bool with = Accept(Kind::With);
    if (with && !At(AmountToken::Kind::Fraction)) return Total(whole, ReadCentsInWords());
    if (!with && Accept(Kind::And) && !At(AmountToken::Kind::Fraction))
      Refuse(next_ - 1, u"está fuera de orden");
    if (!At(AmountToken::Kind::Fraction)) return Total(whole, 0);
    const auto cents = static_cast<std::uint64_t>(Present().cents);
    ++next_;
    if (!noun_seen && IsNoun()) AcceptCurrencyNoun();
    return Total(whole, cents);
  }

  /// The noun behind the number, if one is there.
  bool AcceptNounOfNumber() {
    const bool of = At(Kind::Of);
    if (!of && !IsNoun()) return false;
    if (of && !ends_in_scale_) Refuse(u"va solo detrás de millones exactos");
    if (!of && ends_in_scale_) Refuse(u"pide «de» delante");
    if (of) ++next_;
    AcceptCurrencyNoun();
    return true;
  }

  std::uint64_t ReadCentsInWords() {
    const std::size_t begin = next_;
    const std::uint64_t cents = ReadNumber();
    if (cents > 99) Refuse(begin, u"dice más de 99 centavos");
    if (IsNoun() && SameStem(Present().text, currency_)) Refuse(u"es la moneda, no sus centavos");
    AcceptNoun();
    return cents;
  }

  std::vector<AmountToken> tokens_;
  std::size_t next_ = 0;
  TextView currency_;           // the first word of its noun
  bool ends_in_scale_ = false;  // of the number read last
};

}  // namespace

std::int64_t ReadAmount(TextView text) { return AmountReader(text).Read(); }

}  // namespace tovalin
