// A statement from its text to its outcome: looked up or parsed (Prepare), planned when there is no plan or the tables
// are no longer those of the plan (MakeReady), run. Parsing needs no lock; planning and running happen inside one
// statement of the pager, so that the definitions which the plan was made for are those of the rows that it reads.
//
// A query takes the lock for readers. A change takes that for the writer before it looks at anything, and is undone as
// a whole when it fails at any point (StatementRunner::Change).
#include "access/sql/run/Session.h"

#include "access/sql/expression/Functions.h"
#include "access/sql/parse/Parser.h"
#include "access/sql/plan/ExecutionErrors.h"
#include "access/sql/run/KeysetResult.h"
#include "access/sql/run/PlanRun.h"
#include "access/sql/run/ResultSet.h"
#include "platform/values/Text.h"

namespace tavi::access::sql {

namespace {

/// Stands before the names of whole tables among the remembered texts; no statement begins with it.
constexpr char kTableMark = '\x01';

/// A whole table is opened by its bare name, which need not be one that a text could hold without brackets.
Statement SelectAll(std::string_view table) {
  Select select;
  SelectItem star;
  star.expression = std::make_unique<Expression>();
  star.expression->kind = ExpressionKind::Star;
  select.items.push_back(std::move(star));
  select.from = std::make_unique<Source>();
  select.from->table = table;
  return select;
}

/// SELECT ... INTO makes a table and is a change.
bool IsQuery(const Statement& statement) {
  const Select* select = std::get_if<Select>(&statement);
  return select != nullptr && select->into.empty();
}

/// What changes neither rows nor transactions, which have been dealt with before.
bool IsDefinition(const Statement& statement) {
  return !std::holds_alternative<Select>(statement) && !std::holds_alternative<Insert>(statement) &&
         !std::holds_alternative<Update>(statement) && !std::holds_alternative<Delete>(statement);
}

std::vector<ResultColumn> ColumnsOf(const SelectPlan& plan) {
  std::vector<ResultColumn> columns;
  for (const OutputColumn& output : plan.outputs) columns.push_back(output.column);
  return columns;
}

/// The statement behind a leading EXPLAIN; nothing when the text does not begin with that word.
std::optional<std::string_view> ExplainedStatement(std::string_view text) {
  // The word is no part of the grammar. It is cut off before parsing, so that the statement behind it is remembered,
  // and its plan with it, as if it had been run.
  constexpr std::string_view kWord = "EXPLAIN";
  constexpr std::string_view kBlanks = " \t\r\n";
  const std::size_t begin = std::min(text.find_first_not_of(kBlanks), text.size());
  text.remove_prefix(begin);
  if (!EqualIgnoringCase(text.substr(0, kWord.size()), kWord)) return std::nullopt;
  text.remove_prefix(kWord.size());
  if (!text.empty() && kBlanks.find(text.front()) == std::string_view::npos) return std::nullopt;
  text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
  return text;
}

/// A plan's lines as the rows of one column.
std::unique_ptr<ResultSet> PlanRowsOf(const std::string& plan) {
  std::vector<RowValues> rows;
  // A definition would give an empty result, which says nothing.
  std::string_view lines = plan.empty() ? "definition, no plan" : std::string_view(plan);
  while (!lines.empty()) {
    const std::size_t end = std::min(lines.find('\n'), lines.size());
    rows.push_back({Value(std::string(lines.substr(0, end)))});
    lines.remove_prefix(std::min(end + 1, lines.size()));
  }
  return std::make_unique<ValuesResult>(std::vector<ResultColumn>{{"Plan", "", "", ado::DataType::WChar}},
                                        std::move(rows));
}

}  // namespace

Session::Session(Database& database, std::shared_ptr<const Clock> clock, PlanOptions options,
                 std::function<bool()> isCancelled)
    : runner_(database, std::move(clock), std::move(isCancelled)), options_(options) {}

// A text that does not parse raises here and is not remembered.
std::shared_ptr<PreparedStatement> Session::Prepare(std::string_view key, Parsing parse) {
  if (auto known = statements_.Find(key)) return known;
  auto prepared = std::make_shared<PreparedStatement>(parse());
  statements_.Put(key, prepared);
  return prepared;
}

void Session::MakeReady(PreparedStatement& prepared) {
  // A result set that runs on an older plan keeps it alive; this statement gets a new one.
  if (prepared.plan && IsStillGood(*prepared.plan, runner_.GetDatabase())) return;
  PlanContext context{runner_.GetDatabase(), runner_.IndexesInMemory(), options_};
  Plan(prepared, context);
}

Outcome Session::Run(std::string_view text) {
  if (const auto explained = ExplainedStatement(text)) return {PlanRowsOf(Explain(*explained)), 0};
  const auto parse = [&] { return Parse(text, FindFunction); };
  std::shared_ptr<PreparedStatement> prepared = Prepare(text, parse);
  if (IsQuery(prepared->statement)) {
    const ReadStatement reading(runner_.GetPager());
    MakeReady(*prepared);
    return {OpenSelect(std::move(prepared)), 0};
  }
  // Not inside a statement: they open and close the level that statements stand in.
  if (const auto* control = std::get_if<TransactionControl>(&prepared->statement)) {
    Control(*control);
    return {};
  }
  Outcome outcome;
  runner_.Change([&](StatementContext& context, TableChanges& changes) {
    MakeReady(*prepared);
    outcome.affected = RunChange(*prepared, context, changes);
  });
  return outcome;
}

void Session::Control(const TransactionControl& control) {
  switch (control.action) {
    case TransactionControl::Action::Begin:
      BeginTransaction();
      break;
    case TransactionControl::Action::Commit:
      CommitTransaction();
      break;
    case TransactionControl::Action::Rollback:
      RollbackTransaction();
      break;
  }
}

std::int32_t Session::BeginTransaction() {
  return runner_.GetPager().BeginTransaction();
}

void Session::CommitTransaction() {
  runner_.GetPager().CommitTransaction();
}

// What is remembered of pages the pager drops; record sets learn by the count that their rows may be out of date.
void Session::RollbackTransaction() {
  runner_.GetPager().RollbackTransaction();
  runner_.NoteUndoneChanges();
}

// The plan only says the columns. The rows are found by a walk that goes past damage, which a statement would fail at.
std::unique_ptr<ResultSet> Session::OpenTable(std::string_view name) {
  const std::string key = kTableMark + std::string(name);
  const auto parse = [&] { return SelectAll(name); };
  std::shared_ptr<PreparedStatement> prepared = Prepare(key, parse);
  const ReadStatement reading(runner_.GetPager());
  MakeReady(*prepared);
  Keyset rows = CollectWholeTable(*prepared->plan->sources.front().table);
  std::vector<ResultColumn> columns = ColumnsOf(*prepared->plan);
  return std::make_unique<KeysetResult>(runner_, std::move(prepared), std::move(columns), std::move(rows));
}

bool Session::HasTable(std::string_view name) {
  const ReadStatement reading(runner_.GetPager());
  return runner_.GetDatabase().FindTable(name) != nullptr;
}

// Planning only reads, so that also a statement that would change rows is planned under the readers' lock.
std::string Session::Explain(std::string_view text) {
  const auto parse = [&] { return Parse(text, FindFunction); };
  std::shared_ptr<PreparedStatement> prepared = Prepare(text, parse);
  const ReadStatement reading(runner_.GetPager());
  MakeReady(*prepared);
  return prepared->plan ? Describe(*prepared->plan) : std::string();
}

// Rows of tables are held by their pointers, so that they can be changed; all other results are computed here as a
// whole.
std::unique_ptr<ResultSet> Session::OpenSelect(std::shared_ptr<PreparedStatement> prepared) {
  const SelectPlan& plan = *prepared->plan;
  StatementContext context = runner_.MakeContext();
  std::vector<ResultColumn> columns = ColumnsOf(plan);
  if (!plan.IsKeyset()) {
    return std::make_unique<ValuesResult>(std::move(columns), CollectValues(context, plan, nullptr));
  }
  Keyset rows{CollectKeyset(context, plan), {}};
  return std::make_unique<KeysetResult>(runner_, std::move(prepared), std::move(columns), std::move(rows));
}

std::int64_t Session::RunChange(const PreparedStatement& prepared, StatementContext& context, TableChanges& changes) {
  if (IsDefinition(prepared.statement)) {
    RunDefinition(context, prepared.statement);
    // Remembered plans and indexes may be of a table that is gone, or of another with its page.
    runner_.IndexesInMemory().Clear();
    statements_.Clear();
    return 0;
  }
  const SelectPlan& plan = *prepared.plan;
  if (const auto* insert = std::get_if<Insert>(&prepared.statement)) {
    return RunInsert(context, changes, runner_.ColumnDefaults(), *insert, plan);
  }
  if (const auto* update = std::get_if<Update>(&prepared.statement)) return RunUpdate(context, changes, *update, plan);
  if (const auto* statement = std::get_if<Delete>(&prepared.statement)) {
    return RunDelete(context, changes, *statement, plan);
  }
  return RunSelectInto(context, changes, std::get<Select>(prepared.statement), plan);
}

}  // namespace tavi::access::sql
