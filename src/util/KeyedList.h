#pragma once

#include <cstddef>
#include <iterator>
#include <list>
#include <map>
#include <string>
#include <utility>

#include "platform/values/Error.h"

namespace tavi {

/// Values in an order of their own, each with a key: added at the end or before a given key, looked up and removed by
/// key, walked in order. Keys are unique. Looking up a missing key is no error. References and iterators stay valid
/// until their value is removed.
template <typename Key, typename Value>
class KeyedList {
 public:
  using Entry = std::pair<const Key, Value>;
  using const_iterator = typename std::list<Entry>::const_iterator;
  using iterator = typename std::list<Entry>::iterator;

  KeyedList() = default;
  KeyedList(const KeyedList&) = delete;
  KeyedList& operator=(const KeyedList&) = delete;
  KeyedList(KeyedList&&) noexcept = default;
  KeyedList& operator=(KeyedList&&) noexcept = default;
  ~KeyedList() = default;

  /// Adds a value at the end. Raises DuplicateKey when the key is there already.
  void Append(const Key& key, Value value) { Insert(entries_.end(), key, std::move(value)); }

  /// Adds a value right before the one of the key `before`. Raises InvalidArgument when there is no such key,
  /// DuplicateKey when the new key is there already.
  void InsertBefore(const Key& before, const Key& key, Value value) {
    const auto place = places_.find(before);
    if (place == places_.end()) {
      throw Error(ErrorNumber::InvalidArgument, "TaviMembership",
                  "Invalid procedure call or argument: the list has no entry to insert before.");
    }
    Insert(place->second, key, std::move(value));
  }

  /// The value of a key, null when there is none.
  [[nodiscard]] Value* Find(const Key& key) {
    const auto place = places_.find(key);
    return place == places_.end() ? nullptr : &place->second->second;
  }
  [[nodiscard]] const Value* Find(const Key& key) const {
    const auto place = places_.find(key);
    return place == places_.end() ? nullptr : &place->second->second;
  }

  /// Takes a value out; false when there is none of that key.
  bool Remove(const Key& key) {
    const auto place = places_.find(key);
    if (place == places_.end()) return false;
    entries_.erase(place->second);
    places_.erase(place);
    return true;
  }

  void Clear() {
    places_.clear();
    entries_.clear();
  }

  [[nodiscard]] std::size_t Count() const { return entries_.size(); }
  [[nodiscard]] bool IsEmpty() const { return entries_.empty(); }

  /// The walk in order; an entry is a pair of key and value.
  [[nodiscard]] iterator begin() { return entries_.begin(); }
  [[nodiscard]] iterator end() { return entries_.end(); }
  [[nodiscard]] const_iterator begin() const { return entries_.begin(); }
  [[nodiscard]] const_iterator end() const { return entries_.end(); }

 private:
  void Insert(const_iterator position, const Key& key, Value value) {
    if (places_.contains(key)) {
      throw Error(ErrorNumber::DuplicateKey, "TaviMembership",
                  "This key is already associated with an element of this collection.");
    }
    places_.emplace(key, entries_.emplace(position, key, std::move(value)));
  }

  std::list<Entry> entries_;
  std::map<Key, iterator> places_;
};

}  // namespace tavi
