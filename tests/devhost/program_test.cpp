#include <gtest/gtest.h>
#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

struct Outcome {
  int status;
  // Standard output and standard error, as they come.
  std::string output;
};

Outcome run(const std::string& arguments) {
  const std::string command = std::string(XLCALC) + " " + arguments + " 2>&1";
  FILE* pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) return {-1, "no process"};
  std::string output;
  std::array<char, 256> buffer = {};
  while (fgets(buffer.data(), buffer.size(), pipe) != nullptr) output += buffer.data();
  return {WEXITSTATUS(pclose(pipe)), output};
}

TEST(Program, AnswersWithOutputAndStatus) {
  const std::string script = testing::TempDir() + "/program_test.xlcalc";
  std::ofstream(script) << "$x = Fake_Add ( $n ; 1 )\n$x\nFake_Fail\nList ( 1 ; 2 )\n";
  const std::string failure = "xlcalc: Fake_Fail failed with code 42: made to fail: ß\n";
  const std::string plugin = std::string(" --plugin ") + FAKE_PLUGIN;
  struct Case {
    std::string arguments;
    int status;
    std::string output;
  };
  const Case kCases[] = {
      {"eval '1/4 & ¶ & $n' n=a=b" + plugin, 0, ".25\na=b\n"},
      {"eval '\"\"'" + plugin, 0, ""},
      {"eval '-$n * -.25' n=2 --strict" + plugin, 0, ".5\n"},
      {"eval '--(1)'" + plugin, 0, "1\n"},
      {"run /dev/null" + plugin, 0, ""},
      {"run /" + plugin, 2, "xlcalc: script \"/\" cannot be read\n"},
      {"eval '$n = 5' n=5" + plugin, 0, "1\n"},
      {"eval '1 +'" + plugin, 1, "xlcalc: line 1, column 4: a value is expected here\n"},
      {"eval Fake_Fail" + plugin, 0, failure + "?\n"},
      {"eval Fake_Fail --strict" + plugin, 1, failure},
      {"run " + script + " n=4" + plugin, 0, "5\n" + failure + "?\n1\n2\n"},
      {"run " + script + " n=4 --strict" + plugin, 1, "5\n" + failure},
      {"run /nowhere" + plugin, 2, "xlcalc: script \"/nowhere\" cannot be read\n"},
      {"functions count" + plugin, 0, "Fake_Count ( … )\n    Described.\n"},
      {"functions count --extn-version 55" + plugin, 0, "Fake_Count ( … )\n"},
      {"functions constant" + plugin, 0, ""},
      {plugin + " < " + script, 0, "Fake plug-in\n1\n" + failure + "?\n1\n2\n"},
      {"eval 1 --plugin /nowhere", 2, "xlcalc: plug-in \"/nowhere\": No such file or directory\n"},
  };
  for (const auto& [arguments, status, output] : kCases) {
    SCOPED_TRACE(arguments);
    const Outcome result = run(arguments);
    EXPECT_EQ(result.status, status);
    EXPECT_EQ(result.output, output);
  }
  for (const char* arguments :
       {"eval", "eval 1 n", "eval 1 =2", "eval 1 --nothing", "run", "nothing", "--nothing"}) {
    EXPECT_EQ(run(arguments).status, 2) << arguments;
  }
  std::filesystem::remove(script);
}

}  // namespace
