#include "access/index/NodeContent.h"

#include <algorithm>
#include <string>

#include "access/file/EngineError.h"
#include "access/index/EntryWriter.h"

namespace tavi::access {

namespace layout = format::index;

NodeContent::NodeContent(const IndexPage& page) : separators(page) {
  if (page.IsLeaf())
    RaiseDamage("index page " + std::to_string(page.Number()) + " is a leaf where a node page is expected.");
  for (std::size_t offset = 0; offset < page.End();) {
    const EntryPlace place = page.EntryAt(offset);
    children.push_back(page.Child(place));
    offset = place.end;
  }
  if (page.Tail() != 0) {
    children.push_back(page.Tail());
  } else if (separators.Size() > 0) {
    separators.Erase(separators.Size() - 1);
  }
}

std::size_t NodeContent::PositionOf(PageNumber child, PageNumber page) const {
  const auto found = std::ranges::find(children, child);
  if (found == children.end())
    RaiseDamage("index page " + std::to_string(page) + " does not lead to page " + std::to_string(child) + ".");
  return static_cast<std::size_t>(found - children.begin());
}

std::optional<EntryBytes> NodeContent::Remove(std::size_t position) {
  std::optional<EntryBytes> last;
  children.erase(children.begin() + static_cast<std::ptrdiff_t>(position));
  if (position < separators.Size()) {
    separators.Erase(position);
  } else if (separators.Size() > 0) {
    last = separators.Copy(separators.Size() - 1);
    separators.Erase(separators.Size() - 1);
  }
  return last;
}

void NodeContent::Append(std::span<const std::uint8_t> separator, const NodeContent& other) {
  separators.Append(separator);
  for (std::size_t i = 0; i < other.separators.Size(); ++i) separators.Append(other.separators[i]);
  children.insert(children.end(), other.children.begin(), other.children.end());
}

NodeContent NodeContent::Part(EntryRange range) const {
  NodeContent part;
  const auto first = children.begin() + static_cast<std::ptrdiff_t>(range.first);
  part.children.assign(first, first + static_cast<std::ptrdiff_t>(range.count));
  for (std::size_t i = 0; i + 1 < range.count; ++i) part.separators.Append(separators[range.first + i]);
  return part;
}

bool NodeContent::Fits(EntryRange range) const {
  if (range.count < 2) return true;
  const std::size_t count = range.count - 1;
  return StoredSize(separators, {range.first, count}, 0) + count * layout::kEntryChildSize <= layout::kEntriesSize;
}

void WriteNode(Page& page, PageNumber table, std::uint8_t level, const NodeContent& content) {
  FormatIndexPage(page, table, level);
  page.SetU32(layout::kTailOffset, content.children.back());
  EntryWriter writer(page, 0);
  for (std::size_t i = 0; i < content.separators.Size(); ++i) writer.Add(content.separators[i], content.children[i]);
  writer.Finish();
}

}  // namespace tavi::access
