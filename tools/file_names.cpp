#include "file_names.h"

#include <filesystem>
#include <system_error>

#include "failure.h"
#include "utf8.h"
#include "zel/base/stringhelpers.h"

namespace tool {

bool hasExtension(std::string_view name, std::string_view extension) {
  return name.size() > extension.size() &&
         zel::EqualIgnoringCase(name.substr(name.size() - extension.size()), extension);
}

void requireDifferentFiles(const std::string& data, const std::string& result,
                           const std::string& what) {
  std::error_code ignored;
  if (std::filesystem::equivalent(data, result, ignored)) {
    throw Failure("the " + what + ' ' + printable(result) + " would replace the data file");
  }
}

}  // namespace tool
