#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

namespace tovalin {

/// Reads an amount in words back to its number, strictly:
///
///   amount = [block ("billón" | "billones")] [block ("millón" | "millones")] [block]
///   block  = group "mil" [group] | group
///   group  = "cien" | [hundreds] [below 30 | tens ["y" unit]]
///
/// The scale word is the singular one when the block's groups add up to 1.
class AmountReader {
 public:
  static std::optional<std::int64_t> Read(const std::string& utf8) {
    return AmountReader(utf8).Amount();
  }

 private:
  struct Block {
    std::int64_t value = 0;
    std::int64_t group_sum = 0;
  };

  explicit AmountReader(const std::string& utf8) {
    std::istringstream words(utf8);
    for (std::string word; words >> word;) words_.push_back(word);
  }

  std::optional<std::int64_t> Amount() {
    std::int64_t total = 0;
    Block block = ReadBlock();
    if (TakeScale(block, "billón", "billones")) {
      total += block.value * 1'000'000'000'000;
      block = ReadBlock();
    }
    if (TakeScale(block, "millón", "millones")) {
      total += block.value * 1'000'000;
      block = ReadBlock();
    }
    if (failed_ || next_ != words_.size()) return std::nullopt;
    return total + block.value;
  }

  Block ReadBlock() {
    const std::int64_t group = ReadGroup();
    if (group == 0 || !Take("mil")) return {group, group};
    const std::int64_t lower = ReadGroup();
    return {1000 * group + lower, group + lower};
  }

  std::int64_t ReadGroup() {
    static const std::map<std::string, int> kHundreds = {
        {"ciento", 100},        {"doscientos", 200},  {"trescientos", 300},
        {"cuatrocientos", 400}, {"quinientos", 500},  {"seiscientos", 600},
        {"setecientos", 700},   {"ochocientos", 800}, {"novecientos", 900}};
    static const std::map<std::string, int> kTens = {
        {"treinta", 30}, {"cuarenta", 40}, {"cincuenta", 50}, {"sesenta", 60},
        {"setenta", 70}, {"ochenta", 80},  {"noventa", 90}};
    static const std::map<std::string, int> kBelow30 = {
        {"un", 1},           {"dos", 2},         {"tres", 3},         {"cuatro", 4},
        {"cinco", 5},        {"seis", 6},        {"siete", 7},        {"ocho", 8},
        {"nueve", 9},        {"diez", 10},       {"once", 11},        {"doce", 12},
        {"trece", 13},       {"catorce", 14},    {"quince", 15},      {"dieciseis", 16},
        {"diecisiete", 17},  {"dieciocho", 18},  {"diecinueve", 19},  {"veinte", 20},
        {"veintiun", 21},    {"veintidos", 22},  {"veintitres", 23},  {"veinticuatro", 24},
        {"veinticinco", 25}, {"veintiseis", 26}, {"veintisiete", 27}, {"veintiocho", 28},
        {"veintinueve", 29}};
    if (Take("cien")) return 100;
    const int hundreds = TakeOneOf(kHundreds);
    int rest = TakeOneOf(kTens);
    if (rest == 0) {
      rest = TakeOneOf(kBelow30);
    } else if (Take("y")) {
      const int unit = TakeOneOf(kBelow30);
      if (unit < 1 || unit > 9) failed_ = true;
      rest += unit;
    }
    if (hundreds == 100 && rest == 0) failed_ = true;
    return hundreds + rest;
  }

  bool TakeScale(const Block& block, const std::string& singular, const std::string& plural) {
    const bool one = Take(singular);
    if (!one && !Take(plural)) return false;
    if (block.value == 0 || one != (block.group_sum == 1)) failed_ = true;
    return true;
  }

  bool Take(const std::string& word) {
    if (next_ == words_.size() || words_[next_] != word) return false;
    ++next_;
    return true;
  }

  /// The value of the next word, or 0 when it is not in the list.
  int TakeOneOf(const std::map<std::string, int>& words) {
    if (next_ == words_.size()) return 0;
    const auto found = words.find(words_[next_]);
    if (found == words.end()) return 0;
    ++next_;
    return found->second;
  }

  std::vector<std::string> words_;
  std::size_t next_ = 0;
  bool failed_ = false;
};

}  // namespace tovalin
