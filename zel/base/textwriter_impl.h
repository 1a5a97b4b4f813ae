/// @file
/// Text on its way to a stream, block by block.
#pragma once

#include <cstddef>
#include <ostream>
#include <string>

namespace zel::detail {

/// Base of the writers of text forms: they append to FText, and say where it may be sent on.
class TextWriter {
 public:
  explicit TextWriter(std::ostream& out) : FOut(out) {}

  /// Sends on what is left.
  void flush() {
    FOut << FText;
    FText.clear();
  }

 protected:
  /// Sends the text on once it fills a block.
  /// @return false if that failed, so that no more can be written
  bool flushIfLong() {
    if (FText.size() < kBlock) return true;
    flush();
    return FOut.good();
  }

  std::ostream& FOut;
  std::string FText;

 private:
  static constexpr std::size_t kBlock = std::size_t{1} << 16;
};

}  // namespace zel::detail
