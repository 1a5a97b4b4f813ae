/// @file
/// The option --column.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace tool {

/// Adds the option that chooses columns, for chooseColumns. Each use takes one word, so that it
/// leaves the file alone.
inline void addColumnOption(CLI::App& command, std::vector<std::string>& columns) {
  command
      .add_option("--column", columns,
                  "take only these columns, each by its name or its number in the file")
      ->allow_extra_args(false)
      ->option_text("NAME,...");
}

}  // namespace tool
