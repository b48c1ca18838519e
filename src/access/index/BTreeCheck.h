#pragma once

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "access/file/Pager.h"
#include "access/index/BTree.h"

namespace tavi::access {

/// Something about the pages of an index that is not as it must be.
struct BTreeFinding {
  PageNumber page = 0;
  /// A sentence that names the page, what is wrong and what was found, without advice.
  std::string text;
  /// True for what reading and changing the index do not mind, and what files of other programs have.
  bool isWarning = false;
};

/// What a walk through an index found.
struct BTreeReport {
  std::vector<BTreeFinding> findings;
  std::size_t levels = 0;
  std::size_t nodePages = 0;
  std::size_t leafPages = 0;
  std::size_t entries = 0;

  /// True when there is no finding but warnings.
  [[nodiscard]] bool IsSound() const;
  /// All texts, a line each.
  [[nodiscard]] std::string Text() const;
};

/// Looks at every page of an index, in the pager's current statement: types and tables of pages, masks, prefixes, free
/// bytes, order of entries, entries of nodes against their children, one depth, chains, the map of owned pages, pages
/// that are marked free. Damage is reported, not raised; the list ends after kMaximumFindings.
class BTreeCheck {
 public:
  static constexpr std::size_t kMaximumFindings = 100;

  BTreeCheck(Pager& pager, PageNumber tablePage, PageNumber root, RowPointer ownedPages);

  [[nodiscard]] BTreeReport Run();

 private:
  struct Step {
    PageNumber page = 0;
    std::size_t depth = 0;
    /// The entry of a node above that names the last entry below this page; none on the way along the tails.
    std::optional<EntryBytes> bound;
  };
  struct Seen {
    PageNumber page = 0;
    PageNumber previous = 0;
    PageNumber next = 0;
    std::uint8_t level = 0;
    bool isLeaf = false;
  };

  void Report(PageNumber page, const std::string& what, bool isWarning = false);
  [[nodiscard]] bool IsFull() const { return report_.findings.size() >= kMaximumFindings; }
  void Visit(const Step& step);
  void CheckHeader(const IndexPage& page, std::size_t depth);
  /// The entries of a page: ascending, and behind `from`.
  void CheckEntries(const IndexPage& page, const EntryBytes& from);
  void CheckLeaf(const Step& step, const IndexPage& page);
  void CheckNode(const Step& step, const IndexPage& page);
  void CheckLevels();
  void CheckChain(const std::vector<Seen>& level);
  void CheckOwnedPages();

  Pager* pager_;
  IndexPages pages_;
  PageNumber root_;
  RowPointer ownedPages_;
  BTreeReport report_;
  std::vector<Step> stack_;
  std::set<PageNumber> visited_;
  std::vector<std::vector<Seen>> levels_;  // by depth from the root, in order
  EntryBytes reached_;                     // the greatest of the leaf entries and bounds so far
};

}  // namespace tavi::access
