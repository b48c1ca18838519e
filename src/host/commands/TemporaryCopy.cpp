#include "host/commands/WorkFolder.h"

#include <fstream>
#include <string_view>

#include "access/file/Page.h"
#include "access/file/Pager.h"
#include "access/file/Replacement.h"
#include "composition/Composition.h"
#include "host/text/PathText.h"
#include "platform/values/Error.h"

// A copy of an old file that can be opened, whatever is wrong with it. Only that is mended here: an opening refuses a
// file that does not begin as an Access file, that does not end at a page, or beside which another file's log lies.
// Damage further inside is the recovery's, which goes past it.
//
// The order: the file and its log are copied, the first page is replaced, the end is filled up, the log is brought in.
// The log is last, because bringing it in means opening the file.
namespace tavi::host {
namespace {

namespace fs = std::filesystem;

constexpr const char* kLogSuffix = ".redo";
/// Makes no sense as the beginning of a row, so that no row is read out of it.
constexpr char kFiller = '\xff';

/// What every Access file begins with, behind a byte that is not fixed.
constexpr std::string_view kBeginning("\x01\x00\x00Standard Jet DB", 18);
/// A file with fewer pages has lost more than its first one.
constexpr std::uintmax_t kFewestPages = 10;

/// The bytes with which a file begins, as many of them as there are.
std::string FirstBytes(const fs::path& file, std::size_t count) {
  std::string bytes(count, '\0');
  std::ifstream stream(file, std::ios::binary);
  stream.read(bytes.data(), static_cast<std::streamsize>(count));
  bytes.resize(static_cast<std::size_t>(stream.gcount()));
  return bytes;
}

/// For what the system refuses; names the file that was asked for.
[[noreturn]] void Raise(const fs::path& file, const std::string& why) {
  throw Error(ErrorNumber::InvalidArgument, "tavi", TextOf(file) + " cannot be read: " + why);
}

/// A file that was cut off in the middle of a page keeps the rows of what is left of it.
void FillUpLastPage(const fs::path& file) {
  const std::uintmax_t beyond = fs::file_size(file) % access::kPageSize;
  if (beyond == 0) return;
  std::ofstream stream(file, std::ios::binary | std::ios::app);
  stream << std::string(static_cast<std::size_t>(access::kPageSize - beyond), kFiller);
  if (!stream.flush()) Raise(file, "its copy cannot be written; is the disk full?");
}

}  // namespace

TemporaryCopy::TemporaryCopy(const WorkFolder& folder, const fs::path& original)
    : folder_(folder), file_(PathOf(folder.File("old.mdb"))) {
  std::error_code ignored;
  // A folder or a device would be copied for ever, or not at all.
  if (!fs::is_regular_file(original, ignored)) Raise(original, "there is no such file");
  try {
    Copy(original);
    BringLogIn();
  } catch (const fs::filesystem_error& error) {
    // Its own text names places in the work folder, which nobody knows; the reason is enough.
    Raise(original, ReasonOf(error.code()));
  }
}

// The opening that meets a log which does not belong sets it aside and fails; here, that is all that it is for. What
// else keeps the copy closed is met again by who uses it.
void TemporaryCopy::BringLogIn() {
  if (!fs::exists(PathOf(Path() + kLogSuffix))) return;
  try {
    access::Pager::Open(access::NativeFileSystem(), Path(), {})->Close();
  } catch (const Error&) {
    // The engine's name for a log that it has set aside.
    isLogLeftOut_ = fs::exists(PathOf(Path() + kLogSuffix + "-setaside-1"));
  }
}

std::string TemporaryCopy::Path() const {
  return TextOf(file_);
}

void TemporaryCopy::Copy(const fs::path& original) const {
  const std::shared_ptr<access::FileSystem> fileSystem = access::NativeFileSystem();
  const auto copy = [&](const std::string& from, const std::string& to) {
    access::CopyFile(*fileSystem, *fileSystem->Open(from, access::FileSystem::OpenMode::ReadOnly), to);
  };
  copy(TextOf(original), Path());
  const std::string log = TextOf(original) + kLogSuffix;
  if (fileSystem->Exists(log)) copy(log, Path() + kLogSuffix);
  const bool isAccess = FirstBytes(file_, kBeginning.size() + 1).erase(0, 1) == kBeginning;
  if (!isAccess && fs::file_size(file_) >= kFewestPages * access::kPageSize) ReplaceFirstPage();
  FillUpLastPage(file_);
}

// The first page says which version and sort order the file has; a new file's says what files of this kind have. The
// tables are found from a page with a fixed number, whatever the first one says.
void TemporaryCopy::ReplaceFirstPage() const {
  const std::string sound = folder_.File("header.mdb");
  CreateEmptyDatabase(sound, Date{});
  const std::string page = FirstBytes(PathOf(sound), access::kPageSize);
  fs::remove(PathOf(sound));
  std::fstream stream(file_, std::ios::binary | std::ios::in | std::ios::out);
  stream.write(page.data(), static_cast<std::streamsize>(page.size()));
  if (!stream.flush()) Raise(file_, "it cannot be written; is the disk full?");
}

}  // namespace tavi::host
