// The order of joins, and the place of each condition. A FROM clause is a tree of joins. Inner and cross joins next to
// each other are one group, whose members may be read in any order; an outer join fixes its order, since the rows of
// the kept side come first. So the tree is planned in groups: the order of a group is sought by its estimated cost, and
// what an outer join has on its sides are groups again.
//
// A condition is checked as early as all sources that it names are bound. In a group that is the member that binds the
// last of them, where the condition may also choose the path to its rows. At an outer join there are two kinds: its ON
// decides which rows of the optional side belong to a row of the kept side; WHERE above it judges the joined row. A
// condition of WHERE may only go below the join when it does not name the optional side, for it would drop the very
// rows that are to be joined with nulls.
//
// Costs are in rows of a scan: a nested part costs as often as the parts before it give rows.
#include "access/sql/plan/JoinPlanner.h"

#include <algorithm>

namespace tavi::access::sql {

namespace {

/// Groups of more parts are ordered step by step, not by trying every order.
constexpr std::size_t kTryAllOrders = 4;

bool IsSubset(SourceSet part, SourceSet whole) {
  return (part & ~whole) == 0;
}

bool IsInner(const Source& tree) {
  return tree.kind == Source::Kind::Join && (tree.join == Source::Join::Inner || tree.join == Source::Join::Cross);
}

}  // namespace

/// A member of a group of inner joins. A join within the group (an outer one) is planned once, before the order of the
/// group is sought: planning it anew in each place would take exponential time in nested joins.
struct JoinPlanner::Part {
  const Source* source = nullptr;
  SourceSet sources = 0;
  std::shared_ptr<const PlanNode> planned;  // for a join
};

/// An order of the parts of a group, as far as it is settled.
struct JoinPlanner::Order {
  std::vector<std::shared_ptr<const PlanNode>> nodes;
  SourceSet bound = 0;
  SourceSet used = 0;  // parts, by position
  double rows = 1;
  double cost = 0;
  double setup = 0;

  [[nodiscard]] double Total() const { return cost + setup; }
};

SourceSet JoinPlanner::LeavesOf(const Source& tree) const {
  if (tree.kind != Source::Kind::Join) return SourceSet{1} << binder_.NumberOf(tree);
  return LeavesOf(*tree.left) | LeavesOf(*tree.right);
}

// A right join is a left join with its sides exchanged; the columns of SELECT * keep the order of the text, because the
// numbers of the sources do not change.
std::shared_ptr<const PlanNode> JoinPlanner::PlanTree(const Source& tree, Conjuncts conjuncts, SourceSet bound) const {
  if (tree.kind != Source::Kind::Join) return PlanLeaf(tree, conjuncts, bound);
  if (tree.join == Source::Join::Left) return PlanOuter(*tree.left, *tree.right, tree, conjuncts, bound);
  if (tree.join == Source::Join::Right) return PlanOuter(*tree.right, *tree.left, tree, conjuncts, bound);
  return PlanGroup(tree, std::move(conjuncts), bound);
}

std::shared_ptr<const PlanNode> JoinPlanner::PlanLeaf(const Source& leaf, const Conjuncts& conjuncts,
                                                      SourceSet bound) const {
  auto node = std::make_shared<PlanNode>();
  node->source = binder_.NumberOf(leaf);
  node->sources = SourceSet{1} << node->source;
  // Every condition is checked of each row found, also the one that the path serves: paths give candidates.
  node->path = access_.Choose(node->source, conjuncts, bound);
  for (const Conjunct& conjunct : conjuncts) node->filters.push_back(conjunct.expression);
  node->cost = node->path.cost;
  node->setup = node->path.setup;
  // An index look-up has already applied the condition that it serves.
  const double selectivity = AccessPlanner::Selectivity(conjuncts);
  node->rows = node->path.kind == AccessPath::Kind::Scan ? node->path.rows * selectivity
                                                         : node->path.rows * std::min(1.0, selectivity * 5.0);
  return node;
}

// `conjuncts` are those of WHERE (or of a join around this one), `bound` what is known before the node is run.
std::shared_ptr<const PlanNode> JoinPlanner::PlanOuter(const Source& kept, const Source& optional, const Source& join,
                                                       const Conjuncts& conjuncts, SourceSet bound) const {
  auto node = std::make_shared<PlanNode>();
  node->kind = PlanNode::Kind::Outer;
  const SourceSet keptSources = LeavesOf(kept);
  const SourceSet optionalSources = LeavesOf(optional);
  node->sources = keptSources | optionalSources;
  // What names no source of the optional side is the same with and without a partner, so it is checked before one is
  // sought.
  Conjuncts early;
  for (const Conjunct& conjunct : conjuncts) {
    if ((conjunct.sources & optionalSources) == 0) {
      early.push_back(conjunct);
    } else {
      node->filters.push_back(conjunct.expression);  // must see the nulls of rows without a partner
    }
  }
  Conjuncts on;
  SplitConjuncts(join.on.get(), binder_, on);
  node->parts.push_back(PlanTree(kept, std::move(early), bound));
  // The conditions of ON are those of the optional part alone, also where they name only the kept side: a row of the
  // kept side that does not satisfy them stays, without a partner.
  node->parts.push_back(PlanTree(optional, std::move(on), bound | keptSources));
  const PlanNode& first = *node->parts[0];
  const PlanNode& second = *node->parts[1];
  node->cost = first.cost + first.rows * second.cost;
  node->setup = first.setup + second.setup;
  // A row of the kept side gives at least one.
  node->rows = first.rows * std::max(1.0, second.rows);
  return node;
}

// The members of a group of inner joins and the conditions of their ON clauses: within such a group ON and WHERE mean
// the same.
void JoinPlanner::FlattenInner(const Source& tree, Parts& parts, Conjuncts& conjuncts) const {
  if (!IsInner(tree)) {
    parts.push_back({&tree, LeavesOf(tree), nullptr});
    return;
  }
  FlattenInner(*tree.left, parts, conjuncts);
  FlattenInner(*tree.right, parts, conjuncts);
  SplitConjuncts(tree.on.get(), binder_, conjuncts);
}

// A node of one part, since the part itself is shared by all orders that are tried and must not be changed.
std::shared_ptr<const PlanNode> JoinPlanner::WithFilters(std::shared_ptr<const PlanNode> node,
                                                         const Conjuncts& conjuncts) {
  if (conjuncts.empty()) return node;
  auto filtered = std::make_shared<PlanNode>();
  filtered->kind = PlanNode::Kind::Nested;
  filtered->sources = node->sources;
  filtered->cost = node->cost;
  filtered->setup = node->setup;
  filtered->rows = node->rows * AccessPlanner::Selectivity(conjuncts);
  for (const Conjunct& conjunct : conjuncts) filtered->filters.push_back(conjunct.expression);
  filtered->parts.push_back(std::move(node));
  return filtered;
}

// The conditions that become checkable with this part go to it: all their sources are bound now and were not before.
// For the first part "before" does not count: conditions that need nothing, or only what was bound outside the group,
// have no earlier place. A part that is a join has checked those of its own sources inside.
JoinPlanner::Order JoinPlanner::Append(const Order& order, const Part& part, std::size_t position,
                                       const Conjuncts& conjuncts) const {
  Order next = order;
  next.bound |= part.sources;
  next.used |= SourceSet{1} << position;
  Conjuncts applicable;
  for (const Conjunct& conjunct : conjuncts) {
    const bool seenBefore = !order.nodes.empty() && IsSubset(conjunct.sources, order.bound);
    const bool seenInside = part.planned && IsSubset(conjunct.sources, part.sources);
    if (!seenBefore && !seenInside && IsSubset(conjunct.sources, next.bound)) applicable.push_back(conjunct);
  }
  std::shared_ptr<const PlanNode> node =
      part.planned ? WithFilters(part.planned, applicable) : PlanLeaf(*part.source, applicable, order.bound);
  next.setup += node->setup;
  next.cost += order.rows * node->cost;
  next.rows = order.rows * node->rows;
  next.nodes.push_back(std::move(node));
  return next;
}

// Costs only grow with each part, so an order that is already dearer than the best complete one is not followed
// further. At most 24 complete orders.
void JoinPlanner::TryOrders(const Parts& parts, const Conjuncts& conjuncts, const Order& order,
                            std::optional<Order>& best) const {
  if (order.nodes.size() == parts.size()) {
    best = order;
    return;
  }
  for (std::size_t i = 0; i < parts.size(); ++i) {
    if ((order.used >> i & 1U) != 0) continue;
    const Order next = Append(order, parts[i], i, conjuncts);
    if (!best || next.Total() < best->Total()) TryOrders(parts, conjuncts, next, best);
  }
}

// The rows of an order count beside its cost, because every later part is run for each of them.
JoinPlanner::Order JoinPlanner::StepByStep(const Parts& parts, const Conjuncts& conjuncts, Order order) const {
  while (order.nodes.size() < parts.size()) {
    std::optional<Order> cheapest;
    for (std::size_t i = 0; i < parts.size(); ++i) {
      if ((order.used >> i & 1U) != 0) continue;
      Order next = Append(order, parts[i], i, conjuncts);
      if (!cheapest || next.Total() + next.rows < cheapest->Total() + cheapest->rows) cheapest = std::move(next);
    }
    order = std::move(*cheapest);
  }
  return order;
}

// A member that is a join gets the conditions that name its sources alone. Those that tie it to other members cannot
// choose its paths, as it is planned before the order is known; they filter its rows.
std::shared_ptr<const PlanNode> JoinPlanner::PlanGroup(const Source& tree, Conjuncts conjuncts, SourceSet bound) const {
  Parts parts;
  FlattenInner(tree, parts, conjuncts);
  for (Part& part : parts) {
    if (part.source->kind != Source::Kind::Join) continue;
    Conjuncts own;
    for (const Conjunct& conjunct : conjuncts) {
      if (IsSubset(conjunct.sources, part.sources)) own.push_back(conjunct);
    }
    part.planned = PlanTree(*part.source, std::move(own), bound);
  }
  Order start;
  start.bound = bound;
  std::optional<Order> best;
  if (parts.size() <= kTryAllOrders) {
    TryOrders(parts, conjuncts, start, best);
  } else {
    best = StepByStep(parts, conjuncts, start);
  }
  auto node = std::make_shared<PlanNode>();
  node->kind = PlanNode::Kind::Nested;
  for (const auto& part : best->nodes) node->sources |= part->sources;
  node->parts = std::move(best->nodes);
  node->cost = best->cost;
  node->setup = best->setup;
  node->rows = best->rows;
  return node;
}

}  // namespace tavi::access::sql
