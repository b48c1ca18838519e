#include "host/commands/Context.h"

#include <filesystem>

namespace tavi::host {

std::unique_ptr<MembershipDatabase> Context::OpenClub() const {
  auto club = std::make_unique<MembershipDatabase>(platform);
  if (!folder.empty()) club->SetDatabaseFolder(std::filesystem::absolute(folder).lexically_normal().string());
  return club;
}

std::string Context::ClubFolder() const {
  return OpenClub()->DatabaseFolder();
}

std::string Context::ClubFile() const {
  return OpenClub()->DatabaseFileName();
}

}  // namespace tavi::host
