#pragma once

#include "access/sql/plan/AccessPlanner.h"

namespace tavi::access::sql {

/// Plans a FROM clause: which part is run first, how each source is found, and where each condition is checked.
class JoinPlanner {
 public:
  JoinPlanner(PlanContext& context, const SelectPlan& plan, const NameBinder& binder)
      : binder_(binder), access_(context, plan, binder) {}

  /// The node that gives the rows of `tree` satisfying `conjuncts`.
  [[nodiscard]] std::shared_ptr<const PlanNode> Plan(const Source& tree, Conjuncts conjuncts) const {
    return PlanTree(tree, std::move(conjuncts), 0);
  }

 private:
  struct Part;
  using Parts = std::vector<Part>;
  struct Order;

  [[nodiscard]] std::shared_ptr<const PlanNode> PlanTree(const Source& tree, Conjuncts conjuncts,
                                                         SourceSet bound) const;
  [[nodiscard]] std::shared_ptr<const PlanNode> PlanLeaf(const Source& leaf, const Conjuncts& conjuncts,
                                                         SourceSet bound) const;
  [[nodiscard]] std::shared_ptr<const PlanNode> PlanOuter(const Source& kept, const Source& optional,
                                                          const Source& join, const Conjuncts& conjuncts,
                                                          SourceSet bound) const;
  [[nodiscard]] std::shared_ptr<const PlanNode> PlanGroup(const Source& tree, Conjuncts conjuncts,
                                                          SourceSet bound) const;
  void FlattenInner(const Source& tree, Parts& parts, Conjuncts& conjuncts) const;
  /// A node whose rows must satisfy further conditions.
  [[nodiscard]] static std::shared_ptr<const PlanNode> WithFilters(std::shared_ptr<const PlanNode> node,
                                                                   const Conjuncts& conjuncts);
  /// An order with one more part behind it.
  [[nodiscard]] Order Append(const Order& order, const Part& part, std::size_t position,
                             const Conjuncts& conjuncts) const;
  /// Extends an order by each of the remaining parts in turn; `best` keeps the cheapest complete order.
  void TryOrders(const Parts& parts, const Conjuncts& conjuncts, const Order& order, std::optional<Order>& best) const;
  /// Extends an order by the part that is cheapest next, until it is complete.
  [[nodiscard]] Order StepByStep(const Parts& parts, const Conjuncts& conjuncts, Order order) const;
  [[nodiscard]] SourceSet LeavesOf(const Source& tree) const;

  const NameBinder& binder_;
  AccessPlanner access_;
};

}  // namespace tavi::access::sql
