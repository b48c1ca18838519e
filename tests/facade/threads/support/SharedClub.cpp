#include "facade/threads/support/SharedClub.h"

#include "access/catalog/Check.h"
#include "access/file/Pager.h"
#include "composition/Composition.h"
#include "facade/ThreadStore.h"
#include "facade/support/FakeSurroundings.h"
#include "platform/ConnectionTo.h"
#include "platform/values/Convert.h"
#include "store/Layout.h"

namespace tavi::testing {
namespace {

constexpr const char* kFileName = "ClubMembers.mdb";

}  // namespace

SharedClub::SharedClub() {
  const auto platform = std::make_shared<Platform>(*MakePlatform({kToday}));
  folder_.MakeFolder(".config");
  platform->shellFolders = FoldersOfUser(folder_.Path("Documents"), folder_.Path(".config"));
  platform_ = platform;
  MakeFile("");
}

SharedClub::~SharedClub() {
  SetThreadStore(nullptr);
}

void SharedClub::MakeFile(const std::string& folder) const {
  if (!folder.empty()) folder_.MakeFolder(folder);
  const std::string path = folder_.Path(folder) + "/" + kFileName;
  CreateEmptyDatabase(path, kToday);
  const auto connection = platform_->databaseProvider->Open(ConnectionTo(path));
  CreateBaseFile(*connection);
  connection->Close();
}

std::unique_ptr<MembershipDatabase> SharedClub::NewObject() const {
  auto object = std::make_unique<MembershipDatabase>(platform_);
  object->SetDatabaseFolder(folder_.Path());
  return object;
}

std::vector<std::string> SharedClub::Column(const std::string& query, const std::string& folder) const {
  const auto connection = platform_->databaseProvider->Open(ConnectionTo(folder_.Path(folder) + "/" + kFileName));
  const auto rows = connection->OpenRecordset(query, ado::CursorType::ForwardOnly, ado::LockType::ReadOnly,
                                              ado::SourceKind::CommandText);
  std::vector<std::string> texts;
  for (; !rows->AtEnd(); rows->MoveNext()) texts.push_back(ToText(rows->Get(rows->Fields().front().name)));
  rows->Close();
  connection->Close();
  return texts;
}

void SharedClub::ExpectASoundClosedFile() const {
  EXPECT_FALSE(folder_.Has(std::string(kFileName) + ".redo")) << "the file is not closed";
  access::Database database(access::Pager::Open(access::NativeFileSystem(), folder_.Path(kFileName), {}));
  EXPECT_EQ(access::CheckDatabase(database), std::vector<std::string>());
  database.GetPager().Close();
}

}  // namespace tavi::testing
