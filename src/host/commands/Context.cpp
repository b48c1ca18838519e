#include "host/commands/Context.h"

#include <filesystem>

#include "host/text/PathText.h"
#include "platform/values/Error.h"
#include "platform/values/Text.h"

namespace tavi::host {
namespace {

namespace fs = std::filesystem;

constexpr const char* kClubFileName = "ClubMembers.mdb";

bool IsFile(const std::string& path) {
  std::error_code ignored;
  return fs::is_regular_file(PathOf(path), ignored);
}

fs::path AbsolutePath(const std::string& name) {
  return fs::absolute(PathOf(name)).lexically_normal();
}

/// The folder of a club that was named by its folder or its file.
fs::path FolderOf(const std::string& name) {
  const fs::path path = AbsolutePath(name);
  if (!IsFile(name)) return path;
  if (EqualIgnoringCase(TextOf(path.filename()), kClubFileName)) return path.parent_path();
  throw Error(ErrorNumber::InvalidArgument, "tavi",
              "\"" + name + "\" is no club's folder, and a club's file is called " + kClubFileName +
                  ". Name the folder that holds it.");
}

}  // namespace

std::unique_ptr<MembershipDatabase> Context::OpenClub() const {
  auto club = std::make_unique<MembershipDatabase>(platform);
  if (!folder.empty()) club->SetDatabaseFolder(TextOf(FolderOf(folder)));
  return club;
}

std::string Context::ClubFolder() const {
  return OpenClub()->DatabaseFolder();
}

std::string Context::ClubFile() const {
  return OpenClub()->DatabaseFileName();
}

std::string Context::AccessFile() const {
  return IsFile(folder) ? TextOf(AbsolutePath(folder)) : ClubFile();
}

}  // namespace tavi::host
