#pragma once

#include <vector>

#include "access/file/Pager.h"

namespace tavi::access {

/// A pager without a file: pages in memory, always inside a write statement. A new file is built on it with the writers
/// that also change real files, and then written out as a whole.
class MemoryPager final : public Pager {
 public:
  /// Starts with `pageCount` zeroed pages.
  explicit MemoryPager(PageNumber pageCount);

  /// The pages as they are now.
  [[nodiscard]] std::vector<Page> Pages() const;

  [[nodiscard]] bool IsReadOnly() const override { return false; }
  [[nodiscard]] const std::string& Path() const override { return path_; }
  [[nodiscard]] bool IsJet3() const override { return false; }
  void BeginRead() override {}
  void EndRead() override {}
  void BeginWrite() override {}
  void Commit() override {}
  /// Not possible: raises an error. So do the three for transactions.
  void Rollback() override;
  std::int32_t BeginTransaction() override;
  void CommitTransaction() override;
  void RollbackTransaction() override;
  [[nodiscard]] std::int32_t TransactionLevel() const override { return 0; }
  [[nodiscard]] bool InStatement() const override { return true; }
  [[nodiscard]] bool InWrite() const override { return true; }
  [[nodiscard]] PageNumber PageCount() const override;
  [[nodiscard]] PageHandle Read(PageNumber number) override;
  [[nodiscard]] Page& Write(PageNumber number) override;
  [[nodiscard]] Page& WriteNew(PageNumber number) override;
  [[nodiscard]] std::uint64_t Generation() const override { return 0; }
  void Flush() override {}
  void Close() override {}

 private:
  [[nodiscard]] Page& At(PageNumber number);

  std::string path_ = "(in memory)";
  std::vector<std::unique_ptr<Page>> pages_;
};

}  // namespace tavi::access
