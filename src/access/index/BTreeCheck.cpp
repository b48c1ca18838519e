#include "access/index/BTreeCheck.h"

#include <algorithm>

#include "access/file/PageAllocator.h"
#include "access/index/EntryList.h"
#include "platform/values/Error.h"

// Two passes. The first goes down from the root with a stack of its own (a tree that leads in a circle must not exhaust
// the thread's), children from left to right, and reads each page once: what a page says of itself, the order of its
// entries, its last entry against the entry that the node above has for it. What cannot be seen on one page is noted on
// the way and looked at in the second pass: that all leaves are on one level, that the pages of a level are linked as
// they were met, that the map of owned pages names just these pages.
//
// A page that cannot be read is one finding, and the walk goes on with the next one: who repairs a file wants the whole
// list. Whatever a page says is only believed as far as the next check: no page is visited twice, and no deeper than
// kMaximumIndexLevels. The cost is one read of each page, and a few numbers in memory for it.

namespace tavi::access {

namespace {

namespace layout = format::index;

std::string At(std::size_t offset) {
  return "at " + std::to_string(offset);
}

}  // namespace

// Warnings are for `check --strict`: reading and changing a tree do not mind them.
bool BTreeReport::IsSound() const {
  return std::ranges::all_of(findings, [](const BTreeFinding& finding) { return finding.isWarning; });
}

std::string BTreeReport::Text() const {
  std::string text;
  for (const BTreeFinding& finding : findings) text += finding.text + "\n";
  return text;
}

BTreeCheck::BTreeCheck(Pager& pager, PageNumber tablePage, PageNumber root, RowPointer ownedPages)
    : pager_(&pager), pages_(pager, tablePage, ownedPages), root_(root), ownedPages_(ownedPages) {}

BTreeReport BTreeCheck::Run() {
  stack_.push_back({root_, 0, std::nullopt});
  while (!stack_.empty() && !IsFull()) {
    // A copy, as visiting a node puts its children on the stack.
    const Step step = stack_.back();
    stack_.pop_back();
    try {
      Visit(step);
    } catch (const Error& error) {
      report_.findings.push_back({step.page, error.Description(), false});
    }
  }
  report_.levels = levels_.size();
  if (!IsFull()) {
    CheckLevels();
    CheckOwnedPages();
  }
  return std::move(report_);
}

void BTreeCheck::Report(PageNumber page, const std::string& what, bool isWarning) {
  if (IsFull()) return;
  report_.findings.push_back({page, "Index page " + std::to_string(page) + " " + what + ".", isWarning});
}

// Notes the page for the second pass before anything else is looked at, so that a page with a wrong entry still counts
// in its level's chain.
void BTreeCheck::Visit(const Step& step) {
  if (!visited_.insert(step.page).second) return Report(step.page, "is reached twice");
  if (step.depth >= kMaximumIndexLevels) return Report(step.page, "lies too deep in its tree");
  const ReadIndexPage page(pages_, step.page);
  if (levels_.size() <= step.depth) levels_.resize(step.depth + 1);
  levels_[step.depth].push_back(
      {step.page, page.view.Previous(), page.view.Next(), page.view.Level(), page.view.IsLeaf()});
  CheckHeader(page.view, step.depth);
  if (page.view.IsLeaf()) {
    CheckLeaf(step, page.view);
  } else {
    CheckNode(step, page.view);
  }
}

// What the fields of a page say about each other. A root leaf may be empty, a table may have no rows; any other leaf
// without entries should have been freed with its last one.
void BTreeCheck::CheckHeader(const IndexPage& page, std::size_t depth) {
  const std::size_t free = layout::kEntriesSize - page.End();
  if (page.FreeBytes() != free) {
    Report(page.Number(),
           "states " + std::to_string(page.FreeBytes()) + " free bytes instead of " + std::to_string(free));
  }
  if (page.MarksTheStart()) Report(page.Number(), "marks the end of an entry before the first one");
  if (page.IsLeaf() && page.Tail() != 0) Report(page.Number(), "is a leaf with a tail page");
  if (page.IsLeaf() && page.IsEmpty() && depth > 0) Report(page.Number(), "is a leaf without entries");
  if (!page.IsLeaf() && page.Tail() == 0) Report(page.Number(), "is a node without a tail page");
  if (!page.IsLeaf() && page.IsEmpty()) Report(page.Number(), "is a node without entries");
}

// Ascending means strictly: no two entries are the same, as each names its row. A prefix that reaches into the rows is
// read rightly by everybody who puts entries together before he compares them, hence a warning.
void BTreeCheck::CheckEntries(const IndexPage& page, const EntryBytes& from) {
  EntryBytes before = from;
  EntryBytes bytes;
  bool prefixIsShort = true;
  for (std::size_t offset = 0; offset < page.End();) {
    const EntryPlace place = page.EntryAt(offset);
    page.Decode(place, bytes);
    if (!before.empty() && bytes <= before) Report(page.Number(), "has an entry " + At(offset) + " out of order");
    prefixIsShort = prefixIsShort && page.PrefixLength() + layout::kEntryRowPointerSize <= bytes.size();
    before = bytes;
    offset = place.end;
  }
  if (!prefixIsShort) Report(page.Number(), "has a prefix that reaches into the row of an entry", true);
}

// A leaf lies between two bounds: behind everything that was met so far, and not behind the entry that leads to it. Its
// last entry may be less than that entry, where another program took one away and left the node alone: a search still
// ends in this leaf. The next leaf has to begin behind both.
void BTreeCheck::CheckLeaf(const Step& step, const IndexPage& page) {
  ++report_.leafPages;
  CheckEntries(page, reached_);
  if (page.IsEmpty()) return;
  for (std::size_t offset = 0; offset < page.End(); offset = page.EntryAt(offset).end) ++report_.entries;
  EntryBytes last;
  page.Decode(page.EntryAt(page.End() - 1), last);
  if (step.bound.has_value() && *step.bound < last) Report(step.page, "has entries greater than its entry in the node");
  if (step.bound.has_value() && *step.bound > last)
    Report(step.page, "ends before the entry that it has in the node", true);
  reached_ = std::max(last, step.bound.value_or(EntryBytes()));
}

// Entries of a node are looked at alone: each is compared with what lies below it when the child is visited. The tail
// has no entry here; what bounds it is the entry of this node in the one above, if there is one.
void BTreeCheck::CheckNode(const Step& step, const IndexPage& page) {
  ++report_.nodePages;
  CheckEntries(page, EntryBytes());
  std::vector<Step> children;
  for (std::size_t offset = 0; offset < page.End();) {
    const EntryPlace place = page.EntryAt(offset);
    children.push_back({page.Child(place), step.depth + 1, EntryBytes()});
    page.Decode(place, *children.back().bound);
    offset = place.end;
  }
  if (!children.empty() && step.bound.has_value() && *children.back().bound > *step.bound)
    Report(step.page, "has entries greater than its entry in the node above");
  if (page.Tail() != 0) children.push_back({page.Tail(), step.depth + 1, step.bound});
  // In reverse, so that the leftmost child is on top: the order of visits is the order of keys, on which `reached_` and
  // the chains of the second pass rely.
  stack_.insert(stack_.end(), children.rbegin(), children.rend());
}

// Levels are counted from the root while the walk goes down, and stated from the leaves up, so that a stated one can be
// judged only when the depth is known. Nothing reads it but this check.
void BTreeCheck::CheckLevels() {
  for (std::size_t depth = 0; depth < levels_.size(); ++depth) {
    const bool isLast = depth + 1 == levels_.size();
    for (const Seen& seen : levels_[depth]) {
      if (seen.isLeaf && !isLast) Report(seen.page, "is a leaf above the lowest level");
      const std::size_t level = levels_.size() - 1 - depth;
      if (seen.level != level) {
        Report(seen.page, "states level " + std::to_string(seen.level) + " instead of " + std::to_string(level), true);
      }
    }
    CheckChain(levels_[depth]);
  }
}

// Walks follow the links of leaves; a wrong one loses rows. Nobody follows those of nodes, which other programs may
// link below one parent only.
void BTreeCheck::CheckChain(const std::vector<Seen>& level) {
  for (std::size_t i = 0; i < level.size(); ++i) {
    const PageNumber previous = i == 0 ? 0 : level[i - 1].page;
    const PageNumber next = i + 1 == level.size() ? 0 : level[i + 1].page;
    if (level[i].previous == previous && level[i].next == next) continue;
    Report(level[i].page,
           "is linked to " + std::to_string(level[i].previous) + " and " + std::to_string(level[i].next) +
               " instead of " + std::to_string(previous) + " and " + std::to_string(next),
           !level[i].isLeaf);
  }
}

// The map against the tree, both ways. A page of the tree that is missing in it, or is marked free, would be handed out
// again under the index; one that is only in the map is lost to the file until the index is made anew.
void BTreeCheck::CheckOwnedPages() {
  try {
    const std::vector<PageNumber> owned = UsageMap(*pager_, ownedPages_).Pages();
    const std::set<PageNumber> ownedSet(owned.begin(), owned.end());
    const PageAllocator allocator(*pager_);
    for (const PageNumber page : visited_) {
      if (!ownedSet.contains(page)) Report(page, "is not in the map of the index's pages");
      if (page < pager_->PageCount() && allocator.IsFree(page)) Report(page, "is marked free");
    }
    for (const PageNumber page : owned)
      if (!visited_.contains(page)) Report(page, "is in the map of the index's pages but not in the tree");
  } catch (const Error& error) {
    report_.findings.push_back({ownedPages_.page, error.Description(), false});
  }
}

}  // namespace tavi::access
