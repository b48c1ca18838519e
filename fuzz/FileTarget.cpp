// A database file: its bytes, or, since whole files are large, patches of a sound one.
#include <algorithm>
#include <string_view>
#include <vector>

#include "access/file/Page.h"
#include "access/provider/support/FileUse.h"
#include "fuzz/ByteSource.h"
#include "fuzz/Target.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

// Many times what the sound file needs.
constexpr std::uint64_t kMostReads = 100000;

bool IsWholeFile(std::span<const std::uint8_t> input) {
  constexpr std::string_view kName = "Standard Jet DB";
  return input.size() > tavi::access::kPageSize && std::equal(kName.begin(), kName.end(), input.begin() + 4);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Bytes sound = tavi::access::test::MakeFileOfEverything();
  const std::span<const std::uint8_t> input(data, size);
  Bytes file = IsWholeFile(input) ? Bytes(input.begin(), input.end()) : sound;
  if (!IsWholeFile(input)) {
    tavi::fuzz::ByteSource patches(input);
    tavi::fuzz::ApplyPatches(patches, file, tavi::access::kPageSize);
  }
  tavi::access::test::UseFile(file, kMostReads);
  return 0;
}
