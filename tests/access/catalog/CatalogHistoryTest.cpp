// Long random histories of changes of rows and definitions, beside a plain model of what must be there.

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>

#include "access/catalog/support/TestFile.h"

namespace tavi::access::test {
namespace {

constexpr char kTable[] = "History";

/// A row of the model: values by column name; what is missing is null.
using ModelRow = std::map<std::string, Value>;

/// What the model knows; copied to undo a statement.
struct Model {
  std::map<std::int32_t, ModelRow> rows;
  std::map<std::string, ColumnType> columns;
  std::map<std::string, std::string> indexes;  // name, column
};

class History {
 public:
  explicit History(std::uint32_t seed) : random_(seed) {
    TableDesign design;
    design.name = kTable;
    design.columns = {MakeColumn("ID", ColumnType::Long), MakeColumn("Code", ColumnType::Integer)};
    design.columns[0].autoNumber = true;
    IndexDesign code = MakeIndex("Code", {"Code"});
    code.unique = true;
    design.indexes = {MakePrimaryKey("ID"), code};
    file_.Write([&](Database& database) { database.CreateTable(design, kNow); });
  }

  void Run(int statements) {
    for (int i = 0; i < statements; ++i) {
      const Model before = model_;
      {
        WriteStatement statement(file_.Get().GetPager());
        const int changes = Below(12) + 1;
        for (int change = 0; change < changes; ++change) ChangeSomething();
        if (Below(8) != 0) {
          statement.Commit();
        } else {
          model_ = before;
        }
      }
      if (Below(10) == 0) file_.Reopen();
      Compare();
      if (testing::Test::HasFailure()) return;
    }
    file_.ExpectSound();
  }

 private:
  int Below(int limit) { return static_cast<int>(random_() % static_cast<std::uint32_t>(limit)); }

  Value RandomValue(ColumnType type) {
    const auto length = static_cast<std::size_t>(Below(4) == 0 ? Below(6000) : Below(40));
    switch (type) {
      case ColumnType::Boolean:
        return Below(2) == 0;
      case ColumnType::Text:
        return std::string(length % 50, static_cast<char>('a' + Below(26)));
      case ColumnType::Memo:
        return std::string(length, static_cast<char>('a' + Below(26)));
      case ColumnType::Ole:
        return Bytes(length, static_cast<std::uint8_t>(Below(256)));
      case ColumnType::Double:
        return Below(1000) / 8.0;
      default:
        return static_cast<std::int16_t>(Below(1000));
    }
  }

  NamedValues RandomValues() {
    NamedValues values;
    if (Below(3) != 0) values.emplace_back("Code", static_cast<std::int16_t>(Below(300)));
    for (const auto& [name, type] : model_.columns)
      if (Below(3) != 0) values.emplace_back(name, RandomValue(type));
    return values;
  }

  template <typename Map>
  auto AnyOf(const Map& map) {
    auto entry = map.begin();
    std::advance(entry, Below(static_cast<int>(map.size())));
    return *entry;
  }

  void ChangeSomething() {
    const int choice = Below(40);
    if (choice < 20) return InsertRow();
    if (choice < 30) return UpdateRow();
    if (choice < 35) return DeleteRow();
    if (choice < 37) return AddColumn();
    if (choice < 38) return DropColumn();
    if (choice < 39) return CreateIndex();
    return DropIndex();
  }

  [[nodiscard]] bool IsCodeTaken(const NamedValues& values, std::int32_t except) const {
    for (const auto& [name, value] : values) {
      if (name != "Code") continue;
      for (const auto& [id, row] : model_.rows)
        if (id != except && row.contains("Code") && row.at("Code") == value) return true;
    }
    return false;
  }

  void InsertRow() {
    const NamedValues values = RandomValues();
    if (IsCodeTaken(values, 0)) {
      EXPECT_THROW(Insert(file_.Get(), kTable, values), Error);
      return;
    }
    const auto table = file_.Get().OpenTable(kTable);
    RowValues row = MakeRow(*table, values);
    table->Insert(row);
    ModelRow modelRow(values.begin(), values.end());
    for (const auto& [name, type] : model_.columns)
      if (type == ColumnType::Boolean && !modelRow.contains(name)) modelRow[name] = false;
    model_.rows[std::get<std::int32_t>(row.at(table->FindColumn("ID").value()))] = std::move(modelRow);
  }

  RowPointer PlaceOf(std::int32_t id) {
    const auto table = file_.Get().OpenTable(kTable);
    return table->Tree(0).FindKey(table->Encoder(0).PrefixKey({id}).value()).value();
  }

  void UpdateRow() {
    if (model_.rows.empty()) return;
    const std::int32_t id = AnyOf(model_.rows).first;
    const NamedValues values = RandomValues();
    if (IsCodeTaken(values, id)) {
      EXPECT_THROW(Update(file_.Get(), kTable, PlaceOf(id), values), Error);
      return;
    }
    Update(file_.Get(), kTable, PlaceOf(id), values);
    for (const auto& [name, value] : values) model_.rows[id][name] = value;
  }

  void DeleteRow() {
    if (model_.rows.empty()) return;
    const std::int32_t id = AnyOf(model_.rows).first;
    file_.Get().OpenTable(kTable)->Delete(PlaceOf(id));
    model_.rows.erase(id);
  }

  void AddColumn() {
    constexpr ColumnType kTypes[] = {ColumnType::Boolean, ColumnType::Text,   ColumnType::Memo,
                                     ColumnType::Ole,     ColumnType::Double, ColumnType::Integer};
    const ColumnType type = kTypes[Below(6)];
    const std::string name = "Column " + std::to_string(++columnsMade_);
    file_.Get().AddColumn(kTable, MakeColumn(name, type), kNow);
    model_.columns[name] = type;
    if (type != ColumnType::Boolean) return;
    for (auto& [id, row] : model_.rows) row[name] = false;
  }

  void DropColumn() {
    if (model_.columns.empty()) return;
    const std::string name = AnyOf(model_.columns).first;
    const bool isUsed = std::ranges::any_of(model_.indexes, [&](const auto& index) { return index.second == name; });
    if (isUsed) {
      EXPECT_THROW(file_.Get().DropColumn(kTable, name, kNow), Error);
      return;
    }
    file_.Get().DropColumn(kTable, name, kNow);
    model_.columns.erase(name);
    for (auto& [id, row] : model_.rows) row.erase(name);
  }

  void CreateIndex() {
    if (model_.columns.empty() || model_.indexes.size() >= 6) return;
    const auto [column, type] = AnyOf(model_.columns);
    if (type == ColumnType::Ole || type == ColumnType::Memo) return;
    const std::string name = "Index " + std::to_string(++indexesMade_);
    IndexDesign index = MakeIndex(name, {column, "Code"});
    index.columns[0].ascending = Below(2) == 0;
    file_.Get().CreateIndex(kTable, index, kNow);
    model_.indexes[name] = column;
  }

  void DropIndex() {
    if (model_.indexes.empty()) return;
    const std::string name = AnyOf(model_.indexes).first;
    file_.Get().DropIndex(kTable, name, kNow);
    model_.indexes.erase(name);
  }

  void Compare() {
    const ReadStatement statement(file_.Get().GetPager());
    const auto table = file_.Get().OpenTable(kTable);
    EXPECT_EQ(table->RowCount(), model_.rows.size());
    EXPECT_EQ(table->Columns().size(), model_.columns.size() + 2);
    EXPECT_EQ(table->Indexes().size(), model_.indexes.size() + 2);
    std::size_t found = 0;
    for (auto place = table->Next(std::nullopt); place.has_value(); place = table->Next(place)) {
      const RowValues row = table->Read(*place);
      const auto expected = model_.rows.find(std::get<std::int32_t>(row[0]));
      ASSERT_NE(expected, model_.rows.end());
      ++found;
      for (std::size_t i = 1; i < row.size(); ++i) {
        const auto value = expected->second.find(table->Columns()[i].definition.name);
        EXPECT_EQ(row[i], value == expected->second.end() ? Value(Null{}) : value->second)
            << expected->first << "." << table->Columns()[i].definition.name;
      }
    }
    EXPECT_EQ(found, model_.rows.size());
  }

  TestFile file_;
  std::mt19937 random_;
  Model model_;
  int columnsMade_ = 0;
  int indexesMade_ = 0;
};

class CatalogHistory : public testing::TestWithParam<std::uint32_t> {};

TEST_P(CatalogHistory, AgreesWithTheModel) {
  History(GetParam()).Run(60);
}

INSTANTIATE_TEST_SUITE_P(Seeds, CatalogHistory, testing::Range(std::uint32_t{1}, std::uint32_t{9}));

}  // namespace
}  // namespace tavi::access::test
