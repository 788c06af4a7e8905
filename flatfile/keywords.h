#pragma once

#include <algorithm>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "flatfile/layout.h"

namespace tovalin::flat {

/// The word that a layout file has for one value of an enumeration.
template <class Value>
struct Word {
  std::string_view word;
  Value value;
};

inline constexpr Word<FieldType> kTypeWords[] = {
    {"string", FieldType::Text},       {"integer", FieldType::Whole}, {"number", FieldType::Number},
    {"boolean", FieldType::Logical},   {"date", FieldType::Date},     {"time", FieldType::Time},
    {"datetime", FieldType::DateTime},
};
inline constexpr Word<Alignment> kAlignmentWords[] = {
    {"izquierda", Alignment::Left},
    {"derecha", Alignment::Right},
};
inline constexpr Word<Sign> kSignWords[] = {
    {"adelante", Sign::Front},
    {"atras", Sign::Behind},
    {"zona", Sign::Zone},
    {"ninguno", Sign::None},
};
inline constexpr Word<Misfit> kMisfitWords[] = {
    {"rechazar", Misfit::Refuse},
    {"cortarDerecha", Misfit::CutRight},
    {"cortarIzquierda", Misfit::CutLeft},
    {"marcar", Misfit::Mark},
};
inline constexpr Word<LetterCase> kCaseWords[] = {
    {"mayusculas", LetterCase::Upper},
    {"minusculas", LetterCase::Lower},
};
inline constexpr Word<TotalKind> kTotalWords[] = {
    {"cuenta", TotalKind::Count},
    {"registros", TotalKind::Lines},
    {"suma", TotalKind::Sum},
    {"control", TotalKind::Control},
};
inline constexpr Word<Role> kRoleWords[] = {
    {"inicio", Role::First},
    {"detalle", Role::Detail},
    {"fin", Role::Last},
};
inline constexpr Word<QuoteUse> kQuoteWords[] = {
    {"necesarias", QuoteUse::Needed},
    {"textos", QuoteUse::Texts},
    {"siempre", QuoteUse::Always},
    {"nunca", QuoteUse::Never},
};
inline constexpr Word<LineEnd> kLineEndWords[] = {
    {"crlf", LineEnd::CrLf},
    {"lf", LineEnd::Lf},
    {"ninguno", LineEnd::None},
};
inline constexpr Word<Encoding> kEncodingWords[] = {
    {"1252", Encoding::CodePage1252},  {"8859-1", Encoding::Latin1}, {"utf-8", Encoding::Utf8},
    {"utf-8-bom", Encoding::Utf8Mark}, {"ascii", Encoding::Ascii},
};
inline constexpr Word<Unencodable> kUnencodableWords[] = {
    {"rechazar", Unencodable::Refuse},
    {"reemplazar", Unencodable::Replace},
    {"sinAcento", Unencodable::Unaccent},
};
inline constexpr Word<bool> kFormatWords[] = {
    {"fijo", true},
    {"delimitado", false},
};

template <class Value>
std::optional<Value> FindWord(std::span<const Word<Value>> words, std::string_view word) {
  const auto found = std::ranges::find(words, word, &Word<Value>::word);
  if (found == words.end()) return std::nullopt;
  return found->value;
}

/// The word of a value, empty for one that layouts do not write.
template <class Value>
std::string_view WordOf(std::span<const Word<Value>> words, Value value) {
  const auto found = std::ranges::find(words, value, &Word<Value>::value);
  return found == words.end() ? std::string_view() : found->word;
}

/// All words, for a message: "a, b, c".
template <class Value>
std::string ListOf(std::span<const Word<Value>> words) {
  std::string list;
  for (const Word<Value>& row : words) {
    if (!list.empty()) list += ", ";
    list += row.word;
  }
  return list;
}

}  // namespace tovalin::flat
