#pragma once

#include <memory>
#include <string>
#include <vector>

#include "access/catalog/Database.h"
#include "harness/Engines.h"

namespace tavi::bench {

/// Fills one table of both files with the same rows.
class TableWriter {
 public:
  TableWriter(access::Database& ours, SqliteFile& sqlite, const std::string& table,
              const std::vector<std::string>& columns);
  ~TableWriter();
  TableWriter(const TableWriter&) = delete;
  TableWriter& operator=(const TableWriter&) = delete;

  /// Values of the columns in their order; the others are null.
  void Add(const std::vector<Value>& values);
  /// To be called behind the last row.
  void Finish();

 private:
  void Begin();

  access::Database& ours_;
  SqliteFile& sqlite_;
  std::string table_;
  std::vector<std::size_t> places_;
  std::unique_ptr<access::WriteStatement> statement_;
  std::shared_ptr<access::Table> rows_;
  SqliteStatement insert_;
  int added_ = 0;
};

}  // namespace tavi::bench
