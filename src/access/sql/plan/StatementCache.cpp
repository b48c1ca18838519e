#include "access/sql/plan/StatementCache.h"

namespace tavi::access::sql {

std::shared_ptr<PreparedStatement> StatementCache::Find(std::string_view text) {
  const auto found = byText_.find(text);
  if (found == byText_.end()) return nullptr;
  entries_.splice(entries_.begin(), entries_, found->second);
  return found->second->statement;
}

void StatementCache::Put(std::string_view text, std::shared_ptr<PreparedStatement> statement) {
  if (text.size() > kLongestText) return;
  if (const auto found = byText_.find(text); found != byText_.end()) {
    found->second->statement = std::move(statement);
    return;
  }
  entries_.push_front({std::string(text), std::move(statement)});
  byText_.emplace(entries_.front().text, entries_.begin());
  if (entries_.size() <= kMostStatements) return;
  byText_.erase(entries_.back().text);
  entries_.pop_back();
}

void StatementCache::Clear() {
  byText_.clear();
  entries_.clear();
}

}  // namespace tavi::access::sql
