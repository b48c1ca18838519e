#include "host/commands/Context.h"

#include <filesystem>
#include <ostream>

#include "host/text/PathText.h"
#include "platform/values/Error.h"
#include "platform/values/Text.h"

namespace tavi::host {
namespace {

constexpr const char* kClubFileName = "ClubMembers.mdb";

// What cannot be looked at counts as no file, and the folder is tried.
bool IsFile(const std::string& path) {
  std::error_code ignored;
  return std::filesystem::is_regular_file(PathOf(path), ignored);
}

/// The folder of a club that was named by its folder or its file.
std::string FolderOf(const std::string& name) {
  // A folder need not exist yet: `tavi new` makes it.
  std::string path = AbsolutePath(name);
  if (!IsFile(name)) return path;
  const PathParts parts = SplitPath(path);
  // The component looks for a file of this name and no other in its folder; opening another file would not be what was
  // asked for.
  if (EqualIgnoringCase(parts.name, kClubFileName)) return parts.folder;
  throw Error(ErrorNumber::InvalidArgument, "tavi",
              "\"" + name + "\" is no club's folder, and a club's file is called " + kClubFileName +
                  ". Name the folder that holds it.");
}

}  // namespace

void Context::Write(const Table& table) const {
  table.Write(out, format);
  // Only comma-separated lines are changed for spreadsheets. The note goes to standard error, so that it is no part of
  // the list.
  const std::size_t formulas = format == OutputFormat::Csv ? table.FormulaCount() : 0;
  if (formulas == 0) return;
  error << "note: " << formulas << (formulas == 1 ? " text begins" : " texts begin") << " like a formula and "
        << (formulas == 1 ? "has" : "have") << " an apostrophe before it here, so that no spreadsheet runs it\n";
}

std::unique_ptr<MembershipDatabase> Context::OpenClub() const {
  auto club = std::make_unique<MembershipDatabase>(platform);
  if (!folder.empty()) club->SetDatabaseFolder(FolderOf(folder));
  return club;
}

std::string Context::ClubFolder() const {
  return OpenClub()->DatabaseFolder();
}

std::string Context::ClubFile() const {
  return OpenClub()->DatabaseFileName();
}

std::string Context::AccessFile() const {
  return IsFile(folder) ? AbsolutePath(folder) : ClubFile();
}

}  // namespace tavi::host
