#include "access/file/PageCache.h"

#include <algorithm>
#include <cstring>
#include <utility>

// Two lists of pages in memory. The cache has those that are as committed, for as long as there is room; a place is
// found by the page's number alone, without hashing, since it is asked for every page that is read. The changes have
// those that the open statement or transaction has made its own, each beside what it was, and can go back level by
// level.
//
// Handles are shared: a page that the cache forgets lives on with whoever reads it. A writer's page is never in the
// cache before it is committed.

namespace tavi::access {

namespace {
// Fewer would make a walk down a B-tree read its root again and again.
constexpr std::size_t kMinimumCapacity = 16;
}  // namespace

PageCache::PageCache(std::size_t bytes) : capacity_(std::max(kMinimumCapacity, bytes / sizeof(Page))) {}

void PageCache::Put(PageHandle page) {
  const PageNumber number = page->Number();
  if (number >= placeOfPage_.size()) {
    // Doubled, so that reading a file from its start does not lengthen the list page by page.
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
  // Ends within one round and a step: the first round takes all marks away.
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

namespace {

/// The content, whatever the pages' numbers.
bool SameBytes(const Page& left, const Page& right) {
  return std::memcmp(left.All().data(), right.All().data(), kPageSize) == 0;
}

}  // namespace

void PageChanges::BeginLevel(PageNumber pageCount) {
  levels_.push_back({++lastLevelId_, pageCount, {}});
}

// What the inner level remembers that the outer one does not was as it is there when the outer one began, too. What
// both remember stays as the outer one has it, the older state. The outermost level remembers nothing: it goes back by
// forgetting all.
void PageChanges::KeepLevel() {
  if (levels_.size() > 2) levels_[levels_.size() - 2].before.merge(levels_.back().before);
  levels_.pop_back();
}

PageChanges::Undone PageChanges::UndoLevel() {
  const Level level = std::move(levels_.back());
  levels_.pop_back();
  // That was the outermost level: nothing is changed any more.
  if (levels_.empty()) {
    const bool any = !pages_.empty();
    pages_.clear();
    return {level.pageCount, any};
  }
  for (const auto& [number, before] : level.before) {
    // The page was not changed when the level began, so the committed one counts again. A page that was changed then
    // gets its content back in the same place in memory.
    if (before == nullptr) {
      pages_.erase(number);
    } else {
      pages_.at(number).live->CopyFrom(*before);
    }
  }
  return {level.pageCount, !level.before.empty()};
}

std::unordered_map<PageNumber, PageChanges::Changed> PageChanges::TakeAll() {
  levels_.clear();
  return std::exchange(pages_, {});
}

// The outermost level goes back by forgetting everything, so it needs to remember nothing.
void PageChanges::Remember(PageNumber number, Changed* changed) {
  if (levels_.size() < 2) return;
  Level& level = levels_.back();
  if (changed == nullptr) {
    level.before.try_emplace(number, nullptr);
    return;
  }
  // The usual case: the page was changed in this level before, which is known without a look-up.
  if (changed->levelSeen == level.id) return;
  if (!level.before.contains(number)) level.before.emplace(number, Read(number));
  changed->levelSeen = level.id;
}

// Whoever changes the page may go on by the reference that he holds, so readers get a copy of their own; the last one
// serves again while nothing has changed, which a comparison of the page tells: writers say nothing when they write.
PageHandle PageChanges::Read(PageNumber number) {
  const auto found = pages_.find(number);
  if (found == pages_.end()) return nullptr;
  Changed& changed = found->second;
  if (changed.snapshot == nullptr || !SameBytes(*changed.snapshot, *changed.live)) {
    changed.snapshot = std::make_shared<const Page>(*changed.live);
  }
  return changed.snapshot;
}

Page* PageChanges::Write(PageNumber number) {
  const auto found = pages_.find(number);
  if (found == pages_.end()) return nullptr;
  Remember(number, &found->second);
  return found->second.live.get();
}

Page& PageChanges::Add(PageNumber number, PageHandle base) {
  Remember(number, nullptr);
  Changed changed;
  changed.live = base == nullptr ? std::make_shared<Page>(number) : std::make_shared<Page>(*base);
  changed.base = std::move(base);
  return *pages_.insert_or_assign(number, std::move(changed)).first->second.live;
}

// A page that was changed back is not logged. Ascending, as the log has them.
std::vector<PageNumber> PageChanges::Differing() const {
  std::vector<PageNumber> numbers;
  numbers.reserve(pages_.size());
  for (const auto& [number, changed] : pages_) {
    if (changed.base == nullptr || !SameBytes(*changed.base, *changed.live)) numbers.push_back(number);
  }
  std::sort(numbers.begin(), numbers.end());
  return numbers;
}

}  // namespace tavi::access
