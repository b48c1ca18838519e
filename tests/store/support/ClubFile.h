#pragma once

#include <memory>
#include <string>
#include <vector>

#include "composition/Composition.h"
#include "names/NameColumns.h"
#include "platform/ConnectionTo.h"
#include "store/support/FakeFile.h"
#include "store/support/MemoryFolder.h"

namespace tavi::testing {

/// A membership file of the current layout in memory, with a store on it, which also keeps names up to date.
class ClubFile {
 public:
  ClubFile() {
    folder.MakeClubFile("ClubMembers.mdb");
    store.SetDatabaseFolder(folder.Path());
  }

  static constexpr Date kNow{45366.5};  // 15 March 2024, 12:00

  [[nodiscard]] std::string FilePath() const { return folder.Path("ClubMembers.mdb"); }
  [[nodiscard]] std::string Content() const { return folder.ReadFile("ClubMembers.mdb"); }
  /// A connection beside the store.
  [[nodiscard]] std::unique_ptr<ado::Connection> Connect() const {
    return platform->databaseProvider->Open(ConnectionTo(FilePath()));
  }
  /// Runs statements on the file without the store.
  void Prepare(const std::vector<std::string>& statements) const {
    const auto connection = Connect();
    for (const std::string& statement : statements) connection->Execute(statement);
    connection->Close();
  }
  /// The first field of every row of a statement, as text ("Null" for null).
  [[nodiscard]] std::vector<std::string> Column(const std::string& statement) const;
  /// The types of a table's columns by name.
  [[nodiscard]] std::map<std::string, std::int32_t> ColumnTypes(const std::string& table) const;

  MemoryFolder folder;
  std::shared_ptr<RecordedMessages> messages = std::make_shared<RecordedMessages>();
  std::shared_ptr<const Platform> platform = MakePlatform({kNow, messages, folder.Files()});
  cDatabase store{platform, NameSteps()};
};

}  // namespace tavi::testing
