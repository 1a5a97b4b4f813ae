#include "zel/base/wholefile.h"

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#include <csignal>
#include <filesystem>
#include <thread>

#include "tests/support/testing.h"

namespace zel {
namespace {

namespace fs = std::filesystem;
using namespace zel_test;
using WholeFiles = InFolder;

/// No file may grow beyond this many bytes while the object lives: a disk that is full.
class FullDisk {
 public:
  explicit FullDisk(rlim_t bytes) : signal_(std::signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &before_);
    rlimit limit = before_;
    limit.rlim_cur = bytes;
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FullDisk() {
    setrlimit(RLIMIT_FSIZE, &before_);
    std::signal(SIGXFSZ, signal_);
  }

 private:
  rlimit before_{};
  void (*signal_)(int);
};

mode_t modeOf(const std::string& name) {
  return static_cast<mode_t>(fs::status(name).permissions());
}

TEST_F(WholeFiles, ReplacesTheTargetOnlyAtCommit) {
  const std::string name = path("a.txt");
  writeBytes(name, "old");
  WholeFileWriter first(name);
  WholeFileWriter second(name);
  ASSERT_TRUE(first.IsOpen());
  first.Stream() << "first" << std::flush;
  second.Stream() << "second" << std::flush;
  WholeFileWriter(name).Stream() << "abandoned";
  EXPECT_EQ(readBytes(name), "old");
  EXPECT_TRUE(second.Commit());
  EXPECT_EQ(readBytes(name), "second");
  EXPECT_TRUE(first.Commit() && !first.IsOpen() && !first.Error());
  EXPECT_FALSE(first.Stream() << "late");
  EXPECT_EQ(readBytes(name), "first");
  EXPECT_EQ(folder.count(), 1);
}

TEST_F(WholeFiles, KeepsBytesOfAnySize) {
  std::string expected;
  WholeFileWriter file(path("a"));
  // Pieces below, at and beyond the size of the buffer, bytes of every value.
  for (const std::size_t size : {1U, 65535U, 65536U, 65537U, 300000U, 7U}) {
    std::string piece(size, '\0');
    for (std::size_t i = 0; i < size; ++i) piece[i] = static_cast<char>((i * 7) & 0xFFU);
    expected += piece;
    file.Stream().write(piece.data(), static_cast<std::streamsize>(piece.size()));
  }
  for (int i = 0; i < 70000; ++i) file.Stream().put('\n');
  expected.append(70000, '\n');
  ASSERT_TRUE(file.Commit());
  EXPECT_EQ(bytesOf("a"), expected);
}

TEST_F(WholeFiles, KeepsPermissions) {
  const std::string name = path("a");
  writeBytes(name, "old");
  for (const mode_t mode : {0600U, 0644U, 0751U}) {
    chmod(name.c_str(), mode);
    WholeFileWriter file(name);
    ASSERT_TRUE(file.Commit());
    EXPECT_EQ(modeOf(name), mode);
  }
  const mode_t mask = umask(027);
  WholeFileWriter fresh(path("b"));
  EXPECT_TRUE(fresh.Commit());
  umask(mask);
  EXPECT_EQ(modeOf(path("b")), 0640U);
}

TEST_F(WholeFiles, FollowsSymbolicLinks) {
  fs::create_directory(path("sub"));
  write("sub/target", "old");
  fs::create_symlink("sub/target", path("one"));
  fs::create_symlink(path("one"), path("two"));
  fs::create_symlink("sub/missing", path("dangling"));
  for (const char* link : {"two", "dangling"}) {
    WholeFileWriter file(path(link));
    file.Stream() << link;
    ASSERT_TRUE(file.Commit()) << file.Error().message();
    EXPECT_TRUE(fs::is_symlink(path(link)));
  }
  EXPECT_TRUE(fs::is_symlink(path("one")));
  EXPECT_EQ(bytesOf("sub/target"), "two");
  EXPECT_EQ(bytesOf("sub/missing"), "dangling");
}

TEST_F(WholeFiles, LeavesTheOldFileWhenTheDiskIsFull) {
  const std::string name = path("a");
  writeBytes(name, "old");
  for (const std::size_t size : {20000U, 200000U}) {  // noticed at the end, and while writing
    WholeFileWriter file(name);
    {
      const FullDisk full(10000);
      file.Stream() << std::string(size, 'x');
      EXPECT_FALSE(file.Commit());
    }
    EXPECT_EQ(file.Error(), std::errc::file_too_large);
    EXPECT_FALSE(file.Commit());
    EXPECT_EQ(readBytes(name), "old");
  }
  EXPECT_EQ(folder.count(), 1);
}

TEST_F(WholeFiles, WritesDevicesAndPipesDirectly) {
  if (FileExists("/dev/full")) {
    WholeFileWriter full("/dev/full");
    ASSERT_TRUE(full.IsOpen());
    full.Stream() << "x";
    EXPECT_FALSE(full.Commit());
    EXPECT_EQ(full.Error(), std::errc::no_space_on_device);
    EXPECT_TRUE(fs::is_character_file("/dev/full"));
  }
  const std::string name = path("pipe");
  ASSERT_EQ(mkfifo(name.c_str(), 0600), 0);
  std::string received;
  std::thread reader([&] { received = readBytes(name); });
  {
    WholeFileWriter pipe(name);
    pipe.Stream() << "through";
    EXPECT_TRUE(pipe.Commit());
  }
  reader.join();
  EXPECT_EQ(received, "through");
  EXPECT_TRUE(fs::is_fifo(name));
}

TEST_F(WholeFiles, TellsWhyItCannotOpen) {
  const auto error = [](const std::string& name) {
    WholeFileWriter file(name);
    EXPECT_FALSE(file.IsOpen());
    EXPECT_FALSE(file.Stream() << "x");
    EXPECT_FALSE(file.Commit());
    return file.Error();
  };
  fs::create_symlink("loop", path("loop"));
  EXPECT_EQ(error(path("loop")), std::errc::too_many_symbolic_link_levels);
  EXPECT_EQ(error(path("none/a")), std::errc::no_such_file_or_directory);
  EXPECT_EQ(error(path(".")), std::errc::is_a_directory);
  EXPECT_EQ(error(""), std::errc::no_such_file_or_directory);
  EXPECT_EQ(error(std::string("a\0b", 3)), std::errc::invalid_argument);
  if (geteuid() != 0) {  // everything is permitted to the superuser
    write("fixed", "old");
    chmod(path("fixed").c_str(), 0444);
    EXPECT_EQ(error(path("fixed")), std::errc::permission_denied);
  }
}

TEST_F(WholeFiles, AreReadOrAReasonGiven) {
  const std::string bytes = std::string(100000, 'x') + std::string("\0\r\n", 3);
  write("a", bytes);
  EXPECT_EQ(ReadWholeFile(path("a")), bytes);
  std::error_code error;
  EXPECT_FALSE(ReadWholeFile(path("none"), error));
  EXPECT_EQ(error, std::errc::no_such_file_or_directory);
  EXPECT_FALSE(ReadWholeFile(path("."), error));
  EXPECT_EQ(error, std::errc::is_a_directory);
  std::ifstream f;
  EXPECT_FALSE(OpenForReading(f, path(".")) || f.good() || FileExists(path(".")));
  EXPECT_FALSE(FileExists(path(std::string_view("a\0", 2))));
  EXPECT_TRUE(FileExists(path("a")));
}

}  // namespace
}  // namespace zel
