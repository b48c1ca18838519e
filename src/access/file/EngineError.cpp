#include "access/file/EngineError.h"

namespace tavi::access {

void RaiseFailure(const std::string& description) {
  throw Error(ErrorNumber::ProviderFailure, kErrorSource, description);
}

void RaiseDamage(const std::string& what) {
  RaiseFailure("The database is damaged: " + what + " Restore the file from a backup.");
}

}  // namespace tavi::access
