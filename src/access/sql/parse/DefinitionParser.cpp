// CREATE, ALTER and DROP. What stands in brackets may be left out, "..." may be repeated:
//
//   CREATE TABLE name (column or constraint, ...)
//   CREATE [UNIQUE] INDEX name ON table (name [ASC | DESC], ...) [WITH PRIMARY | DISALLOW NULL | IGNORE NULL, ...]
//   ALTER TABLE name ADD [COLUMN] column | ADD constraint | ALTER [COLUMN] column
//   ALTER TABLE name DROP [COLUMN] name | DROP CONSTRAINT name
//   DROP TABLE name,  DROP INDEX name ON table
//
//   column      name type [NOT NULL] [DEFAULT expression] [WITH COMPRESSION] [constraint without columns] ...
//   constraint  [CONSTRAINT name] PRIMARY KEY (names) | UNIQUE (names)
//               [CONSTRAINT name] FOREIGN KEY (names) REFERENCES table [(names)] [cascade] ...
//   cascade     ON UPDATE | DELETE CASCADE | NO ACTION
//
// A statement becomes the design of a table, column or index, or a relationship, as the catalogue takes them. Words
// such as PRIMARY or UNIQUE are no reserved words: a column may bear them as a name, so the token behind them decides.
#include <algorithm>

#include "access/sql/parse/Parser.h"
#include "platform/values/Text.h"

namespace tavi::access::sql {
namespace {

// The name that Access gives a primary key.
constexpr const char* kPrimaryKeyName = "PrimaryKey";

/// PRIMARY KEY or UNIQUE, if one comes next: an index without a name and columns.
std::optional<IndexDesign> ReadKeyWords(TokenStream& stream) {
  IndexDesign index;
  index.unique = true;
  if (stream.TakeWord("UNIQUE")) return index;
  // A rule that was taken and then not kept would be worse than none.
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

/// Names in brackets may be reserved words, as nothing else can stand there.
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

/// Names alone: the columns of a relationship have no direction.
std::vector<std::string> ReadColumnNames(TokenStream& stream) {
  std::vector<std::string> names;
  stream.ExpectSymbol("(");
  do {
    names.push_back(stream.ExpectAnyName("a column name"));
  } while (stream.TakeSymbol(","));
  stream.ExpectSymbol(")");
  return names;
}

/// ON UPDATE or ON DELETE with CASCADE or NO ACTION, any number of them.
void ReadCascades(TokenStream& stream, Relationship& relationship) {
  while (stream.TakeWord("ON")) {
    const bool updates = stream.TakeWord("UPDATE");
    if (!updates) stream.ExpectWord("DELETE");
    const bool cascades = stream.TakeWord("CASCADE");
    if (!cascades) {
      stream.ExpectWord("NO");
      stream.ExpectWord("ACTION");
    }
    (updates ? relationship.cascadeUpdates : relationship.cascadeDeletes) = cascades;
  }
}

/// REFERENCES table [(columns)] and what the rows do when their partner changes.
Relationship ReadReferences(TokenStream& stream, std::vector<std::string> columns) {
  Relationship relationship;
  relationship.enforced = true;
  relationship.foreignColumns = std::move(columns);
  const std::size_t position = stream.Peek().position;
  stream.ExpectWord("REFERENCES");
  relationship.primaryTable = stream.ExpectName("the other table's name");
  // Without names the primary key of the other table is meant. Which that is only the catalogue knows.
  if (stream.Peek().IsSymbol("(")) relationship.primaryColumns = ReadColumnNames(stream);
  const bool isComplete =
      relationship.primaryColumns.empty() || relationship.primaryColumns.size() == relationship.foreignColumns.size();
  if (!isComplete) stream.Fail(position, "A relationship needs as many columns in one table as in the other");
  ReadCascades(stream, relationship);
  return relationship;
}

/// FOREIGN KEY (columns) REFERENCES ..., if it comes next.
std::optional<Relationship> ReadForeignKey(TokenStream& stream) {
  if (!stream.TakeWord("FOREIGN")) return std::nullopt;
  stream.ExpectWord("KEY");
  std::vector<std::string> columns = ReadColumnNames(stream);
  return ReadReferences(stream, std::move(columns));
}

using Constraint = std::variant<IndexDesign, Relationship>;

/// [CONSTRAINT name] PRIMARY KEY (columns), UNIQUE (columns) or FOREIGN KEY.
/// The name is read before it is known whose it is.
Constraint ReadTableConstraint(TokenStream& stream) {
  stream.EnterPart("CONSTRAINT clause");
  std::string name;
  if (stream.TakeWord("CONSTRAINT")) name = stream.ExpectName("the constraint's name");
  if (std::optional<Relationship> relationship = ReadForeignKey(stream)) {
    relationship->name = std::move(name);
    return std::move(*relationship);
  }
  std::optional<IndexDesign> index = ReadKeyWords(stream);
  if (!index) stream.FailExpecting("PRIMARY KEY, UNIQUE or FOREIGN KEY");
  ReadKeyColumns(stream, *index);
  NameKey(*index, std::move(name));
  return std::move(*index);
}

/// The expression is parsed so that an error is found now, and kept as its text: that is what the file stores. Access
/// writes an equal sign before it in its own windows.
void ReadDefault(TokenStream& stream, ColumnDesign& column) {
  stream.TakeSymbol("=");
  const std::size_t start = stream.Place();
  ReadExpression(stream);
  column.defaultExpression = stream.TextSince(start);
}

/// The keys and references that the columns of a statement bring along.
struct ColumnConstraints {
  std::vector<IndexDesign> indexes;
  std::vector<Relationship> relationships;
};

/// PRIMARY KEY, UNIQUE or REFERENCES behind a column, with or without CONSTRAINT name. False when none comes next.
bool ReadColumnConstraint(TokenStream& stream, const ColumnDesign& column, ColumnConstraints& constraints) {
  std::string name;
  const bool isNamed = stream.TakeWord("CONSTRAINT");
  if (isNamed) name = stream.ExpectName("the constraint's name");
  if (stream.Peek().IsWord("REFERENCES")) {
    constraints.relationships.push_back(ReadReferences(stream, {column.name}));
    constraints.relationships.back().name = std::move(name);
    return true;
  }
  std::optional<IndexDesign> index = ReadKeyWords(stream);
  if (!index && isNamed) stream.FailExpecting("PRIMARY KEY, UNIQUE or REFERENCES");
  if (!index) return false;
  index->columns.push_back({column.name, true});
  NameKey(*index, std::move(name));
  constraints.indexes.push_back(std::move(*index));
  return true;
}

/// Name, type and what follows them, up to the comma or the end.
/// The words behind the type come in any order. NULL says what is so anyway.
ColumnDesign ReadColumnDesign(TokenStream& stream, ColumnConstraints& constraints) {
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
    } else if (!ReadColumnConstraint(stream, column, constraints) && !stream.TakeWord("NULL")) {
      return column;
    }
  }
}

/// What begins no constraint begins a column: "Unique Long" is a column of that name, "Unique (A)" a constraint.
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

/// Keys and references of all columns are gathered for the table, whose name the references learn here: they were read
/// without knowing it.
Statement ReadCreateTable(TokenStream& stream) {
  CreateTable create;
  stream.EnterPart("CREATE TABLE statement");
  create.design.name = stream.ExpectName("the new table's name");
  stream.ExpectSymbol("(");
  ColumnConstraints constraints;
  do {
    if (!BeginsTableConstraint(stream)) {
      create.design.columns.push_back(ReadColumnDesign(stream, constraints));
      continue;
    }
    Constraint constraint = ReadTableConstraint(stream);
    if (auto* index = std::get_if<IndexDesign>(&constraint)) constraints.indexes.push_back(std::move(*index));
    if (auto* other = std::get_if<Relationship>(&constraint)) constraints.relationships.push_back(std::move(*other));
  } while (stream.TakeSymbol(","));
  for (Relationship& relationship : constraints.relationships) relationship.foreignTable = create.design.name;
  create.design.indexes = std::move(constraints.indexes);
  create.relationships = std::move(constraints.relationships);
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

/// UNIQUE stood before INDEX and is handed on; the options behind the columns can add to it.
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

/// Adding a key is making an index: there is one statement for both from here on.
Statement ReadAlterAdd(TokenStream& stream, std::string table) {
  if (BeginsTableConstraint(stream)) {
    Constraint constraint = ReadTableConstraint(stream);
    if (auto* index = std::get_if<IndexDesign>(&constraint)) return CreateIndex{std::move(table), std::move(*index)};
    AddRelationship add{std::get<Relationship>(std::move(constraint))};
    add.relationship.foreignTable = std::move(table);
    return add;
  }
  stream.TakeWord("COLUMN");
  ColumnConstraints constraints;
  AddColumn add{std::move(table), ReadColumnDesign(stream, constraints), std::nullopt, std::nullopt};
  // The statement for a new column has room for one of each.
  if (constraints.indexes.size() > 1 || constraints.relationships.size() > 1) {
    stream.Fail(stream.Peek().position, "A new column can have one key and one reference only");
  }
  if (!constraints.indexes.empty()) add.index = std::move(constraints.indexes.front());
  if (!constraints.relationships.empty()) {
    add.relationship = std::move(constraints.relationships.front());
    add.relationship->foreignTable = add.table;
  }
  return add;
}

/// The design is that of a new column: what is not said becomes what it is for one, but the default stays.
Statement ReadAlterColumn(TokenStream& stream, std::string table) {
  stream.TakeWord("COLUMN");
  ColumnConstraints constraints;
  ChangeColumn change{std::move(table), ReadColumnDesign(stream, constraints)};
  if (!constraints.indexes.empty() || !constraints.relationships.empty()) {
    stream.Fail(stream.Peek().position, "Keys and references are added by ADD CONSTRAINT");
  }
  return change;
}

/// Which kind of thing a constraint's name belongs to is found out when the statement runs.
Statement ReadAlterDrop(TokenStream& stream, std::string table) {
  if (stream.TakeWord("CONSTRAINT"))
    return DropConstraint{std::move(table), stream.ExpectAnyName("a constraint's name")};
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
  if (stream.TakeWord("ALTER")) return ReadAlterColumn(stream, std::move(table));
  stream.FailExpecting("ADD, ALTER or DROP");
}

// An index is named with its table, since two tables may have indexes of one name.
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
