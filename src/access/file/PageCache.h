#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <unordered_map>
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

/// The pages that a writer has changed and not committed, in memory, with the states to which it can go back. States
/// are marked by levels, one within the other: a transaction, one within it, a statement. The outermost level begins
/// with nothing changed; each other one remembers a page as it was before its first change in that level.
class PageChanges {
 public:
  /// A page that has been changed.
  struct Changed {
    std::shared_ptr<Page> live;   ///< what writers hold a reference to
    PageHandle base;              ///< as it is committed; null when it was written from scratch
    PageHandle snapshot;          ///< what readers were given last; null when none was
    std::uint64_t levelSeen = 0;  ///< the level that has remembered it already
  };

  /// Begins a level at which the file has so many pages.
  void BeginLevel(PageNumber pageCount);
  [[nodiscard]] std::size_t LevelCount() const { return levels_.size(); }
  /// Ends the innermost level; what was changed in it belongs to the level around it. Not for the outermost.
  void KeepLevel();
  /// What UndoLevel has come back to.
  struct Undone {
    PageNumber pageCount = 0;
    bool any = false;  ///< whether any page had been changed in the level
  };
  /// Ends the innermost level and brings the pages back to what they were when it began.
  Undone UndoLevel();
  /// Ends the outermost level, which must be the only one, and gives up what was changed.
  [[nodiscard]] std::unordered_map<PageNumber, Changed> TakeAll();

  [[nodiscard]] bool IsEmpty() const { return pages_.empty(); }
  [[nodiscard]] bool Contains(PageNumber number) const { return pages_.contains(number); }
  /// A changed page as it is now, for readers: whoever changes it afterwards does not change the handle. Null for a
  /// page that is not changed.
  [[nodiscard]] PageHandle Read(PageNumber number);
  /// A changed page, to be changed further in the innermost level. Null for a page that is not changed.
  [[nodiscard]] Page* Write(PageNumber number);
  /// Adds a page that was not changed so far; it begins as its base, or zeroed without one.
  [[nodiscard]] Page& Add(PageNumber number, PageHandle base);

  /// Numbers of the pages that are not what they were, in ascending order.
  [[nodiscard]] std::vector<PageNumber> Differing() const;
  [[nodiscard]] const Changed& At(PageNumber number) const { return pages_.at(number); }

 private:
  struct Level {
    std::uint64_t id = 0;
    PageNumber pageCount = 0;
    std::unordered_map<PageNumber, PageHandle> before;  ///< null: not changed when the level began
  };

  void Remember(PageNumber number, Changed* changed);

  std::unordered_map<PageNumber, Changed> pages_;
  std::vector<Level> levels_;
  std::uint64_t lastLevelId_ = 0;
};

}  // namespace tavi::access
