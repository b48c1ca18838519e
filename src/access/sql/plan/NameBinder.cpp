// Where names lead. A level's plan has a place for each of its expressions, by the number that the parser gave it; a
// column's place says the source and column, and how many levels outwards. A name is sought
//
//   1. among the columns of this level's sources; two that have it are an error, unless a qualifier tells them apart,
//   2. among those of the level around, and so on outwards: an inner level's names hide outer ones,
//   3. among the aliases of this level's select list that are visible where the name stands.
//
// A binding also marks its column as needed, so that only such columns are read from the file.
#include "access/sql/plan/NameBinder.h"

#include "access/sql/parse/Expression.h"
#include "access/sql/plan/ExecutionErrors.h"
#include "access/sql/plan/SelectPlanner.h"
#include "platform/values/Text.h"

namespace tavi::access::sql {
namespace {

/// The place of an expression's number in a list, which is made long enough.
template <typename Item>
Item& PlaceOf(const Expression& expression, std::vector<Item>& list) {
  if (list.size() <= expression.number) list.resize(expression.number + 1);
  return list[expression.number];
}

}  // namespace

std::optional<std::size_t> FindColumn(const PlannedSource& source, std::string_view name) {
  if (source.table) return source.table->FindColumn(name);
  for (std::size_t i = 0; i < source.derived->outputs.size(); ++i) {
    if (EqualIgnoringCase(source.derived->outputs[i].column.name, name)) return i;
  }
  return std::nullopt;
}

// From left to right, so that the numbers of sources follow the text and SELECT * shows them in that order.
void NameBinder::AddSources(const Source& tree) {
  if (tree.kind == Source::Kind::Join) {
    AddSources(*tree.left);
    AddSources(*tree.right);
    return;
  }
  AddLeaf(tree);
}

void NameBinder::AddLeaf(const Source& leaf) {
  if (plan_.sources.size() >= kMaximumSources) {
    throw StatementError("The statement names more than " + std::to_string(kMaximumSources) + " tables.");
  }
  PlannedSource source;
  source.name = leaf.alias.empty() ? leaf.table : leaf.alias;
  std::size_t columns = 0;
  if (leaf.kind == Source::Kind::Subselect) {
    // A derived table stands beside the other sources and does not see their rows, nor those of outer levels: it is run
    // once.
    source.derived = PlanSelect(context_, *leaf.subselect, nullptr);
    columns = source.derived->outputs.size();
    source.plannedRowCount = static_cast<std::uint32_t>(EstimateRows(*source.derived));
  } else {
    source.table = context_.database.FindTable(leaf.table);
    if (!source.table) throw UnknownTableError(leaf.table);
    source.plannedRowCount = source.table->RowCount();
    columns = source.table->Columns().size();
  }
  // The same table may be named twice, but not under one name. A derived table may have none; its columns are then
  // named alone.
  for (const PlannedSource& other : plan_.sources) {
    if (!source.name.empty() && EqualIgnoringCase(other.name, source.name)) {
      throw StatementError("Two tables of the statement have the name '" + source.name +
                           "'. Give one of them another name with AS.");
    }
  }
  source.searchColumns.assign(columns, false);
  source.outputColumns.assign(columns, false);
  numbers_[&leaf] = plan_.sources.size();
  plan_.sources.push_back(std::move(source));
}

// Ambiguity is an error of one level only: an outer level is not asked when this one has the name.
std::optional<Slot> NameBinder::FindColumn(const Expression& column) const {
  std::optional<Slot> found;
  for (std::size_t i = 0; i < plan_.sources.size(); ++i) {
    const PlannedSource& source = plan_.sources[i];
    if (!column.qualifier.empty() && !EqualIgnoringCase(column.qualifier, source.name)) continue;
    const auto position = sql::FindColumn(source, column.name);
    if (!position) continue;
    if (found) throw AmbiguousColumnError(column.name);
    found = Slot{Slot::Kind::Column, 0, static_cast<std::uint16_t>(i), static_cast<std::uint32_t>(*position)};
  }
  if (found || outer_ == nullptr) return found;
  found = outer_->FindColumn(column);
  if (found) ++found->depth;
  return found;
}

// An item sees the aliases before it, and other clauses all of them, so that no alias can lead back to itself.
std::optional<Slot> NameBinder::FindItem(const Expression& column, std::size_t visibleItems) const {
  if (!column.qualifier.empty() || plan_.select == nullptr) return std::nullopt;
  for (std::size_t i = 0; i < visibleItems; ++i) {
    if (!EqualIgnoringCase(plan_.select->items[i].alias, column.name)) continue;
    return Slot{Slot::Kind::Item, 0, 0, static_cast<std::uint32_t>(i)};
  }
  return std::nullopt;
}

// May be called again for an expression that is bound: what it needs is then marked for the further use as well.
void NameBinder::Bind(const Expression& expression, Use use, std::size_t visibleItems) {
  if (expression.kind == ExpressionKind::Column) BindColumn(expression, use, visibleItems);
  if (expression.subselect) BindSubselect(expression, use);
  for (const auto& argument : expression.arguments) Bind(*argument, use, visibleItems);
}

void NameBinder::BindColumn(const Expression& column, Use use, std::size_t visibleItems) {
  if (plan_.SlotOf(column).kind == Slot::Kind::None) {
    std::optional<Slot> slot = FindColumn(column);
    if (!slot) slot = FindItem(column, visibleItems);
    if (!slot) {
      const std::string name = column.qualifier.empty() ? column.name : column.qualifier + "." + column.name;
      throw UnknownColumnError(name, SourceNames());
    }
    PlaceOf(column, plan_.slots) = *slot;
  }
  const Slot slot = plan_.SlotOf(column);
  if (slot.kind == Slot::Kind::Item) {
    // What the alias stands for is needed for the same use; aliases before it stay visible in it.
    Bind(*plan_.select->items[slot.column].expression, use, slot.column);
  } else {
    MarkUse(slot, use);
  }
}

// Columns of this level that the sub-select refers to are needed with the row, and those of levels further out make
// this level depend on them in its turn: their depth is counted from here, one less than from the sub-select.
void NameBinder::BindSubselect(const Expression& expression, Use use) {
  if (plan_.SubselectOf(expression) == nullptr) {
    std::unique_ptr<SelectPlan> subplan = PlanSelect(context_, *expression.subselect, this);
    PlaceOf(expression, plan_.subselects) = std::move(subplan);
  }
  for (Slot slot : plan_.SubselectOf(expression)->outerSlots) {
    --slot.depth;
    MarkUse(slot, use);
  }
}

void NameBinder::MarkUse(const Slot& slot, Use use) {
  if (slot.depth > 0) {
    plan_.outerSlots.push_back(slot);
    return;
  }
  PlannedSource& source = plan_.sources[slot.source];
  (use == Use::Search ? source.searchColumns : source.outputColumns)[slot.column] = true;
}

// What a sub-select refers to counts too: a condition with a correlated one can only be checked when those rows are
// known.
SourceSet NameBinder::SourcesOf(const Expression& expression) const {
  SourceSet sources = 0;
  VisitExpression(expression, [&](const Expression& part) {
    if (part.kind == ExpressionKind::Column) {
      const Slot slot = plan_.SlotOf(part);
      if (slot.kind == Slot::Kind::Column && slot.depth == 0) sources |= SourceSet{1} << slot.source;
    }
    if (part.subselect) {
      for (const Slot& slot : plan_.SubselectOf(part)->outerSlots) {
        if (slot.depth == 1) sources |= SourceSet{1} << slot.source;
      }
    }
  });
  return sources;
}

std::string NameBinder::SourceNames() const {
  std::string names;
  for (const PlannedSource& source : plan_.sources) {
    if (!names.empty()) names += ", ";
    names += source.name;
  }
  return names.empty() ? "any table (the statement reads none here)" : names;
}

}  // namespace tavi::access::sql
