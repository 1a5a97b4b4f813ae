/// @file
/// Writing JSON.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tool {

/// Builds one indented JSON text (RFC 8259). The caller opens and closes what it nests.
class JsonWriter {
 public:
  void beginObject(std::string_view key = {}) { begin(key, '{'); }
  void endObject() { end('}'); }
  void beginArray(std::string_view key = {}) { begin(key, '['); }
  void endArray() { end(']'); }
  /// A text; bytes that are not UTF-8 become U+FFFD.
  void add(std::string_view key, std::string_view value);
  void add(std::string_view key, const char* value) { add(key, std::string_view(value)); }
  void add(std::string_view key, int value);
  /// Enough digits to read the same double back; null if it is not finite.
  void add(std::string_view key, double value);
  void add(std::string_view key, std::optional<double> value);
  /// An array of values, each as add writes it.
  template <class Values>
  void addAll(std::string_view key, const Values& values) {
    beginArray(key);
    for (const auto& value : values) add("", value);
    endArray();
  }
  void addNull(std::string_view key) { item(key, "null"); }
  /// The text, complete once everything is closed.
  [[nodiscard]] std::string text() const { return text_ + '\n'; }

 private:
  void begin(std::string_view key, char bracket);
  void end(char bracket);
  void item(std::string_view key, std::string_view value);
  void newLine();

  std::string text_;
  int depth_ = 0;
  bool first_ = true;  // of the innermost object or array
};

}  // namespace tool
