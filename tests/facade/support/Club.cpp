#include "facade/support/Club.h"

#include "composition/Composition.h"
#include "facade/ThreadStore.h"
#include "facade/support/FakeSurroundings.h"
#include "platform/values/Convert.h"
#include "store/OpenUse.h"

namespace tavi::testing {

Club::Club(const ProviderWrapper& wrap) {
  platform_ = std::make_shared<Platform>(*MakePlatform({kToday, messages_, folder_.Files()}));
  platform_->shellFolders = FoldersOfUser(folder_.Path("Documents"), folder_.Path(".config"));
  platform_->settingsDocuments = std::make_shared<MemorySettings>();
  folder_.MakeClubFile("ClubMembers.mdb");
  platform_->databaseProvider = MakeWatchedProvider(platform_->databaseProvider, watch_);
  if (wrap) platform_->databaseProvider = wrap(platform_->databaseProvider);
  Reopen();
}

Club::~Club() {
  database_->CloseDatabase();
}

void Club::Reopen() {
  database_ = std::make_unique<MembershipDatabase>(platform_);
  database_->SetDatabaseFolder(folder_.Path());
}

int Club::OpenCount() const {
  return ThreadStore()->OpenCount();
}

void Club::Execute(const std::string& statement) {
  ThreadStore()->Execute(statement);
}

std::vector<std::string> Club::Rows(const std::string& query) {
  const auto store = ThreadStore();
  OpenUse use(*store);
  const auto rows = store->OpenRecordset(query);
  std::vector<std::string> texts;
  for (; !rows->AtEnd(); rows->MoveNext()) {
    std::string text;
    for (const ado::Field& field : rows->Fields()) {
      const Value value = rows->Get(field.name);
      text += (IsNull(value) ? std::string() : ToText(value)) + " | ";
    }
    texts.push_back(text.substr(0, text.size() - 3));
  }
  return texts;
}

Value Club::Single(const std::string& query) {
  const auto store = ThreadStore();
  OpenUse use(*store);
  const auto rows = store->OpenRecordset(query);
  return rows->Get(rows->Fields().front().name);
}

}  // namespace tavi::testing
