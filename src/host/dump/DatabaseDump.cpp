#include "host/dump/DatabaseDump.h"

#include <algorithm>
#include <set>

#include "access/catalog/Names.h"
#include "host/dump/JsonTree.h"
#include "platform/values/Digits.h"

// A dump is for comparing, by eye or by other programs, so everything in it has one order: tables, links, indexes and
// relationships by name, columns by their permanent number, rows by their bytes as text. Nothing in it depends on where
// a row lies, in which order things were made, or what was deleted in between.
//
// A table's rows are all in memory while it is written, since they are sorted.
namespace tavi::host {

namespace {

using Kind = access::LogicalIndexDefinition::Kind;

constexpr char kTextFileEnding[] = ".tsv";
constexpr std::size_t kLongestFileName = 255;  // bytes that file systems take
constexpr char kCutMark = '~';                 // stands in no name that is written whole
constexpr std::size_t kCutDigestSize = 8;      // bytes of the digest that tells cut names apart

/// A word of the form for each type; programs compare it.
const char* TypeName(access::ColumnType type) {
  switch (type) {
    case access::ColumnType::Boolean:
      return "Boolean";
    case access::ColumnType::Byte:
      return "Byte";
    case access::ColumnType::Integer:
      return "Integer";
    case access::ColumnType::Long:
      return "Long";
    case access::ColumnType::Currency:
      return "Currency";
    case access::ColumnType::Single:
      return "Single";
    case access::ColumnType::Double:
      return "Double";
    case access::ColumnType::Date:
      return "DateTime";
    case access::ColumnType::Text:
      return "Text";
    case access::ColumnType::Memo:
      return "Memo";
    case access::ColumnType::Ole:
      return "OLE";
    case access::ColumnType::Binary:
      return "Binary";
    case access::ColumnType::Guid:
      return "GUID";
    case access::ColumnType::Numeric:
      return "Numeric";
    default:
      return "other";
  }
}

/// Positions of the columns in the order of their permanent numbers.
/// A column keeps its number when others are removed or shown elsewhere; its place in the definition is an accident.
std::vector<std::size_t> ColumnOrder(const access::Table& table) {
  std::vector<std::size_t> positions(table.Columns().size());
  for (std::size_t i = 0; i < positions.size(); ++i) positions[i] = i;
  std::ranges::stable_sort(positions, {}, [&](std::size_t i) { return table.Columns()[i].definition.id; });
  return positions;
}

JsonTree ColumnTree(const access::Column& column, bool isJet3) {
  const access::ColumnDefinition& definition = column.definition;
  JsonTree tree = JsonTree::Object();
  tree.Set("name", JsonTree::Text(definition.name));
  tree.Set("type", JsonTree::Text(TypeName(definition.type)));
  tree.Set("number", JsonTree::Number(definition.id));
  // Lengths are stored in bytes. From Jet 4 on a character takes two of them, and people know lengths in characters.
  const bool isWideText = definition.type == access::ColumnType::Text && !isJet3;
  const std::size_t length = isWideText ? definition.length / 2U : definition.length;
  // A long value has no length of its own; what the definition holds there means nothing.
  tree.Set("length", JsonTree::Number(definition.IsLongValue() ? 0 : length));
  if (definition.type == access::ColumnType::Numeric) {
    tree.Set("precision", JsonTree::Number(definition.precision));
    tree.Set("scale", JsonTree::Number(definition.scale));
  }
  tree.Set("variable", JsonTree::Flag(!definition.IsFixed()));
  tree.Set("autonumber", JsonTree::Flag(definition.IsAutoNumber() || definition.IsAutoGuid()));
  tree.Set("required", JsonTree::Flag(column.required));
  return tree;
}

/// A table's indexes in a file are of two kinds: a logical one has the name and says what it is for, a real one has the
/// columns and the tree. Several of the former may share one of the latter, as a relationship does with a primary key.
JsonTree IndexTree(const access::Table& table, const access::LogicalIndexDefinition& logical) {
  access::RealIndexDefinition real;
  const auto& indexes = table.Definition().realIndexes;
  // In a damaged file it may name none; the index is shown without columns then.
  if (logical.realIndex < indexes.size()) real = indexes[logical.realIndex];
  JsonTree columns = JsonTree::Array();
  for (const access::IndexColumn& column : real.columns) {
    // An index knows its columns by permanent number; of a damaged one the name is empty.
    const access::ColumnDefinition* definition = table.Definition().FindColumn(column.columnId);
    JsonTree tree = JsonTree::Object();
    tree.Set("name", JsonTree::Text(definition == nullptr ? std::string() : definition->name));
    columns.Add(std::move(tree.Set("ascending", JsonTree::Flag(column.ascending))));
  }
  JsonTree tree = JsonTree::Object();
  tree.Set("name", JsonTree::Text(logical.name)).Set("columns", std::move(columns));
  // A primary key is unique even where its flag does not say so.
  tree.Set("unique", JsonTree::Flag(real.unique || logical.kind == Kind::PrimaryKey));
  tree.Set("primaryKey", JsonTree::Flag(logical.kind == Kind::PrimaryKey));
  tree.Set("ignoreNulls", JsonTree::Flag(real.ignoreNulls)).Set("required", JsonTree::Flag(real.required));
  tree.Set("foreignKey", JsonTree::Flag(logical.kind == Kind::Relationship));
  return tree;
}

/// Byte by byte, so that a name becomes the same on every system, whatever its file system takes for a letter.
std::string Escaped(std::string_view text) {
  constexpr std::string_view kKept = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789 ._-()";
  std::string escaped;
  for (const char character : text) {
    const auto byte = static_cast<unsigned char>(character);
    if (kKept.find(character) != std::string_view::npos) {
      escaped += character;
    } else {
      escaped += "%" + HexadecimalText({&byte, 1});
    }
  }
  return escaped;
}

// 64 letters of most scripts take more bytes, escaped, than a file system gives to a name.
std::string CutMark(const std::string& table) {
  const auto digest = Sha256({reinterpret_cast<const std::uint8_t*>(table.data()), table.size()});
  return kCutMark + HexadecimalText(std::span(digest).first(kCutDigestSize));
}

/// The name of a table's file. A name that is cut has a digest of the whole name behind the mark, so that two long
/// names with one beginning stay two files.
std::string FileName(const std::string& table) {
  std::string name = Escaped(table) + kTextFileEnding;
  if (name.size() <= kLongestFileName) return name;
  const std::string end = CutMark(table) + kTextFileEnding;
  std::size_t kept = table.size();
  // From the end, byte by byte; an escape is never cut, since whole bytes are dropped before it is made.
  while (Escaped(table.substr(0, kept)).size() + end.size() > kLongestFileName) --kept;
  return Escaped(table.substr(0, kept)) + end;
}

/// `rows` is counted in the rows that were read, not taken from the counter in the table's definition, which may
/// differ.
JsonTree TableTree(const access::Table& table, std::size_t rows, bool isJet3) {
  JsonTree columns = JsonTree::Array();
  for (const std::size_t i : ColumnOrder(table)) columns.Add(ColumnTree(table.Columns()[i], isJet3));
  std::vector<access::LogicalIndexDefinition> sorted = table.Definition().logicalIndexes;
  // The name of an index is its own within a table; where a damaged file repeats one, the file's order stays.
  std::ranges::stable_sort(sorted, {}, &access::LogicalIndexDefinition::name);
  JsonTree indexes = JsonTree::Array();
  for (const access::LogicalIndexDefinition& logical : sorted) indexes.Add(IndexTree(table, logical));
  JsonTree tree = JsonTree::Object();
  tree.Set("name", JsonTree::Text(table.Name())).Set("file", JsonTree::Text(FileName(table.Name())));
  tree.Set("rows", JsonTree::Number(rows));
  tree.Set("columns", std::move(columns)).Set("indexes", std::move(indexes));
  return tree;
}

/// The primary table is the one that is referred to.
JsonTree RelationshipTree(const access::Relationship& relationship) {
  JsonTree tree = JsonTree::Object();
  tree.Set("name", JsonTree::Text(relationship.name));
  tree.Set("primaryTable", JsonTree::Text(relationship.primaryTable));
  tree.Set("primaryColumns", JsonTree::Texts(relationship.primaryColumns));
  tree.Set("foreignTable", JsonTree::Text(relationship.foreignTable));
  tree.Set("foreignColumns", JsonTree::Texts(relationship.foreignColumns));
  tree.Set("enforced", JsonTree::Flag(relationship.enforced));
  tree.Set("cascadeUpdate", JsonTree::Flag(relationship.cascadeUpdates));
  tree.Set("cascadeDelete", JsonTree::Flag(relationship.cascadeDeletes));
  return tree;
}

/// Raises ProviderFailure at the first row that cannot be read: a dump that left rows out would compare as another
/// file.
std::vector<std::string> LinesOf(access::Table& table) {
  const std::vector<std::size_t> order = ColumnOrder(table);
  std::vector<std::string> lines;
  for (auto row = table.Next(std::nullopt); row.has_value(); row = table.Next(row)) {
    const access::RowValues values = table.Read(*row);
    std::string line;
    for (const std::size_t i : order) line += (i == order.front() ? "" : "\t") + TsvText(values[i]);
    lines.push_back(std::move(line));
  }
  std::ranges::sort(lines);
  return lines;
}

/// Escaped as the values are, for a name may hold a tab.
std::string Header(const access::Table& table) {
  std::string header;
  for (const std::size_t i : ColumnOrder(table))
    header += (header.empty() ? "" : "\t") + TsvText(table.Columns()[i].definition.name);
  return header + "\n";
}

/// The tables and links of users, each list ordered by name.
struct UserObjects {
  std::vector<std::string> tables;
  std::vector<std::string> links;
};

/// Links are only named: their rows are in another file, which may not be there.
UserObjects FindUserObjects(access::Database& database) {
  UserObjects objects;
  for (const access::CatalogEntry& entry : database.Tables())
    if (!entry.isSystem) (entry.isLinked ? objects.links : objects.tables).push_back(entry.name);
  std::ranges::sort(objects.tables);
  std::ranges::sort(objects.links);
  return objects;
}

/// The relationships in which no table of the system takes part, ordered by name.
std::vector<access::Relationship> FindUserRelationships(access::Database& database) {
  std::set<std::string> systemTables;
  for (const access::CatalogEntry& entry : database.Tables())
    if (entry.isSystem) systemTables.insert(access::NameKey(entry.name));
  std::vector<access::Relationship> relationships;
  for (const access::Relationship& relationship : database.Relationships()) {
    // Names of tables without regard to case, as the database compares them.
    const bool isSystem = systemTables.contains(access::NameKey(relationship.primaryTable)) ||
                          systemTables.contains(access::NameKey(relationship.foreignTable));
    if (!isSystem) relationships.push_back(relationship);
  }
  std::ranges::stable_sort(relationships, {}, &access::Relationship::name);
  return relationships;
}

std::string JoinLines(const std::string& header, const std::vector<std::string>& lines) {
  std::string text = header;
  for (const std::string& line : lines) text.append(line).push_back('\n');
  return text;
}

}  // namespace

void DumpDatabase(access::Database& database,
                  const std::function<void(const std::string& name, const std::string& text)>& write) {
  const access::ReadStatement statement(database.GetPager());
  const bool isJet3 = database.GetPager().IsJet3();
  const UserObjects objects = FindUserObjects(database);
  JsonTree tables = JsonTree::Array();
  for (const std::string& name : objects.tables) {
    const std::shared_ptr<access::Table> table = database.OpenTable(name);
    const std::vector<std::string> lines = LinesOf(*table);
    tables.Add(TableTree(*table, lines.size(), isJet3));
    // Table by table, so that only one is in memory; the schema comes last, as it has the number of rows of each.
    write(FileName(name), JoinLines(Header(*table), lines));
  }
  JsonTree relationships = JsonTree::Array();
  for (const access::Relationship& relationship : FindUserRelationships(database))
    relationships.Add(RelationshipTree(relationship));
  JsonTree schema = JsonTree::Object();
  schema.Set("jet", JsonTree::Number(isJet3 ? 3 : 4)).Set("tables", std::move(tables));
  schema.Set("relationships", std::move(relationships)).Set("linkedTables", JsonTree::Texts(objects.links));
  write("schema.json", schema.Write() + "\n");
}

// In a statement of its own, or the caller's where one is open.
std::string TableText(access::Database& database, const std::string& table) {
  const access::ReadStatement statement(database.GetPager());
  const std::shared_ptr<access::Table> opened = database.OpenTable(table);
  return JoinLines(Header(*opened), LinesOf(*opened));
}

}  // namespace tavi::host
