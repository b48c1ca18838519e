#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "facade/MembershipDatabase.h"
#include "facade/support/StatementWatch.h"
#include "platform/Platform.h"
#include "platform/values/Value.h"
#include "store/support/FakeFile.h"
#include "store/support/MemoryFolder.h"

namespace tavi::testing {

/// A club for one test: a new, empty membership file in memory, opened through the public class on the embedded engine.
/// The clock stands still, messages are recorded, and nothing of the user's own folders is touched. DatabaseExists,
/// which looks at the disk, does not see the file.
class Club {
 public:
  /// 1 October 2025, the day on which the club is looked at.
  static constexpr Date kToday{45931.0};

  /// Puts something in front of the provider.
  using ProviderWrapper =
      std::function<std::shared_ptr<const ado::Provider>(const std::shared_ptr<const ado::Provider>& provider)>;

  Club() : Club(nullptr) {}
  /// A club whose watched provider stands behind another one.
  explicit Club(const ProviderWrapper& wrap);
  ~Club();
  Club(const Club&) = delete;
  Club& operator=(const Club&) = delete;

  MembershipDatabase& operator*() { return *database_; }
  MembershipDatabase* operator->() { return database_.get(); }

  /// Another public object on the same file, in place of the first one.
  void Reopen();

  [[nodiscard]] const MemoryFolder& Folder() const { return folder_; }
  [[nodiscard]] std::shared_ptr<const Platform> SharedPlatform() const { return platform_; }
  /// What the thread's store counts as outstanding uses; 0: the file is closed.
  [[nodiscard]] int OpenCount() const;
  /// What the provider is asked by the public object and by the three operations below.
  [[nodiscard]] StatementWatch& Watch() { return *watch_; }
  [[nodiscard]] const std::vector<ShownMessage>& Messages() const { return messages_->shown; }

  /// Runs a statement on the file.
  void Execute(const std::string& statement);
  /// All rows of a query, each field as text ("" for null), fields separated by blanks and "|".
  [[nodiscard]] std::vector<std::string> Rows(const std::string& query);
  /// The only field of the only row.
  [[nodiscard]] Value Single(const std::string& query);

 private:
  MemoryFolder folder_;
  std::shared_ptr<StatementWatch> watch_ = std::make_shared<StatementWatch>();
  std::shared_ptr<RecordedMessages> messages_ = std::make_shared<RecordedMessages>();
  std::shared_ptr<Platform> platform_;
  std::unique_ptr<MembershipDatabase> database_;
};

}  // namespace tavi::testing
