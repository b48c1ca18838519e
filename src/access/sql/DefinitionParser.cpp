#include "access/sql/DefinitionParser.h"

#include <algorithm>

#include "access/sql/ColumnTypes.h"
#include "access/sql/ExpressionParser.h"
#include "platform/values/Text.h"

namespace tavi::access::sql {
namespace {

constexpr const char* kPrimaryKeyName = "PrimaryKey";

[[noreturn]] void FailRelationship(const TokenStream& stream) {
  stream.Fail(stream.Peek().position, "Relationships cannot be made by a statement");
}

/// PRIMARY KEY or UNIQUE, if one comes next: an index without a name and columns.
std::optional<IndexDesign> ReadKeyWords(TokenStream& stream) {
  IndexDesign index;
  index.unique = true;
  if (stream.TakeWord("UNIQUE")) return index;
  if (stream.Peek().IsWord("REFERENCES") || stream.Peek().IsWord("FOREIGN")) FailRelationship(stream);
  if (stream.Peek().IsWord("CHECK")) {
    stream.Fail(stream.Peek().position, "Validation rules cannot be made by a statement");
  }
  if (!stream.TakeWord("PRIMARY")) return std::nullopt;
  stream.ExpectWord("KEY");
  index.primaryKey = true;
  index.required = true;
  return index;
}

/// An unnamed key is named after what it is: PrimaryKey, or its first column.
void NameKey(IndexDesign& index, std::string name) {
  index.name = !name.empty() ? std::move(name) : index.primaryKey ? kPrimaryKeyName : index.columns.front().name;
}

void ReadKeyColumns(TokenStream& stream, IndexDesign& index) {
  stream.ExpectSymbol("(");
  do {
    IndexDesign::Column column;
    column.name = stream.ExpectAnyName("a column name");
    column.ascending = !stream.TakeWord("DESC");
    if (column.ascending) stream.TakeWord("ASC");
    index.columns.push_back(std::move(column));
  } while (stream.TakeSymbol(","));
  stream.ExpectSymbol(")");
}

/// [CONSTRAINT name] PRIMARY KEY (columns) or UNIQUE (columns).
IndexDesign ReadTableConstraint(TokenStream& stream) {
  stream.EnterPart("CONSTRAINT clause");
  std::string name;
  if (stream.TakeWord("CONSTRAINT")) name = stream.ExpectName("the constraint's name");
  std::optional<IndexDesign> index = ReadKeyWords(stream);
  if (!index) stream.FailExpecting("PRIMARY KEY or UNIQUE");
  ReadKeyColumns(stream, *index);
  NameKey(*index, std::move(name));
  return std::move(*index);
}

void ReadDefault(TokenStream& stream, ColumnDesign& column) {
  stream.TakeSymbol("=");
  const std::size_t start = stream.Place();
  ReadExpression(stream);
  column.defaultExpression = stream.TextSince(start);
}

/// PRIMARY KEY or UNIQUE behind a column, with or without CONSTRAINT name.
std::optional<IndexDesign> ReadColumnKey(TokenStream& stream, const ColumnDesign& column) {
  std::string name;
  const bool isNamed = stream.TakeWord("CONSTRAINT");
  if (isNamed) name = stream.ExpectName("the constraint's name");
  std::optional<IndexDesign> index = ReadKeyWords(stream);
  if (!index && isNamed) stream.FailExpecting("PRIMARY KEY or UNIQUE");
  if (!index) return index;
  index->columns.push_back({column.name, true});
  NameKey(*index, std::move(name));
  return index;
}

/// Name, type and what follows them, up to the comma or the end.
ColumnDesign ReadColumnDesign(TokenStream& stream, std::vector<IndexDesign>& indexes) {
  stream.EnterPart("column definition");
  ColumnDesign column;
  column.name = stream.ExpectName("a column name");
  ReadColumnType(stream, column);
  for (;;) {
    if (stream.TakeWord("NOT")) {
      stream.ExpectWord("NULL");
      column.required = true;
    } else if (stream.TakeWord("DEFAULT")) {
      ReadDefault(stream, column);
    } else if (stream.TakeWord("WITH")) {
      if (!stream.TakeWord("COMP")) stream.ExpectWord("COMPRESSION");
      column.compressed = true;
    } else if (std::optional<IndexDesign> index = ReadColumnKey(stream, column)) {
      indexes.push_back(std::move(*index));
    } else if (!stream.TakeWord("NULL")) {
      return column;
    }
  }
}

bool BeginsTableConstraint(const TokenStream& stream) {
  const Token& next = stream.Peek(1);
  const bool isKey = stream.Peek().IsWord("PRIMARY") || stream.Peek().IsWord("FOREIGN");
  return stream.Peek().IsWord("CONSTRAINT") || (isKey && next.IsWord("KEY")) ||
         ((stream.Peek().IsWord("UNIQUE") || stream.Peek().IsWord("CHECK")) && next.IsSymbol("("));
}

/// Two keys of one column need two names.
void MakeNamesUnique(std::vector<IndexDesign>& indexes) {
  for (std::size_t i = 1; i < indexes.size(); ++i) {
    const std::string name = indexes[i].name;
    const auto isTaken = [&](const IndexDesign& other) { return EqualIgnoringCase(other.name, indexes[i].name); };
    const auto end = indexes.begin() + static_cast<std::ptrdiff_t>(i);
    for (int number = 1; std::any_of(indexes.begin(), end, isTaken); ++number) {
      indexes[i].name = name + std::to_string(number);
    }
  }
}

Statement ReadCreateTable(TokenStream& stream) {
  CreateTable create;
  stream.EnterPart("CREATE TABLE statement");
  create.design.name = stream.ExpectName("the new table's name");
  stream.ExpectSymbol("(");
  do {
    if (BeginsTableConstraint(stream)) {
      create.design.indexes.push_back(ReadTableConstraint(stream));
    } else {
      create.design.columns.push_back(ReadColumnDesign(stream, create.design.indexes));
    }
  } while (stream.TakeSymbol(","));
  const std::size_t position = stream.Peek().position;
  stream.ExpectSymbol(")");
  if (create.design.columns.empty()) stream.Fail(position, "Syntax error in CREATE TABLE statement: it has no columns");
  MakeNamesUnique(create.design.indexes);
  return create;
}

void ReadIndexOptions(TokenStream& stream, IndexDesign& index) {
  if (!stream.TakeWord("WITH")) return;
  do {
    if (stream.TakeWord("PRIMARY")) {
      index.primaryKey = true;
      index.unique = true;
      index.required = true;
    } else if (stream.TakeWord("DISALLOW")) {
      stream.ExpectWord("NULL");
      index.required = true;
    } else if (stream.TakeWord("IGNORE")) {
      stream.ExpectWord("NULL");
      index.ignoreNulls = true;
    } else {
      stream.FailExpecting("PRIMARY, DISALLOW NULL or IGNORE NULL");
    }
  } while (stream.TakeSymbol(","));
}

Statement ReadCreateIndex(TokenStream& stream, bool unique) {
  CreateIndex create;
  stream.EnterPart("CREATE INDEX statement");
  create.design.unique = unique;
  create.design.name = stream.ExpectName("the new index's name");
  stream.ExpectWord("ON");
  create.table = stream.ExpectName("a table name");
  ReadKeyColumns(stream, create.design);
  ReadIndexOptions(stream, create.design);
  return create;
}

Statement ReadAlterAdd(TokenStream& stream, std::string table) {
  if (BeginsTableConstraint(stream)) return CreateIndex{std::move(table), ReadTableConstraint(stream)};
  stream.TakeWord("COLUMN");
  std::vector<IndexDesign> indexes;
  AddColumn add{std::move(table), ReadColumnDesign(stream, indexes), std::nullopt};
  if (indexes.size() > 1) stream.Fail(stream.Peek().position, "A new column can have one key only");
  if (!indexes.empty()) add.index = std::move(indexes.front());
  return add;
}

Statement ReadAlterDrop(TokenStream& stream, std::string table) {
  if (stream.TakeWord("CONSTRAINT")) return DropIndex{std::move(table), stream.ExpectAnyName("a constraint's name")};
  stream.TakeWord("COLUMN");
  return DropColumn{std::move(table), stream.ExpectAnyName("a column name")};
}

}  // namespace

Statement ReadCreate(TokenStream& stream) {
  stream.EnterPart("CREATE statement");
  if (stream.TakeWord("TABLE")) return ReadCreateTable(stream);
  const bool unique = stream.TakeWord("UNIQUE");
  if (!stream.TakeWord("INDEX")) stream.FailExpecting(unique ? "INDEX" : "TABLE or INDEX");
  return ReadCreateIndex(stream, unique);
}

Statement ReadAlter(TokenStream& stream) {
  stream.EnterPart("ALTER TABLE statement");
  stream.ExpectWord("TABLE");
  std::string table = stream.ExpectName("a table name");
  if (stream.TakeWord("ADD")) return ReadAlterAdd(stream, std::move(table));
  if (stream.TakeWord("DROP")) return ReadAlterDrop(stream, std::move(table));
  if (stream.Peek().IsWord("ALTER")) {
    stream.Fail(stream.Peek().position,
                "The type of a column cannot be changed: add a new column, copy the values, and drop the old one");
  }
  stream.FailExpecting("ADD or DROP");
}

Statement ReadDrop(TokenStream& stream) {
  stream.EnterPart("DROP statement");
  if (stream.TakeWord("TABLE")) return DropTable{stream.ExpectName("a table name")};
  if (!stream.TakeWord("INDEX")) stream.FailExpecting("TABLE or INDEX");
  DropIndex drop;
  drop.index = stream.ExpectName("an index name");
  stream.ExpectWord("ON");
  drop.table = stream.ExpectName("a table name");
  return drop;
}

}  // namespace tavi::access::sql
