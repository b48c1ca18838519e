#include "access/table/FormatVersion.h"

#include "access/file/DatabaseHeader.h"
#include "access/file/Format.h"

namespace tavi::access {

FormatVersion FormatVersionOf(Pager& pager) {
  if (!pager.IsJet3()) return {};
  Page header = *pager.Read(format::kHeaderPage);
  ToggleHeaderMask(header);
  return {true, header.U16(format::header::kCodePageOffset)};
}

}  // namespace tavi::access
