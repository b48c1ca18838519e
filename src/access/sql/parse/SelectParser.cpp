// SELECT, and the tables behind FROM. What stands in brackets may be left out, "..." may be repeated:
//
//   select    SELECT [ALL | DISTINCT | DISTINCTROW] [TOP n [PERCENT]] item, ... [INTO table]
//               [FROM sources] [WHERE expression] [GROUP BY expression, ...] [HAVING expression]
//   selects   select [UNION [ALL] select] ... [ORDER BY expression [ASC | DESC], ...] [WITH OWNERACCESS OPTION]
//   item      * | table.* | expression [AS name]
//   sources   joins [, joins] ...
//   joins     source [INNER | LEFT | RIGHT] JOIN source ON expression ...
//   source    table [AS] [name] | (selects) [AS] [name] | (sources)
//
// Sources become a tree of two by two, from the left: "A, B Left Join C On ..." is each row of A with each of (B Left
// Join C). A tree node notes how deep it is, so that a statement that would be too deep for later walks is refused
// here.
#include <algorithm>
#include <limits>

#include "access/sql/parse/Parser.h"

namespace tavi::access::sql {
namespace {

/// Reads what stands behind FROM and UPDATE, up to the first word that is part of none.
class SourceReader {
 public:
  explicit SourceReader(TokenStream& stream) : stream_(stream) {}

  /// Tables and joins, separated by commas.
  std::unique_ptr<Source> ReadList() {
    // Brackets lead back here, so this is where nesting is counted.
    const TokenStream::Level level(stream_);
    std::unique_ptr<Source> left = ReadJoins();
    while (stream_.Peek().IsSymbol(",")) {
      const std::size_t position = stream_.Take().position;
      left = Join(Source::Join::Cross, position, std::move(left), ReadJoins());
    }
    return left;
  }

 private:
  /// Joins group from the left unless brackets say otherwise; each has its condition behind it.
  std::unique_ptr<Source> ReadJoins() {
    std::unique_ptr<Source> left = ReadPrimary();
    for (;;) {
      const std::size_t position = stream_.Peek().position;
      const std::optional<Source::Join> kind = ReadJoinWords();
      if (!kind) return left;
      left = Join(*kind, position, std::move(left), ReadPrimary());
      stream_.ExpectWord("ON");
      left->on = ReadExpression(stream_);
      left->depth = std::max(left->depth, stream_.Above(left->on->depth));
    }
  }

  /// Nothing when no join begins here. A plain JOIN is an inner one; OUTER says nothing that LEFT and RIGHT do not.
  std::optional<Source::Join> ReadJoinWords() {
    std::optional<Source::Join> kind;
    const Token& word = stream_.Peek();
    if (word.IsWord("JOIN")) kind = Source::Join::Inner;
    if (stream_.TakeWord("INNER")) kind = Source::Join::Inner;
    if (word.IsWord("LEFT")) kind = Source::Join::Left;
    if (word.IsWord("RIGHT")) kind = Source::Join::Right;
    // Its word is reserved for this message: it would be taken as another name for the table before it.
    if (word.IsWord("FULL")) {
      stream_.Fail(word.position, "Access has no full outer joins: unite a left join and a right join with UNION");
    }
    if (!kind) return kind;
    if (*kind != Source::Join::Inner) {
      stream_.Take();
      stream_.TakeWord("OUTER");
    }
    stream_.ExpectWord("JOIN");
    return kind;
  }

  /// As deep as the deeper of both sides, and one more; the condition may make it deeper still.
  std::unique_ptr<Source> Join(Source::Join kind, std::size_t position, std::unique_ptr<Source> left,
                               std::unique_ptr<Source> right) {
    auto join = std::make_unique<Source>();
    join->kind = Source::Kind::Join;
    join->join = kind;
    join->position = position;
    join->depth = stream_.Above(left->depth, right->depth);
    join->left = std::move(left);
    join->right = std::move(right);
    return join;
  }

  /// Brackets hold a sub-select, or sources that are to be joined before others.
  std::unique_ptr<Source> ReadPrimary() {
    const std::size_t position = stream_.Peek().position;
    if (stream_.TakeSymbol("(")) {
      if (stream_.Peek().IsWord("SELECT")) return ReadSubselect(position);
      std::unique_ptr<Source> inner = ReadList();
      stream_.ExpectSymbol(")");
      return inner;
    }
    auto source = std::make_unique<Source>();
    source->position = position;
    source->table = stream_.ExpectName("a table name");
    // Access names a table of another file as "T In 'path'" or "path.T".
    if (stream_.Peek().IsWord("IN") || stream_.Peek().IsSymbol(".")) {
      stream_.Fail(stream_.Peek().position, "Tables of other files cannot be named in a statement");
    }
    ReadAlias(*source);
    return source;
  }

  /// Its columns are found by its own names; the name behind the bracket is that of all its columns outside.
  std::unique_ptr<Source> ReadSubselect(std::size_t position) {
    auto source = std::make_unique<Source>();
    source->kind = Source::Kind::Subselect;
    source->position = position;
    source->subselect = ReadSelect(stream_);
    source->depth = stream_.Above(source->subselect->depth);
    // The sub-select has left the name of its own last part behind.
    stream_.EnterPart("FROM clause");
    stream_.ExpectSymbol(")");
    ReadAlias(*source);
    return source;
  }

  /// A name without AS must be no reserved word, which begins the next part.
  void ReadAlias(Source& source) {
    if (stream_.TakeWord("AS")) {
      source.alias = stream_.ExpectName("another name for the table");
    } else if (stream_.NextIsName()) {
      source.alias = stream_.Take().text;
    }
  }

  TokenStream& stream_;
};

class SelectReader {
 public:
  explicit SelectReader(TokenStream& stream) : stream_(stream) {}

  /// The select with its unions and the order of the whole.
  std::shared_ptr<Select> ReadAll() {
    const TokenStream::Level level(stream_);
    // Columns, aggregates and sub-selects are numbered through all selects of a union, which are planned as one.
    const TokenStream::SelectNumbers numbers(stream_);
    std::vector<std::shared_ptr<Select>> chain = {ReadOne()};
    while (stream_.TakeWord("UNION")) {
      chain.back()->unionAll = stream_.TakeWord("ALL");
      chain.push_back(ReadOne());
    }
    std::shared_ptr<Select> first = chain.front();
    // The order at the end is that of the whole union, not of its last select.
    ReadOrder(*first);
    ReadOwnerOption();
    // From the last select to the first: each is as deep as all that follow it, and one more.
    for (std::size_t i = chain.size() - 1; i > 0; --i) {
      Deepen(*chain[i - 1], chain[i]->depth);
      chain[i - 1]->unionWith = chain[i];
    }
    return first;
  }

 private:
  /// A select is deeper than the deepest thing in it.
  void Deepen(Select& select, std::uint16_t depth) { select.depth = std::max(select.depth, stream_.Above(depth)); }

  ExpressionPointer ReadIn(Select& select) {
    ExpressionPointer expression = ReadExpression(stream_);
    Deepen(select, expression->depth);
    return expression;
  }

  /// One select without what stands behind a union. Parts are named as they are entered, for errors.
  std::shared_ptr<Select> ReadOne() {
    auto select = std::make_shared<Select>();
    stream_.EnterPart("SELECT statement");
    select->position = stream_.Peek().position;
    stream_.ExpectWord("SELECT");
    ReadPredicates(*select);
    do select->items.push_back(ReadItem(*select));
    while (stream_.TakeSymbol(","));
    if (stream_.TakeWord("INTO")) select->into = stream_.ExpectName("the new table's name");
    if (stream_.TakeWord("FROM")) {
      stream_.EnterPart("FROM clause");
      select->from = ReadSources(stream_);
      Deepen(*select, select->from->depth);
    }
    if (stream_.TakeWord("WHERE")) {
      stream_.EnterPart("WHERE clause");
      select->where = ReadIn(*select);
    }
    ReadGroups(*select);
    return select;
  }

  /// DISTINCT compares the rows that come out, DISTINCTROW those that they were made of.
  void ReadPredicates(Select& select) {
    select.distinct = stream_.TakeWord("DISTINCT");
    select.distinctRow = !select.distinct && stream_.TakeWord("DISTINCTROW");
    if (!select.distinct && !select.distinctRow) stream_.TakeWord("ALL");
    // A column may be called Top: only a number behind it makes it the word.
    if (!stream_.Peek().IsWord("TOP") || stream_.Peek(1).kind != TokenKind::Literal) return;
    stream_.Take();
    const std::size_t position = stream_.Peek().position;
    select.top = stream_.ExpectNumber("the number of rows", 0, std::numeric_limits<std::int32_t>::max());
    select.topPercent = stream_.TakeWord("PERCENT");
    if (select.topPercent && *select.top > 100) stream_.Fail(position, "Syntax error: TOP takes at most 100 PERCENT");
  }

  /// Another name may be a reserved word, as AS says that one follows.
  SelectItem ReadItem(Select& select) {
    SelectItem item;
    const Token& token = stream_.Peek();
    const bool isName = token.kind == TokenKind::QuotedName || token.kind == TokenKind::Name;
    if (token.IsSymbol("*")) {
      item.expression = MakeExpression(ExpressionKind::Star, stream_.Take().position);
      return item;
    }
    // Told from a column by the star two tokens on. "T!*" means the same.
    if (isName && (stream_.Peek(1).IsSymbol(".") || stream_.Peek(1).IsSymbol("!")) && stream_.Peek(2).IsSymbol("*")) {
      item.expression = MakeExpression(ExpressionKind::Star, token.position);
      item.expression->qualifier = stream_.ExpectName("a table name");
      stream_.Take();
      stream_.Take();
      return item;
    }
    item.expression = ReadIn(select);
    if (stream_.TakeWord("AS")) item.alias = stream_.ExpectAnyName("the column's new name");
    return item;
  }

  void ReadGroups(Select& select) {
    if (stream_.TakeWord("GROUP")) {
      stream_.EnterPart("GROUP BY clause");
      stream_.ExpectWord("BY");
      do select.groupBy.push_back(ReadIn(select));
      while (stream_.TakeSymbol(","));
    }
    if (stream_.TakeWord("HAVING")) {
      stream_.EnterPart("HAVING clause");
      select.having = ReadIn(select);
    }
  }

  /// Only once, at the end: a select within a union has no order of its own.
  void ReadOrder(Select& select) {
    if (!stream_.TakeWord("ORDER")) return;
    stream_.EnterPart("ORDER BY clause");
    stream_.ExpectWord("BY");
    do {
      OrderItem item;
      item.expression = ReadIn(select);
      item.descending = stream_.TakeWord("DESC");
      if (!item.descending) stream_.TakeWord("ASC");
      select.orderBy.push_back(std::move(item));
    } while (stream_.TakeSymbol(","));
  }

  /// Access's own queries carry it; it has no meaning without its user accounts.
  void ReadOwnerOption() {
    if (!stream_.Peek().IsWord("WITH") || !stream_.Peek(1).IsWord("OWNERACCESS")) return;
    stream_.Take();
    stream_.Take();
    stream_.ExpectWord("OPTION");
  }

  TokenStream& stream_;
};

}  // namespace

std::shared_ptr<Select> ReadSelect(TokenStream& stream) {
  return SelectReader(stream).ReadAll();
}

std::unique_ptr<Source> ReadSources(TokenStream& stream) {
  return SourceReader(stream).ReadList();
}

}  // namespace tavi::access::sql
