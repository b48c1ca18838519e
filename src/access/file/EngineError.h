#pragma once

#include <string>

#include "platform/values/Error.h"

namespace tavi::access {

/// The source that all errors of the engine carry: the name under which hosts know the provider.
inline constexpr char kErrorSource[] = "Microsoft JET Database Engine";

/// Raises ProviderFailure (0x80004005) with a description for people: what went wrong, where, and what to do.
[[noreturn]] inline void RaiseFailure(const std::string& description) {
  throw Error(ErrorNumber::ProviderFailure, kErrorSource, description);
}

/// Raises ProviderFailure for damage found in the file. `what` says which part is bad and what was found there; the
/// advice what to do is added.
[[noreturn]] inline void RaiseDamage(const std::string& what) {
  RaiseFailure("The database is damaged: " + what + " Restore the file from a backup.");
}

}  // namespace tavi::access
