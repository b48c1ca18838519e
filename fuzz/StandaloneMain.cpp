// Runs a fuzz target without libFuzzer: on each file of a folder, then on random changes of them, always the same ones
// for a seed. Arguments: the folder, the number of changed inputs. An input that fails is left in the working folder.
#include <algorithm>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

#include "access/file/support/LongRun.h"
#include "access/file/support/Mutation.h"
#include "fuzz/Target.h"

namespace {

using Bytes = std::vector<std::uint8_t>;
using tavi::access::test::Random;

std::vector<Bytes> ReadFolder(const std::filesystem::path& folder) {
  std::vector<std::filesystem::path> paths;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) paths.push_back(entry.path());
  std::sort(paths.begin(), paths.end());
  std::vector<Bytes> inputs;
  for (const auto& path : paths) {
    std::ifstream file(path, std::ios::binary);
    inputs.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
  }
  return inputs;
}

bool Passes(const Bytes& input, const std::string& name) {
  try {
    LLVMFuzzerTestOneInput(input.data(), input.size());
    return true;
  } catch (const std::exception& exception) {
    std::cerr << name << ": " << exception.what() << "\n";
  }
  std::ofstream(name, std::ios::binary)
      .write(reinterpret_cast<const char*>(input.data()), static_cast<std::streamsize>(input.size()));
  return false;
}

int Run(const std::string& folder, std::size_t changed, const std::string& program) {
  const std::vector<Bytes> corpus = ReadFolder(folder);
  if (corpus.empty()) {
    std::cerr << "There are no inputs in " << folder << ".\n";
    return 1;
  }
  for (std::size_t i = 0; i < corpus.size(); ++i) {
    if (!Passes(corpus[i], program + "-failing-" + std::to_string(i))) return 1;
  }
  Random random(tavi::access::test::SeedOr(1));
  for (std::size_t i = 0; i < changed; ++i) {
    Bytes input = corpus[random.Below(corpus.size())];
    tavi::access::test::Mutate(input, corpus[random.Below(corpus.size())], random);
    if (!Passes(input, program + "-failing-changed-" + std::to_string(i))) return 1;
  }
  std::cout << corpus.size() << " inputs and " << changed << " changed ones\n";
  return 0;
}

}  // namespace

int main(int count, char** values) {
  if (count != 3) {
    std::cerr << "Arguments: a folder of inputs, the number of changed inputs.\n";
    return 2;
  }
  const std::string program = std::filesystem::path(values[0]).filename();
  return Run(values[1], tavi::access::test::Lengthened(std::stoul(values[2])), program);
}
