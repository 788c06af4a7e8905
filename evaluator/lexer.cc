#include "evaluator/lexer.h"

#include <algorithm>
#include <utility>

#include "tovalin/convert.h"

namespace tovalin {
namespace {

constexpr char16_t kQuote = u'"';

bool IsLetter(char16_t c) { return FoldCase(c) >= u'a' && FoldCase(c) <= u'z'; }

// Word operators are searched with a blank on each side, so that a name that
// contains their letters is not split.
bool IsWord(TextView literal) { return IsLetter(literal.front()); }

std::optional<std::int32_t> PriorityOf(const Campo& record) {
  try {
    return ToLong(record.Value());
  } catch (const Error&) {
    return std::nullopt;
  }
}

TokenKind SeparatorKind(char16_t c) {
  return c == u'(' ? TokenKind::Open : c == u')' ? TokenKind::Close : TokenKind::Comma;
}

}  // namespace

Lexer::Element Lexer::OperatorElement(Campo& record) {
  Element element{.kind = TokenKind::Operator};
  const TextView literal = Trim(record.Name());
  element.operator_code = CodeOf(literal);
  element.is_word = !literal.empty() && IsWord(literal);
  element.priority = PriorityOf(record);
  element.record = &record;
  return element;
}

void Lexer::SetElement(Token& token, const Element& element) {
  token.kind = element.kind;
  token.operator_code = element.operator_code;
  token.is_opener = element.is_opener;
  token.priority = element.priority;
  token.record = element.record;
  token.builtin = element.builtin;
}

void Lexer::Refresh() {
  const std::uint64_t version = VocabularyVersion(symbols_);
  if (version_ == version) return;
  version_.reset();
  elements_.clear();
  words_.clear();
  word_lengths_ = 0;
  trie_.Clear();
  // Operators win over functions of the same spelling.
  for (const Ref<Campo>& record : symbols_.operators->List().Items())
    AddOperator(OperatorElement(*record));
  for (TextView separators = kSeparators; !separators.empty(); separators.remove_prefix(1))
    Add(separators.substr(0, 1), {.kind = SeparatorKind(separators[0])});
  for (const Ref<Campo>& record : symbols_.functions->List().Items())
    if (const TextView name = Trim(record->Name()); !name.empty())
      Add(name, {.kind = TokenKind::Function,
                 .is_opener = name.ends_with(u'('),
                 .record = record.get(),
                 .builtin = FunctionOf(name)});
  trie_.Finish();
  version_ = version;
}

void Lexer::AddOperator(const Element& element) {
  const TextView literal = Trim(element.record->Name());
  if (literal.empty()) return;
  if (!element.is_word) return Add(literal, element);
  words_.push_back(element);
  word_lengths_ |= LengthBit(element.record->Name());
  Add(Text(u" ").append(literal).append(u" "), element);
}

const Lexer::Element* Lexer::FindWord(TextView name) const {
  if ((word_lengths_ & LengthBit(name)) == 0) return nullptr;
  for (const Element& word : words_)
    if (EqualFolded(word.record->Name(), name)) return &word;
  return nullptr;
}

// One pass over a formula.
class Lexer::Run {
 public:
  Run(TokenList& list, const Lexer& lexer)
      : list_(list), text_(list.text), lexer_(lexer), delimiter_(lexer.symbols_.string_delimiter) {}

  void Split() {
    std::tie(begin_, end_) = Trimmed(0, end_);
    text_ = text_.substr(0, end_);
    for (position_ = begin_; position_ < end_; SkipBlanks()) {
      if (text_[position_] == kQuote) {
        if (!QuotedLiteral()) return;
      } else if (!delimiter_.empty() && text_.substr(position_).starts_with(delimiter_)) {
        DelimitedLiteral();
      } else {
        OperandAndElement();
      }
    }
  }

 private:
  void SkipBlanks() {
    while (position_ < end_ && text_[position_] == u' ') ++position_;
  }

  Token& Add(TokenKind kind, std::size_t start, std::size_t end) {
    Token& token = list_.tokens.emplace_back();
    token.kind = kind;
    token.start = static_cast<std::uint32_t>(start);
    token.length = static_cast<std::uint32_t>(end - start);
    return token;
  }

  bool QuotedLiteral() {
    const std::size_t close = text_.find(kQuote, position_ + 1);
    if (close == TextView::npos) {
      list_.faults.push_back({FaultCode::UnclosedLiteral, static_cast<std::uint32_t>(position_),
                              static_cast<std::uint32_t>(end_ - position_),
                              u"Fin de cadena no encontrado"});
      return false;
    }
    Add(TokenKind::Literal, position_ + 1, close);
    position_ = close + 1;
    return true;
  }

  // Blanks at the ends of such a literal are deliberately dropped; formulas keep
  // their blanks in double quotes.
  void DelimitedLiteral() {
    const std::size_t open = position_ + delimiter_.size();
    const std::size_t close = text_.find(delimiter_, open);
    if (close == TextView::npos) {
      AddOperand(position_, end_);
      position_ = end_;
      return;
    }
    const auto [first, last] = Trimmed(open, close);
    Add(TokenKind::Literal, first, last);
    position_ = close + delimiter_.size();
  }

  void OperandAndElement() {
    // A word operator may begin with the blank that was skipped last.
    const bool blank_before = position_ > begin_ && text_[position_ - 1] == u' ';
    const Trie::Match match = lexer_.trie_.Find(text_, blank_before ? position_ - 1 : position_);
    if (!match) {
      AddOperand(position_, end_);
      position_ = end_;
      return;
    }
    if (match.start > position_) AddOperand(position_, match.start);
    const Element& element = lexer_.elements_[match.pattern];
    const std::size_t blank = element.is_word ? 1 : 0;
    const std::size_t end = match.start + match.length - blank;
    SetElement(Add(element.kind, match.start + blank, end), element);
    position_ = end;  // the blank behind a word may stand before the next one
  }

  void AddOperand(std::size_t start, std::size_t end) {
    const auto [first, last] = Trimmed(start, end);
    if (first == last) return;
    const TextView operand = text_.substr(first, last - first);
    Token& token = Add(TokenKind::Name, first, last);
    if (ReadNumberToken(operand, token.number))
      token.kind = TokenKind::Number;
    else if (const Element* word = lexer_.FindWord(operand))
      SetElement(token, *word);
  }

  std::pair<std::size_t, std::size_t> Trimmed(std::size_t start, std::size_t end) const {
    while (start < end && text_[start] == u' ') ++start;
    while (start < end && text_[end - 1] == u' ') --end;
    return {start, end};
  }

  TokenList& list_;
  TextView text_;
  const Lexer& lexer_;
  TextView delimiter_;
  // The formula without the blanks around it.
  std::size_t begin_ = 0;
  std::size_t end_ = text_.size();
  std::size_t position_ = 0;
};

void Lexer::Split(TokenList& list) {
  Refresh();
  list.tokens.reserve(list.text.size() / 4 + 2);
  Run(list, *this).Split();
}

TokenList Lexer::Tokens(Text formula) {
  TokenList list;
  list.text = std::move(formula);
  StripCarriageReturns(list.text);
  Split(list);
  return list;
}

void Lexer::AppendHostToken(TokenList& list, const Variant& value) {
  Refresh();
  Token token;
  token.start = static_cast<std::uint32_t>(list.text.size());
  if (!value.Is(Subtype::String)) {
    token.kind = TokenKind::Value;
    token.value = &value;
    list.tokens.push_back(token);
    return;
  }
  const TextView text = value.AsText();
  const TextView word = Trim(text);
  token.length = static_cast<std::uint32_t>(text.size());
  list.text.append(text).push_back(u' ');
  const Trie::Match match = trie_.Find(word, 0);
  if (ReadNumberToken(word, token.number)) {
    token.kind = TokenKind::Number;
  } else if (Campo* record = symbols_.operators->Find(word)) {
    SetElement(token, OperatorElement(*record));
  } else if (match && match.length == word.size()) {
    SetElement(token, elements_[match.pattern]);
  } else if (word.size() > 1 && word.back() == u'(') {
    token.kind = TokenKind::Function;
    token.is_opener = true;
  } else if (text.size() > 1 && text.front() == kQuote && text.back() == kQuote) {
    token.kind = TokenKind::Literal;
    token.start += 1;
    token.length -= 2;
  }
  list.tokens.push_back(token);
}

void TokenList::AppendSpelling(Text& target, const Token& token) const {
  if (token.kind == TokenKind::Literal)
    target.append(1, kQuote).append(Span(token)).append(1, kQuote);
  else if (token.record && token.kind != TokenKind::Name)
    target.append(Trim(token.record->Name()));
  else
    target.append(Span(token));
}

Text TokenList::Spelling(const Token& token) const {
  Text spelling;
  AppendSpelling(spelling, token);
  return spelling;
}

TextView TokenList::NameBehindAt(const Token& token) const {
  TextView span = Span(token);
  if (token.kind == TokenKind::Name && span.size() > 1 && (span[0] == u'"' || span[0] == u'\'')) {
    if (span.back() == span[0]) span.remove_suffix(1);
    span.remove_prefix(1);
  }
  return span.size() > 1 && span[0] == u'@' ? span.substr(1) : TextView();
}

TextView TokenList::NameOf(const Token& operand) const {
  const TextView behind_at = NameBehindAt(operand);
  return behind_at.empty() ? Span(operand) : behind_at;
}

// Most operands are names: a letter in front settles that without reading on.
bool ReadNumberToken(TextView token, double& number) {
  if (token.empty()) return false;
  const char16_t lower = token.front() | 0x20;
  if ((lower >= u'a' && lower <= u'z') || token.front() == u'_') return false;
  const std::optional<double> read = ReadNumber(token);
  if (read) number = *read;
  return read.has_value();
}

void StripCarriageReturns(Text& formula) {
  std::size_t kept = formula.find(u'\r');
  if (kept == Text::npos) return;
  for (std::size_t i = kept; i < formula.size(); ++i) {
    if (formula[i] != u'\r')
      formula[kept++] = formula[i];
    else if (i + 1 < formula.size() && formula[i + 1] == u'\n')
      ++i;
  }
  formula.resize(kept);
}

Text WithoutAtSigns(TextView formula, const std::vector<std::uint32_t>& at_signs) {
  Text replaced;
  replaced.reserve(formula.size());
  auto at_sign = at_signs.begin();
  std::uint32_t place = 0;  // without carriage returns
  for (std::size_t i = 0; i < formula.size(); ++i) {
    if (formula[i] == u'\r') {
      replaced.push_back(u'\r');
      if (formula.substr(i + 1).starts_with(u'\n')) replaced.push_back(formula[++i]);
    } else if (at_sign != at_signs.end() && *at_sign == place++) {
      ++at_sign;
    } else {
      replaced.push_back(formula[i]);
    }
  }
  return replaced;
}

}  // namespace tovalin
