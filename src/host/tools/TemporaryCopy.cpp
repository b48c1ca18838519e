#include "host/tools/TemporaryCopy.h"

#include <fstream>
#include <random>

#include "access/file/Page.h"
#include "platform/values/Error.h"

namespace tavi::host {
namespace {

namespace fs = std::filesystem;

constexpr const char* kLogSuffix = ".redo";
/// Makes no sense as the beginning of a row, so that no row is read out of it.
constexpr char kFiller = '\xff';

[[noreturn]] void Raise(const fs::path& file, const std::string& why) {
  throw Error(ErrorNumber::InvalidArgument, "tavi", file.string() + " cannot be read: " + why);
}

fs::path NewFolder() {
  std::random_device random;
  fs::path folder;
  do {
    folder = fs::temp_directory_path() / ("tavi-recover-" + std::to_string(random()));
  } while (!fs::create_directory(folder));
  fs::permissions(folder, fs::perms::owner_all);
  return folder;
}

void FillUpLastPage(const fs::path& file) {
  const std::uintmax_t beyond = fs::file_size(file) % access::kPageSize;
  if (beyond == 0) return;
  std::ofstream stream(file, std::ios::binary | std::ios::app);
  stream << std::string(static_cast<std::size_t>(access::kPageSize - beyond), kFiller);
}

}  // namespace

TemporaryCopy::TemporaryCopy(const fs::path& original) {
  std::error_code ignored;
  if (!fs::is_regular_file(original, ignored)) Raise(original, "there is no such file");
  try {
    folder_ = NewFolder();
    file_ = folder_ / "old.mdb";
    Copy(original);
  } catch (const fs::filesystem_error& error) {
    fs::remove_all(folder_, ignored);
    Raise(original, error.code().message());
  }
}

TemporaryCopy::~TemporaryCopy() {
  std::error_code ignored;
  fs::remove_all(folder_, ignored);
}

void TemporaryCopy::Copy(const fs::path& original) const {
  fs::copy_file(original, file_);
  const fs::path log = original.string() + kLogSuffix;
  const fs::perms readAndWrite = fs::perms::owner_read | fs::perms::owner_write;
  fs::permissions(file_, readAndWrite);
  if (fs::exists(log)) {
    const fs::path copy = file_.string() + kLogSuffix;
    fs::copy_file(log, copy);
    fs::permissions(copy, readAndWrite);
  }
  FillUpLastPage(file_);
}

}  // namespace tavi::host
