#include "access/file/PageCache.h"

#include <algorithm>
#include <utility>

namespace tavi::access {

namespace {
// Fewer would make a walk down a B-tree read its root again and again.
constexpr std::size_t kMinimumCapacity = 16;
}  // namespace

PageCache::PageCache(std::size_t bytes) : capacity_(std::max(kMinimumCapacity, bytes / sizeof(Page))) {}

void PageCache::Put(PageHandle page) {
  const PageNumber number = page->Number();
  if (number >= placeOfPage_.size()) {
    placeOfPage_.resize(std::max<std::size_t>(std::size_t{number} + 1, placeOfPage_.size() * 2), kNoPlace);
  }
  if (placeOfPage_[number] == kNoPlace) placeOfPage_[number] = MakeRoom();
  // Not counted as used: pages of a scan, which are asked for once, then go before those that are asked for again.
  places_[placeOfPage_[number]] = {std::move(page), false};
}

PageCache::PlaceNumber PageCache::MakeRoom() {
  if (!free_.empty()) {
    const PlaceNumber place = free_.back();
    free_.pop_back();
    return place;
  }
  if (places_.size() < capacity_) {
    places_.emplace_back();
    return static_cast<PlaceNumber>(places_.size() - 1);
  }
  while (std::exchange(places_[hand_].usedLately, false)) hand_ = (hand_ + 1) % places_.size();
  const auto place = static_cast<PlaceNumber>(hand_);
  placeOfPage_[places_[place].page->Number()] = kNoPlace;
  hand_ = (hand_ + 1) % places_.size();
  return place;
}

void PageCache::Erase(PageNumber number) {
  if (number >= placeOfPage_.size() || placeOfPage_[number] == kNoPlace) return;
  const PlaceNumber place = std::exchange(placeOfPage_[number], kNoPlace);
  places_[place] = {};
  free_.push_back(place);
}

void PageCache::Clear() {
  places_.clear();
  free_.clear();
  placeOfPage_.clear();
  hand_ = 0;
}

}  // namespace tavi::access
