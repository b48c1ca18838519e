#include "host/tools/Sample.h"

#include <algorithm>
#include <filesystem>
#include <ostream>
#include <sstream>

#include "host/commands/Score.h"
#include "host/results/UsebioReader.h"
#include "host/text/PathText.h"
#include "host/tools/Import.h"
#include "host/tools/NewClub.h"
#include "platform/values/Error.h"
#include "util/Paths.h"

namespace tavi::host {
namespace {

// How the command is called where a sample club is made.
#ifdef _WIN32
constexpr const char* kCommand = "tavi";
#else
constexpr const char* kCommand = "./run";
#endif

/// A folder that is not there yet.
std::string NewFolder() {
  const std::string stem = TextOf(std::filesystem::current_path() / "sample-club");
  std::string folder = stem;
  for (int number = 2; std::filesystem::exists(PathOf(folder)); ++number) folder = stem + "-" + std::to_string(number);
  return folder;
}

std::vector<std::string> ResultFiles(const std::string& from) {
  std::vector<std::string> files;
  const std::string folder = JoinPath(from, "evenings");
  std::error_code unreadable;
  for (const std::string& name : NamesIn(folder, unreadable)) {
    if (name.ends_with(".xml")) files.push_back(JoinPath(folder, name));
  }
  if (files.empty()) {
    throw Error(ErrorNumber::InvalidArgument, "tavi", folder + " holds no result files; expected USEBIO files (.xml)");
  }
  std::sort(files.begin(), files.end());
  return files;
}

}  // namespace

int MakeSample(Context context, const std::string& from) {
  const std::vector<std::string> files = ResultFiles(from);
  if (context.folder.empty()) context.folder = NewFolder();
  std::ostringstream unshown;
  Context quiet{context.in, unshown, context.error};
  quiet.showProgress = context.showProgress;
  quiet.folder = context.folder;
  quiet.platform = context.platform;
  MakeClub(quiet, {"Sample Bridge Club", ""});
  ImportMembers(quiet, {JoinPath(from, "members.csv")});
  ImportPairs(quiet, {JoinPath(from, "pairs.csv")});
  const std::unique_ptr<MembershipDatabase> club = context.OpenClub();
  const std::vector<ScoredFile> scored = ScoreFiles(context, *club, files);
  for (const ScoredFile& file : scored) {
    if (!file.error.empty()) throw Error(ErrorNumber::InvalidArgument, "tavi", file.error);
  }
  for (const ScoredEvent& event : scored.back().events) WriteRanking(context, event);
  if (context.format == OutputFormat::Table) {
    context.out << '\n'
                << files.size() << " evenings scored. The club's file is\n  " << NativePath(context.ClubFile())
                << "\nLook further with\n  " << kCommand << " --db " << context.folder << " handicaps\n";
  } else {
    context.error << NativePath(context.ClubFile()) << '\n';
  }
  return kSucceeded;
}

}  // namespace tavi::host
