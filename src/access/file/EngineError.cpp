#include "access/file/EngineError.h"

namespace tavi::access {

void RaiseFailure(const std::string& description) {
  throw Error(ErrorNumber::ProviderFailure, kErrorSource, description);
}

void RaiseDamage(const std::string& what) {
  RaiseFailure("The database is damaged: " + what +
               " Restore it from a backup, or copy what is readable with 'tavi compact'.");
}

}  // namespace tavi::access
