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

std::shared_ptr<const PlanNode> JoinPlanner::PlanOuter(const Source& kept, const Source& optional, const Source& join,
                                                       const Conjuncts& conjuncts, SourceSet bound) const {
  auto node = std::make_shared<PlanNode>();
  node->kind = PlanNode::Kind::Outer;
  const SourceSet keptSources = LeavesOf(kept);
  const SourceSet optionalSources = LeavesOf(optional);
  node->sources = keptSources | optionalSources;
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
  node->parts.push_back(PlanTree(optional, std::move(on), bound | keptSources));
  const PlanNode& first = *node->parts[0];
  const PlanNode& second = *node->parts[1];
  node->cost = first.cost + first.rows * second.cost;
  node->setup = first.setup + second.setup;
  node->rows = first.rows * std::max(1.0, second.rows);
  return node;
}

void JoinPlanner::FlattenInner(const Source& tree, Parts& parts, Conjuncts& conjuncts) const {
  if (!IsInner(tree)) {
    parts.push_back({&tree, LeavesOf(tree), nullptr});
    return;
  }
  FlattenInner(*tree.left, parts, conjuncts);
  FlattenInner(*tree.right, parts, conjuncts);
  SplitConjuncts(tree.on.get(), binder_, conjuncts);
}

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
