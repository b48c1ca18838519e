#include "host/commands/Context.h"

#include <filesystem>

#include "platform/values/Error.h"
#include "platform/values/Text.h"

namespace tavi::host {
namespace {

namespace fs = std::filesystem;

constexpr const char* kClubFileName = "ClubMembers.mdb";

bool IsFile(const std::string& path) {
  std::error_code ignored;
  return fs::is_regular_file(path, ignored);
}

/// The folder of a club that was named by its folder or its file.
fs::path FolderOf(const std::string& name) {
  const fs::path path = fs::absolute(name).lexically_normal();
  if (!IsFile(name)) return path;
  if (EqualIgnoringCase(path.filename().string(), kClubFileName)) return path.parent_path();
  throw Error(ErrorNumber::InvalidArgument, "tavi",
              "\"" + name + "\" is no club's folder, and a club's file is called " + kClubFileName +
                  ". Name the folder that holds it.");
}

}  // namespace

std::unique_ptr<MembershipDatabase> Context::OpenClub() const {
  auto club = std::make_unique<MembershipDatabase>(platform);
  if (!folder.empty()) club->SetDatabaseFolder(FolderOf(folder).string());
  return club;
}

std::string Context::ClubFolder() const {
  return OpenClub()->DatabaseFolder();
}

std::string Context::ClubFile() const {
  return OpenClub()->DatabaseFileName();
}

std::string Context::AccessFile() const {
  return IsFile(folder) ? fs::absolute(folder).lexically_normal().string() : ClubFile();
}

}  // namespace tavi::host
