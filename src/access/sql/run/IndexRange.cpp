#include "access/sql/run/IndexRange.h"
#include "access/sql/expression/Comparison.h"
#include "access/sql/expression/Evaluator.h"

#include <algorithm>

namespace tavi::access::sql {

namespace {

bool BeginsWith(const IndexKey& key, const IndexKey& prefix) {
  return key.size() >= prefix.size() && std::equal(prefix.begin(), prefix.end(), key.begin());
}

}  // namespace

IndexRange::IndexRange(const AccessPath& path, Table& table, const RowScope& scope)
    : table_(table), index_(path.index) {
  std::vector<Value> equals;
  for (std::size_t i = 0; i < path.equals.size(); ++i) {
    equals.push_back(Take(*path.equals[i], path.equalColumns[i], scope));
  }
  Value low;
  Value high;
  if (path.low != nullptr) low = Take(*path.low, path.rangeColumn, scope);
  if (path.high != nullptr) high = Take(*path.high, path.rangeColumn, scope);
  if (!isUsable_ || isEmpty_) return;
  if (path.boundsInAnyOrder && CompareValues(low, high) > 0) std::swap(low, high);
  SetEnds(path, std::move(equals), low, high);
}

Value IndexRange::Take(const Expression& expression, std::size_t column, const RowScope& scope) {
  Value value = Evaluate(expression, scope);
  if (IsNull(value)) {
    isEmpty_ = true;  // no comparison with null is true
  } else if (FamilyOf(value) != FamilyOf(table_.Columns()[column].definition.type)) {
    isUsable_ = false;
  }
  return value;
}

void IndexRange::SetEnds(const AccessPath& path, std::vector<Value> equals, const Value& low, const Value& high) {
  const KeyEncoder& encoder = table_.Encoder(index_);
  const Index& index = table_.Indexes()[index_];
  const auto keyOf = [&](const Value* next) {
    std::vector<Value> values = equals;
    if (next != nullptr) values.push_back(*next);
    std::optional<IndexKey> key = encoder.PrefixKey(values);
    if (!key) isUsable_ = false;
    return key;
  };
  isOneKey_ = index.definition.unique && path.equals.size() == index.columns.size();
  if (!path.equals.empty()) first_ = last_ = keyOf(nullptr);
  const bool ascending = path.equals.size() >= index.ascending.size() || index.ascending[path.equals.size()];
  if (path.low != nullptr) (ascending ? first_ : last_) = keyOf(&low);
  if (path.high != nullptr) (ascending ? last_ : first_) = keyOf(&high);
}

void IndexRange::Collect(std::vector<std::uint32_t>& rows) const {
  if (isEmpty_) return;
  const BTree& tree = table_.Tree(index_);
  if (isOneKey_ && first_) {
    if (const auto row = tree.FindKey(*first_)) rows.push_back(row->Packed());
    return;
  }
  const auto cursor = tree.SeekFirst(first_);
  for (; cursor->Current() != nullptr; cursor->Next()) {
    const IndexEntry& entry = *cursor->Current();
    if (last_ && entry.key > *last_ && !BeginsWith(entry.key, *last_)) return;
    rows.push_back(entry.row.Packed());
  }
}

}  // namespace tavi::access::sql
