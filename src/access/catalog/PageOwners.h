#pragma once

#include <map>
#include <string>
#include <vector>

#include "access/catalog/Check.h"
#include "access/catalog/CheckReport.h"
#include "access/file/Pager.h"

namespace tavi::access {

/// Who owns each page of a file, collected while it is checked.
class PageOwners {
 public:
  PageOwners(Pager& pager, CheckReport& report);

  /// Notes an owner. Reports a page past the end, a second owner, and a page that is marked free.
  void Claim(PageNumber page, const std::string& owner);
  /// Notes a usage map: its row (which must not serve twice) and its pages of bits.
  void ClaimMap(RowPointer map, const std::string& owner);
  /// Looks at the pages on which the noted usage maps lie. Call it when all are noted.
  void CheckMapPages();
  /// Remarks on pages that are neither owned nor free.
  void ReportLeaks();

 private:
  Pager& pager_;
  CheckReport& report_;
  std::vector<std::string> owners_;  ///< by page; empty: none
  std::map<RowPointer, std::string> maps_;
};

}  // namespace tavi::access
