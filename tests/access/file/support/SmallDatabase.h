#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "access/file/FileSystem.h"
#include "access/file/Page.h"
#include "access/file/Pager.h"

namespace tavi::access::test {

struct SmallDatabaseOptions {
  std::uint8_t version = 1;
  std::uint32_t databaseKey = 0;
  std::string password = {};  // ASCII
};

/// Page 0 as it is stored.
[[nodiscard]] Page MakeHeaderPage(const SmallDatabaseOptions& options = {});
/// The pages of a file that has a header, a global map and otherwise pages that only carry their number (PageText). All
/// pages are in use. Enough for pagers; there are no tables in it. `count` is 2 to 512.
[[nodiscard]] std::vector<Page> MakeSmallDatabase(PageNumber count, const SmallDatabaseOptions& options = {});

/// Puts a text into a page that nobody interprets, and reads it.
void SetPageText(Page& page, const std::string& text);
[[nodiscard]] std::string PageText(const Page& page);
/// Reads the text of a page in a statement of its own.
std::string ReadText(Pager& pager, PageNumber number);
/// Writes a text into a page in a statement of its own.
void WriteText(Pager& pager, PageNumber number, const std::string& text);

}  // namespace tavi::access::test
