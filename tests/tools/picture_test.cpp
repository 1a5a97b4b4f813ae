// Pictures: they are complete, or they are not there.
#include <filesystem>

#include "tests/support/testing.h"
#include "tests/tools/run_zel.h"

namespace zel_test {
namespace {

const std::string kDescribe = "describe '" ZEL_TEST_DATA "/sunspots.asc'";
const std::string kSunspots = kDescribe + " --plot ";

class Picture : public ToolTest {
 protected:
  /// The picture that a command draws, which must be whole; nothing else is left behind.
  std::string drawn(const std::string& command, const std::string& name) const {
    const auto before = folder.count();
    const ZelRun run = runZel(command + " --plot " + name);
    EXPECT_EQ(0, run.status) << command << run.errors;
    EXPECT_EQ(before + 1, folder.count());
    const std::string bytes = bytesOf(name);
    if (name.ends_with(".png")) {
      EXPECT_GT(bytes.size(), 5000U);
      EXPECT_EQ("\x89PNG\r\n\x1a\n", bytes.substr(0, 8));
      EXPECT_EQ("IEND", bytes.substr(bytes.size() - 8, 4));
    } else {
      EXPECT_TRUE(bytes.starts_with("<?xml"));
      expectWords(bytes, {"</svg>"});
    }
    std::filesystem::remove(path(name));
    return bytes;
  }
};

TEST_F(Picture, PngAndSvg) {
  EXPECT_TRUE(runZel(kSunspots + "s.png").output.ends_with("\n  Picture: s.png\n"));
  std::filesystem::remove(path("s.png"));
  EXPECT_EQ(std::string("\0\0\x06\x40\0\0\x04\xb0", 8),
            drawn(kDescribe, "s.png").substr(16, 8));  // 1600 x 1200
  expectWords(drawn(kDescribe + " --json", "S.SVG"), {"upper quartile 68.95"});
}

TEST_F(Picture, AwkwardData) {
  std::string many;
  for (int i = 0; i < 50000; ++i) many += i % 1000 < 3 ? "NAN\n" : std::to_string(i % 777) + '\n';
  for (const std::string& values :
       {std::string("5\n"), std::string("NAN\n0.1\n0.1\n"), std::string("1e300\n-1e300\n"),
        std::string("1e-310\n3e-310\n"), std::string("1000000001\n1000000002\n"), many}) {
    write("x.asc", ascText(values));
    drawn("describe x.asc", "x.png");
  }
  // A line cannot show more than its stretches; the script must not grow with the data.
  EXPECT_LT(drawn("describe x.asc", "x.svg").size(), 200000U);
}

// Many variables, and some for which there is nothing to draw.
TEST_F(Picture, OfSeveralVariables) {
  std::string names = "const,none,one,huge";
  std::string rows[3] = {"5,,1,-1e308", "5,,,1.7e308", "5,,,0"};
  const auto grow = [&](int from, int to) {
    for (int i = from; i < to; ++i) {
      names += ",x" + std::to_string(i);
      for (int r = 0; r < 3; ++r) rows[r] += ',' + std::to_string((i + 1) * (r + 2) % 7);
    }
    write("x.csv", names + '\n' + rows[0] + '\n' + rows[1] + '\n' + rows[2] + '\n');
  };
  const auto expectTooMany = [&](const std::string& command, const std::string& numbers) {
    expectFailure(
        runZel(command + " x.csv --plot x.png"),
        "the picture x.png was not written: it has room for " + numbers + " (--column chooses)");
  };
  grow(0, 1);
  for (const std::string command :
       {"describe", "describe --column 1,2", "correlate --column 1,2", "correlate --column 3,4",
        "correlate --column 5,5,1", "correlate --column 4,5"}) {
    drawn(command + " x.csv", "x.png");
  }
  grow(1, 40);
  expectTooMany("describe", "40 variables, not 44");
  drawn("correlate x.csv", "x.png");
  grow(40, 97);
  expectTooMany("correlate", "100 variables, not 101");

  expectWords(drawn("correlate '" ZEL_TEST_DATA "/iris.csv'", "i.svg"),
              {"iris.csv", "n = 150", "Petal.Length", "−0.43", "0.96"});
}

// Categories with long names, without values, with values that cannot be drawn.
TEST_F(Picture, ByCategory) {
  write("x.csv",
        "k,x,big,none,one\n\"it's `touch a`, a long name\",1,1e308,,INF\nb,2,-1e308,,2\n"
        "b,3,1,,2\nc,4,,,\n,5,,,5\n");
  expectWords(drawn("describe x.csv --by k", "x.svg"),
              {"x.csv", "By k. Boxes", "n = 2", "none: nothing to draw", "it's `tou"});
  std::string many = "k,x\n";
  for (int i = 0; i < 82; ++i) many += std::to_string(i / 2) + ",1\n";
  write("x.csv", many);
  expectFailure(runZel("describe x.csv --by k --plot x.png"),
                "the picture x.png was not written: it has room for 40 categories, not 41");
}

// Texts of the file are shown, never run.
TEST_F(Picture, TextsAreNoCommands) {
  const std::string evil = "it's `touch a` '; system('touch b'); # {/Bold x}_y";
  const std::string name = "`touch c`$'\\n';!touch d";
  write("x.asc", evil + "\n2\n2\nFALSE TRUE FALSE\n\"" + name + "\" \"" + name + "\"\n1 2\n2 3\n");
  for (const char* command : {"describe --column 1", "describe", "correlate"}) {
    expectWords(drawn(std::string(command) + " x.asc", "x.svg"), {evil, name});
  }
}

TEST_F(Picture, FailuresLeaveNothing) {
  write("old.png", "the old picture");
  std::filesystem::create_directory(path("d.png"));
  std::filesystem::create_directory(path("fake"));
  std::filesystem::create_symlink("/dev/full", path("full.png"));
  std::filesystem::create_symlink("old.png", path("link.png"));
  write("none.asc", ascText("NAN\n"));
  const auto expectFailure = [&](const std::string& arguments, const std::string& before,
                                 const std::string& sentence) {
    zel_test::expectFailure(runZel(arguments, before), "the picture " + sentence);
    EXPECT_EQ("the old picture", bytesOf("old.png"));
    EXPECT_EQ(6, folder.count());
  };
  const std::string old = "old.png was not written: ";
  expectFailure(kSunspots + "x.gif", "", "x.gif must have a name that ends in .png or .svg");
  expectFailure(kSunspots + "none/x.png", "",
                "none/x.png was not written: No such file or directory");
  expectFailure(kSunspots + "d.png", "", "d.png was not written: Is a directory");
  expectFailure(kSunspots + "full.png", "", "full.png was not written: No space left on device");
  expectFailure(kSunspots + "old.png", "ulimit -f 8;", old + "File too large");
  expectFailure("correlate '" ZEL_TEST_DATA "/iris.csv' --plot full.png", "",
                "full.png was not written: No space left on device");
  expectFailure("describe old.png --plot link.png", "", "link.png would replace the data file");
  expectFailure("describe none.asc --plot old.png", "", old + "there are no values to draw");
  expectFailure(
      kSunspots + "old.png", "PATH=/nonexistent;",
      old + "the program gnuplot, which draws it, cannot be started (No such file or directory)");

  const auto fakeGnuplot = [&](const std::string& script) {
    write("fake/gnuplot", "#!/bin/sh\n" + script + '\n');
    std::filesystem::permissions(path("fake/gnuplot"), std::filesystem::perms::owner_all);
  };
  const std::string usingFake = "PATH=\"$PWD/fake:$PATH\";";
  fakeGnuplot("echo 'line 7: no such terminal' >&2; exit 3");
  expectFailure(kSunspots + "old.png", usingFake,
                old + "gnuplot ended with status 3 saying: line 7: no such terminal");
  fakeGnuplot("kill -9 $$");
  expectFailure(kSunspots + "old.png", usingFake,
                old + "gnuplot ended with status 137 without a message");
  fakeGnuplot("cat >/dev/null; printf '\\211PNG\\r\\n\\032\\n half'");
  expectFailure(kSunspots + "old.png", usingFake,
                old + "gnuplot ended with status 0 without a message");
}

}  // namespace
}  // namespace zel_test
