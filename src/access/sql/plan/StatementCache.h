#pragma once

#include <list>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

#include "access/sql/plan/PreparedStatement.h"

namespace tavi::access::sql {

/// Remembers the statements that were used last, by their text.
class StatementCache {
 public:
  static constexpr std::size_t kMostStatements = 200;
  /// Longer texts are not remembered.
  static constexpr std::size_t kLongestText = 4000;

  /// The remembered statement, which becomes the one used last; null when there is none.
  [[nodiscard]] std::shared_ptr<PreparedStatement> Find(std::string_view text);
  /// Remembers a statement, in place of one of the same text; the one not used for the longest time makes room.
  void Put(std::string_view text, std::shared_ptr<PreparedStatement> statement);
  void Clear();

 private:
  struct Entry {
    std::string text;
    std::shared_ptr<PreparedStatement> statement;
  };
  std::list<Entry> entries_;  // the one used last first
  std::unordered_map<std::string_view, std::list<Entry>::iterator> byText_;
};

}  // namespace tavi::access::sql
