#pragma once

#include "platform/Platform.h"

namespace tavi {

/// The outside automation class that makes name keys, for machines where it is registered. Each key takes a new object
/// of it.
class OutsideNameKeys : public NameKeyService {
 public:
  /// True when the class is registered on this machine for programs like this one.
  [[nodiscard]] static bool IsRegistered();
  /// Raises the class's own error when it cannot be created or called.
  [[nodiscard]] std::string Key(NameKeyMode mode, std::string_view name) const override;
};

}  // namespace tavi
