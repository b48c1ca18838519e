#include "host/imports/ImportPlan.h"

#include <algorithm>

#include "platform/values/Error.h"

namespace tavi::host {

std::size_t ImportPlan::Added() const {
  return static_cast<std::size_t>(
      std::ranges::count_if(changes, [](const RecordChange& change) { return change.isNew; }));
}

std::string PlaceInFile(const std::string& fileName, std::size_t line) {
  return fileName + ":" + std::to_string(line);
}

void RefuseImport(const std::string& fileName, std::size_t line, const std::string& reason) {
  throw Error(ErrorNumber::InvalidArgument, "tavi", PlaceInFile(fileName, line) + ": " + reason);
}

}  // namespace tavi::host
