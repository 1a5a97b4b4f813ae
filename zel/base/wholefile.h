/// @file
/// Writing and reading of whole files.
#pragma once

#include <fstream>
#include <istream>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <system_error>

#include "zel/base/api.h"

namespace zel {

/// Writes a file that replaces its target only once it is complete.
///
/// The text goes to a temporary file in the folder of the target, which Commit renames to it. A
/// symbolic link stays one: the file that it points to is replaced. An existing file keeps its
/// permissions, and where the system allows its owner and group. A target that is not a regular
/// file (device, pipe) is written directly. Whatever fails, the old file is untouched and the
/// temporary is removed; a write error is remembered and makes Commit fail.
///
///     WholeFileWriter file("result.txt");
///     file.Stream() << "x = " << 1;
///     if (!file.Commit()) std::cerr << file.Error().message();
class ZEL_API WholeFileWriter {
 public:
  /// Creates the temporary file. IsOpen and Error tell whether it worked: the folder must exist and
  /// be writable, an existing target must be writable and not a folder.
  explicit WholeFileWriter(std::string_view FileName);
  /// Without a successful Commit before: removes the temporary file, the target stays as it is.
  ~WholeFileWriter();
  WholeFileWriter(const WholeFileWriter&) = delete;
  WholeFileWriter& operator=(const WholeFileWriter&) = delete;

  /// True from a successful construction to Commit.
  [[nodiscard]] bool IsOpen() const;
  /// Where to write; a stream in a failed state if the file is not open.
  [[nodiscard]] std::ostream& Stream();
  /// Completes the file and puts it in place of the target.
  /// @return false if anything failed since the construction
  bool Commit();
  /// The first error; empty if there was none.
  [[nodiscard]] std::error_code Error() const;

 private:
  struct Impl;
  std::unique_ptr<Impl> FImpl;
};

/// True if the name denotes something that is not a folder.
[[nodiscard]] ZEL_API bool FileExists(std::string_view FileName);

/// Opens a file for reading, bytes as they are. A folder is refused.
/// @return true if it is open; the stream is in a failed state otherwise
ZEL_API bool OpenForReading(std::ifstream& f, std::string_view FileName);

/// The whole content of a file; nothing, with the reason in Error, if it cannot be read to its end.
[[nodiscard]] ZEL_API std::optional<std::string> ReadWholeFile(std::string_view FileName,
                                                               std::error_code& Error);
[[nodiscard]] ZEL_API std::optional<std::string> ReadWholeFile(std::string_view FileName);

/// What is left of a stream, which is at its end then; nothing if it cannot be read.
[[nodiscard]] ZEL_API std::optional<std::string> ReadWholeStream(std::istream& Stream);

}  // namespace zel
