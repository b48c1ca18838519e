#include "facade/MembershipDatabase.h"

#include "facade/MembershipDatabaseState.h"
#include "facade/StartUp.h"
#include "facade/StoreSlot.h"
#include "util/Paths.h"

namespace tavi {

MembershipDatabase::MembershipDatabase(std::shared_ptr<const Platform> platform) : state_(std::make_unique<State>()) {
  SetThreadStore(std::make_shared<cDatabase>(std::move(platform)));
  FindDatabaseFolder(*ThreadStore());
}

MembershipDatabase::~MembershipDatabase() = default;

bool MembershipDatabase::DatabaseExists() const {
  return FileExists(ThreadStore()->DatabaseFilePath());
}

std::string MembershipDatabase::DatabaseFolder() const {
  return ThreadStore()->DatabaseFolder();
}

void MembershipDatabase::SetDatabaseFolder(const std::string& folder) {
  ThreadStore()->SetDatabaseFolder(folder);
}

std::string MembershipDatabase::DatabaseFileName() const {
  return ThreadStore()->DatabaseFilePath();
}

void MembershipDatabase::OpenDatabase() {
  ThreadStore()->OpenDB();
}

void MembershipDatabase::CloseDatabase() {
  ThreadStore()->CloseDB(true);
}

}  // namespace tavi
