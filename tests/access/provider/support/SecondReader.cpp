#include <gtest/gtest.h>
#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <sstream>

#include "access/provider/support/Inspection.h"

namespace tavi::access::test {

namespace {

std::string OutputOf(const std::string& command) {
  std::FILE* pipe = popen((command + " 2>&1").c_str(), "r");
  if (pipe == nullptr) return {};
  std::string output;
  std::array<char, 4096> buffer{};
  for (std::size_t count = 0; (count = std::fread(buffer.data(), 1, buffer.size(), pipe)) > 0;)
    output.append(buffer.data(), count);
  EXPECT_EQ(pclose(pipe), 0) << command << "\n" << output;
  return output;
}

}  // namespace

bool AnotherReaderIsThere() {
  std::FILE* pipe = popen("command -v mdb-tables >/dev/null", "r");
  return pipe != nullptr && pclose(pipe) == 0;
}

PrintedRows PrintTablesByAnother(const std::string& path) {
  PrintedRows tables;
  std::istringstream names(OutputOf("mdb-tables -1 '" + path + "'"));
  for (std::string name; std::getline(names, name);) {
    if (name.empty()) continue;
    auto& rows = tables[name];
    std::istringstream lines(OutputOf("mdb-export -H '" + path + "' '" + name + "'"));
    for (std::string line; std::getline(lines, line);) rows.insert(Abridged(line));
  }
  return tables;
}

}  // namespace tavi::access::test
