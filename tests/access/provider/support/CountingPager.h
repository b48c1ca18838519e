#pragma once

#include <memory>
#include <stdexcept>
#include <utility>

#include "access/file/Pager.h"

namespace tavi::access::test {

/// Thrown when more pages were asked for than a work of this size can need. Not an Error, so that nothing takes it for
/// one.
class TooManyReads : public std::runtime_error {
 public:
  TooManyReads() : std::runtime_error("more pages were read than can be needed") {}
};

/// A pager that counts the pages that are asked for, so that a walk without end is noticed without a clock.
class CountingPager final : public Pager {
 public:
  CountingPager(std::unique_ptr<Pager> inner, std::uint64_t limit) : inner_(std::move(inner)), left_(limit) {}

  [[nodiscard]] bool IsReadOnly() const override { return inner_->IsReadOnly(); }
  [[nodiscard]] const std::string& Path() const override { return inner_->Path(); }
  [[nodiscard]] bool IsJet3() const override { return inner_->IsJet3(); }
  void BeginRead() override { inner_->BeginRead(); }
  void EndRead() override { inner_->EndRead(); }
  void BeginWrite() override { inner_->BeginWrite(); }
  void Commit() override { inner_->Commit(); }
  void Rollback() override { inner_->Rollback(); }
  std::int32_t BeginTransaction() override { return inner_->BeginTransaction(); }
  void CommitTransaction() override { inner_->CommitTransaction(); }
  void RollbackTransaction() override { inner_->RollbackTransaction(); }
  [[nodiscard]] std::int32_t TransactionLevel() const override { return inner_->TransactionLevel(); }
  [[nodiscard]] bool InStatement() const override { return inner_->InStatement(); }
  [[nodiscard]] bool InWrite() const override { return inner_->InWrite(); }
  [[nodiscard]] PageNumber PageCount() const override { return inner_->PageCount(); }
  [[nodiscard]] PageHandle Read(PageNumber number) override {
    Count();
    return inner_->Read(number);
  }
  [[nodiscard]] Page& Write(PageNumber number) override {
    Count();
    return inner_->Write(number);
  }
  [[nodiscard]] Page& WriteNew(PageNumber number) override {
    Count();
    return inner_->WriteNew(number);
  }
  [[nodiscard]] std::uint64_t Generation() const override { return inner_->Generation(); }
  void Flush() override { inner_->Flush(); }
  void Close() override { inner_->Close(); }

  [[nodiscard]] std::uint64_t Left() const { return left_; }

 private:
  void Count() {
    if (left_ == 0) throw TooManyReads();
    --left_;
  }

  std::unique_ptr<Pager> inner_;
  std::uint64_t left_;
};

}  // namespace tavi::access::test
