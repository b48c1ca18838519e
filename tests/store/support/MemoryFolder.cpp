#include "store/support/MemoryFolder.h"

#include <filesystem>

#include "access/catalog/Database.h"
#include "composition/Composition.h"
#include "platform/ConnectionTo.h"
#include "store/Layout.h"

namespace tavi::testing {
namespace {

using Bytes = access::test::MemoryFileSystem::Bytes;

const std::filesystem::path kFolder = "/folder-in-memory";

Bytes NewClubFile() {
  const Date day = Date::FromCivil(2024, 1, 1);
  const MemoryFolder folder;
  const std::string path = folder.Path("New.mdb");
  access::Database::CreateFile(*folder.Files(), path, day);
  const auto platform = MakePlatform({day, nullptr, folder.Files()});
  const auto connection = platform->databaseProvider->Open(ConnectionTo(path));
  CreateBaseFile(*connection);
  connection->Close();
  return folder.Files()->Contents(path);
}

}  // namespace

std::string MemoryFolder::Path() const {
  return std::filesystem::path(kFolder).make_preferred().string();
}

std::string MemoryFolder::Path(const std::string& name) const {
  return (kFolder / std::u8string(name.begin(), name.end())).make_preferred().string();
}

void MemoryFolder::WriteFile(const std::string& name, const std::string& content) const {
  files_->SetContents(Path(name), Bytes(content.begin(), content.end()));
}

std::string MemoryFolder::ReadFile(const std::string& name) const {
  const Bytes bytes = files_->Contents(Path(name));
  return {bytes.begin(), bytes.end()};
}

void MemoryFolder::CopyFile(const std::string& from, const std::string& to) const {
  files_->SetContents(Path(to), files_->Contents(Path(from)));
}

bool MemoryFolder::Has(const std::string& name) const {
  return files_->Exists(Path(name));
}

std::size_t MemoryFolder::FileCount() const {
  return files_->Paths().size();
}

void MemoryFolder::MakeClubFile(const std::string& name) const {
  static const Bytes newFile = NewClubFile();
  files_->SetContents(Path(name), newFile);
}

}  // namespace tavi::testing
