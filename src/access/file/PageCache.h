#pragma once

#include <cstddef>
#include <vector>

#include "access/file/Page.h"

namespace tavi::access {

/// Unchanged pages in memory, at most as many as fit into a number of bytes. When it is full a page that was not asked
/// for lately goes (second chance: a hand circles over the places and takes the first one that was not used since it
/// last came by). Handles that callers hold stay valid whatever the cache forgets.
class PageCache {
 public:
  explicit PageCache(std::size_t bytes);

  /// The page, or null when it is not here.
  [[nodiscard]] PageHandle Find(PageNumber number) {
    if (number >= placeOfPage_.size() || placeOfPage_[number] == kNoPlace) return nullptr;
    Place& place = places_[placeOfPage_[number]];
    place.usedLately = true;
    return place.page;
  }
  /// Keeps a page, in place of an older one of the same number.
  void Put(PageHandle page);
  void Erase(PageNumber number);
  void Clear();
  [[nodiscard]] std::size_t Count() const { return places_.size() - free_.size(); }
  [[nodiscard]] std::size_t Capacity() const { return capacity_; }

 private:
  using PlaceNumber = std::uint32_t;
  static constexpr PlaceNumber kNoPlace = 0xFFFFFFFF;
  struct Place {
    PageHandle page;
    bool usedLately = false;
  };

  [[nodiscard]] PlaceNumber MakeRoom();

  std::size_t capacity_;
  std::vector<Place> places_;
  std::vector<PlaceNumber> free_;
  std::vector<PlaceNumber> placeOfPage_;
  std::size_t hand_ = 0;
};

}  // namespace tavi::access
