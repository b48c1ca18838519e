// The check of one index: first its tree by itself (pages, links, order, the map of its pages), then its entries
// against those that the rows ask for. Both lists are held in memory and sorted, so that two differences of sorted
// lists say what is missing and what is too much: for n rows n log n comparisons, and one read of each row.
//
// Keys can differ although all rows are there, because programs do not agree about some letters and decimals (see
// KeyLookup.h). That is no damage, and is told apart from it in CountOtherKeys before entries are compared.
#include <algorithm>

#include "access/catalog/KeyLookup.h"
#include "access/catalog/TableCheck.h"
#include "access/file/UsageMap.h"
#include "access/index/BTreeCheck.h"

namespace tavi::access {

namespace {

/// One index of a table, while it is checked.
class IndexCheck {
 public:
  IndexCheck(Pager& pager, Table& table, std::size_t index, PageOwners& owners, CheckReport& report)
      : pager_(pager),
        table_(table),
        index_(index),
        made_(table.Indexes()[index]),
        owners_(owners),
        report_(report),
        where_("index '" + made_.name + "' of table '" + table.Name() + "'") {}

  /// Two guards: a tree that is damaged in one place may still tell something of its entries.
  void Run() {
    report_.Guard("The " + where_, [&] { CheckPages(); });
    report_.Guard("The " + where_, [&] { CheckEntries(); });
  }

 private:
  void CheckPages() {
    owners_.ClaimMap(made_.definition.ownedPages, "the " + where_);
    for (const PageNumber page : UsageMap(pager_, made_.definition.ownedPages).Pages()) {
      owners_.Claim(page, "the " + where_);
      report_.CountPage();
    }
    const PageNumber table = table_.Definition().page;
    // Warnings are about what other programs write and every reader can live with.
    const BTreeReport tree = BTreeCheck(pager_, table, made_.definition.root, made_.definition.ownedPages).Run();
    for (const BTreeFinding& finding : tree.findings) {
      std::string text = "The " + where_ + ": " + finding.text;
      if (finding.isWarning) {
        report_.Leftover(std::move(text));
      } else {
        report_.Add(std::move(text));
      }
    }
  }

  /// The whole tree is walked by its leaves, as searches would reach them.
  void CheckEntries() {
    std::vector<IndexEntry> stored;
    for (auto cursor = table_.Tree(index_).SeekFirst(std::nullopt); cursor->Current() != nullptr; cursor->Next())
      stored.push_back(*cursor->Current());
    // Without keys nothing can be said of single entries; the tree has been looked at.
    const KeyEncoder* encoder = FindEncoder();
    if (encoder == nullptr) {
      report_.Remark("The " + where_ +
                     " is in a sort order that is not known here. That does no harm: searches pass it by, and the "
                     "table can be read, but not written.");
      return;
    }
    std::vector<IndexEntry> expected = MakeEntries(*encoder);
    std::vector<IndexEntry> sorted = stored;
    if (!std::ranges::is_sorted(stored)) report_.Add("The entries of " + where_ + " are not in order.");
    std::ranges::sort(sorted);
    std::ranges::sort(expected);
    // All rows are there, each once, so uniqueness is left to the program whose order it is.
    if (const std::size_t differing = CountOtherKeys(sorted, expected); differing > 0) {
      report_.Remark("The " + where_ + " holds " + std::to_string(differing) + " of its " +
                     std::to_string(stored.size()) +
                     " keys in an order other than this program's. That does no harm: searches pass it by, and it is "
                     "made anew before the table is next written, or by 'tavi compact'.");
      return;
    }
    Compare(sorted, expected);
    CheckUnique(sorted);
  }

  /// Keys of foreign sort orders cannot be made here: then only the tree itself is looked at.
  const KeyEncoder* FindEncoder() {
    try {
      return &table_.Encoder(index_);
    } catch (const Error&) {
      return nullptr;
    }
  }

  /// A null in a key that must not have one is a finding about the row; it has its entry all the same.
  std::vector<IndexEntry> MakeEntries(const KeyEncoder& encoder) {
    std::vector<bool> wanted(table_.Columns().size());
    for (const std::size_t column : made_.columns) wanted[column] = true;
    std::vector<IndexEntry> entries;
    // Moved rows come up where their link stands, which is the place that entries name.
    for (auto row = table_.Next(std::nullopt); row.has_value(); row = table_.Next(row)) {
      const RowValues values = table_.Read(*row, wanted);
      if ((made_.primaryKey || made_.definition.required) && encoder.AnyNull(values))
        report_.Add("The " + NameOf(*row) + " has a null in the key of " + where_ + ".");
      if (!encoder.HasEntry(values)) continue;
      entries.push_back({encoder.RowKey(values), *row});
      if (encoder.AllNull(values)) nullKey_ = entries.back().key;
    }
    return entries;
  }

  /// How many rows stand under a key of their own that another program made. 0 when there is any other difference.
  std::size_t CountOtherKeys(std::vector<IndexEntry> stored, std::vector<IndexEntry> expected) {
    std::ranges::sort(stored, {}, &IndexEntry::row);
    std::ranges::sort(expected, {}, &IndexEntry::row);
    // A row is missing or there twice: that is damage, whatever its key.
    if (!std::ranges::equal(stored, expected, {}, &IndexEntry::row, &IndexEntry::row)) return 0;
    std::size_t differing = 0;
    for (std::size_t i = 0; i < stored.size(); ++i) {
      if (stored[i].key == expected[i].key) continue;
      // A key that all programs make alike differs: damage as well.
      if (!KeyCanDiffer(table_, index_, table_.Read(stored[i].row))) return 0;
      ++differing;
    }
    return differing;
  }

  /// An entry under a wrong key appears twice: as missing under its own, as unwanted under the other.
  void Compare(const std::vector<IndexEntry>& stored, const std::vector<IndexEntry>& expected) {
    std::vector<IndexEntry> missing;
    std::vector<IndexEntry> unwanted;
    std::ranges::set_difference(expected, stored, std::back_inserter(missing));
    std::ranges::set_difference(stored, expected, std::back_inserter(unwanted));
    for (const IndexEntry& entry : missing)
      report_.Add("The " + NameOf(entry.row) + " is not in the " + where_ + " under its key.");
    for (const IndexEntry& entry : unwanted)
      report_.Add("The " + where_ + " has an entry for the " + NameOf(entry.row) + " that no such row has.");
  }

  /// Rows whose key is all null may be several in a unique index.
  void CheckUnique(const std::vector<IndexEntry>& stored) {
    if (!made_.definition.unique) return;
    for (std::size_t i = 1; i < stored.size(); ++i) {
      if (stored[i].key == stored[i - 1].key && stored[i].key != nullKey_)
        report_.Add("The " + NameOf(stored[i - 1].row) + " and the " + NameOf(stored[i].row) +
                    " have the same key in the unique " + where_ + ".");
    }
  }

  Pager& pager_;
  Table& table_;
  std::size_t index_;
  const Index& made_;
  PageOwners& owners_;
  CheckReport& report_;
  std::string where_;
  std::optional<IndexKey> nullKey_;
};

}  // namespace

void CheckIndex(Pager& pager, Table& table, std::size_t index, PageOwners& owners, CheckReport& report) {
  IndexCheck(pager, table, index, owners, report).Run();
}

}  // namespace tavi::access
