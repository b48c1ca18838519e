// Random histories of changes on one table, beside a map that says what must be there.
#include <gtest/gtest.h>
#include <map>
#include <random>
#include <vector>

#include "access/table/TableRows.h"
#include "access/table/support/RandomValues.h"
#include "access/table/support/TestTable.h"
#include "platform/values/Error.h"

namespace tavi::access::test {
namespace {

class History {
 public:
  explicit History(std::uint32_t seed) : random_(seed), table_(Columns(random_)) {}

  void Run(int steps) {
    for (int step = 0; step < steps; ++step) {
      switch (random_() % 12) {
        case 0:
          if (random_() % 10 == 0) EndStatement();
          break;
        case 1:
        case 2:
          Delete();
          break;
        case 3:
        case 4:
        case 5:
          Update();
          break;
        default:
          Insert();
      }
    }
  }

  void Check() {
    EXPECT_EQ(table_.Faults(), std::vector<std::string>{});
    const std::vector<RowPointer> rows = table_.AllRows();
    ASSERT_EQ(rows.size(), model_.size());
    auto expected = model_.begin();
    for (const RowPointer row : rows) {
      EXPECT_EQ(row, expected->first);
      EXPECT_EQ(table_.Rows().Read(row), expected->second);
      ++expected;
    }
    EXPECT_EQ(RowCount(table_.File(), table_.Definition()), model_.size());
  }

  // Deletes whatever is left: nothing may stay in use then.
  void DeleteAll() {
    while (!model_.empty()) Delete();
    Check();
    EXPECT_TRUE(table_.DataPages().empty());
    for (std::size_t i = 0; i < table_.Definition().columns.size(); ++i) EXPECT_TRUE(table_.LongValuePages(i).empty());
  }

 private:
  using Model = std::map<RowPointer, RowValues>;

  static std::vector<ColumnPlan> Columns(std::mt19937& random) {
    std::vector<ColumnPlan> columns = RandomColumns(random, 1 + random() % 12, true);
    // Two of full length make rows that leave their pages.
    columns.push_back(TextColumn("long", 255, false));
    columns.push_back(TextColumn("longer", 255, false));
    return columns;
  }

  Model::iterator AnyRow() { return std::next(model_.begin(), static_cast<std::ptrdiff_t>(random_() % model_.size())); }

  void Insert() {
    const RowValues values = RandomRow(random_, table_.Definition());
    const RowPointer row = table_.Rows().Insert(values);
    EXPECT_TRUE(model_.emplace(row, values).second);
  }

  void Update() {
    if (model_.empty()) return;
    const auto row = AnyRow();
    RowValues values = row->second;
    for (std::size_t i = 0; i < values.size(); ++i) {
      if (random_() % 3 == 0) values[i] = RandomValue(random_, table_.Definition().columns[i]);
    }
    table_.Rows().Update(row->first, values);
    row->second = values;
  }

  void Delete() {
    if (model_.empty()) return;
    const auto row = AnyRow();
    table_.Rows().Delete(row->first);
    EXPECT_FALSE(table_.Rows().Exists(row->first));
    model_.erase(row);
  }

  void EndStatement() {
    if (random_() % 2 == 0) {
      table_.Commit();
      committed_ = model_;
    } else if (committed_) {
      table_.Rollback();
      model_ = *committed_;
    }
  }

  std::mt19937 random_;
  TestTable table_;
  Model model_;
  std::optional<Model> committed_;
};

class TableHistory : public ::testing::TestWithParam<std::uint32_t> {};

TEST_P(TableHistory, KeepsRowsCountsAndPagesInStep) {
  History history(GetParam());
  for (int part = 0; part < 6; ++part) {
    history.Run(80);
    history.Check();
  }
  history.DeleteAll();
}

INSTANTIATE_TEST_SUITE_P(Seeds, TableHistory, ::testing::Range(1U, 21U));

}  // namespace
}  // namespace tavi::access::test
