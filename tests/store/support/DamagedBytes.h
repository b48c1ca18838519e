#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tavi::testing {

/// The bytes of an Access file, with parts of a table found by a text that stands in its rows, and broken.
class DamagedBytes {
 public:
  explicit DamagedBytes(std::string content) : content_(std::move(content)) {}

  [[nodiscard]] const std::string& Content() const { return content_; }
  /// The page on which a latin text last stands, with two bytes a character or compressed; 0 when there is none.
  [[nodiscard]] std::size_t PageWith(const std::string& text) const;
  /// The page of the definition of the table in whose rows the text stands.
  [[nodiscard]] std::size_t DefinitionOfTableWith(const std::string& text) const;
  /// The pages with the rows of that table, in order.
  [[nodiscard]] std::vector<std::size_t> DataPagesOf(std::size_t definition) const { return PagesOf(definition, 1); }
  /// The pages of its indexes.
  [[nodiscard]] std::vector<std::size_t> IndexPagesOf(std::size_t definition) const;
  [[nodiscard]] std::size_t RowsOn(std::size_t page) const;

  void ZeroPage(std::size_t page);
  /// Gives a row of a page a place behind the page's end.
  void MisplaceRow(std::size_t page, std::size_t row);
  void CutBefore(std::size_t page, std::size_t moreBytes = 0);

 private:
  [[nodiscard]] std::vector<std::size_t> PagesOf(std::size_t definition, char type) const;

  std::string content_;
};

}  // namespace tavi::testing
