/// @file
/// A strict little JSON reader for tests.
#pragma once

#include "tests/support/testing.h"

namespace zel_test {

/// The leaves of a JSON text by path, such as "percentiles/0/value": strings without their escapes
/// for quotation marks and backslashes, everything else as written. Throws for malformed text.
class JsonFields {
 public:
  explicit JsonFields(std::string_view text) : rest_(text) {
    value("");
    demand(next() == '\0' && rest_.empty());
  }
  [[nodiscard]] std::string text(const std::string& path) const {
    const auto found = leaves_.find(path);
    return found == leaves_.end() ? "(absent)" : found->second;
  }
  [[nodiscard]] double number(const std::string& path) const {
    return std::strtod(text(path).c_str(), nullptr);
  }

 private:
  void demand(bool isRight) const {
    if (!isRight)
      throw std::runtime_error("JSON wrong before: " + std::string(rest_.substr(0, 40)));
  }
  /// What follows the blanks.
  char next() {
    rest_.remove_prefix(std::min(rest_.find_first_not_of(" \n"), rest_.size()));
    return rest_.empty() ? '\0' : rest_[0];
  }
  bool take(char c) {
    if (next() != c) return false;
    rest_.remove_prefix(1);
    return true;
  }
  std::string string() {
    demand(take('"'));
    std::string result;
    for (; !rest_.empty() && rest_[0] != '"'; rest_.remove_prefix(1)) {
      demand(static_cast<unsigned char>(rest_[0]) >= 0x20);
      if (rest_[0] == '\\') {
        demand(rest_.size() > 1 && std::string_view("\"\\u").find(rest_[1]) < 3);
        if (rest_[1] == 'u') result += '\\';
        rest_.remove_prefix(1);
      }
      result += rest_[0];
    }
    demand(take('"'));
    return result;
  }
  void members(const std::string& path, char end, bool named) {
    if (take(end)) return;
    int index = 0;
    do {
      std::string key = std::to_string(index++);
      if (named) {
        key = string();
        demand(take(':'));
      }
      value(path.empty() ? key : path + '/' + key);
    } while (take(','));
    demand(take(end));
  }
  void value(const std::string& path) {
    if (take('{')) return members(path, '}', true);
    if (take('[')) return members(path, ']', false);
    if (next() == '"') {
      leaves_[path] = string();
      return;
    }
    const std::string word(rest_.substr(0, rest_.find_first_of(",]}\n")));
    char* end = nullptr;
    std::strtod(word.c_str(), &end);
    const bool digits = !word.empty() && (word[0] == '-' || std::isdigit(word[0])) && *end == '\0';
    demand(word == "null" || digits);
    leaves_[path] = word;
    rest_.remove_prefix(word.size());
  }

  std::string_view rest_;
  std::map<std::string, std::string> leaves_;
};

/// Compares with "path value path value ...": numbers to a relative tolerance, other words exactly.
inline void expectFields(const JsonFields& json, const std::string& expected,
                         double tolerance = 0) {
  std::istringstream fields(expected);
  for (std::string path, value; fields >> path >> value;) {
    char* end = nullptr;
    const double number = std::strtod(value.c_str(), &end);
    if (*end != '\0' || json.text(path) == "null") {
      EXPECT_EQ(value, json.text(path)) << path;
    } else {
      EXPECT_NEAR(number, json.number(path), tolerance * std::abs(number))
          << path << ' ' << json.text(path);
    }
  }
}

}  // namespace zel_test
