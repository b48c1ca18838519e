#pragma once

#include "platform/Platform.h"

namespace tavi {

/// The registry of Windows. A 32-bit program sees the 32-bit view.
class SystemRegistry : public Registry {
 public:
  [[nodiscard]] std::optional<std::string> ReadText(RegistryRoot root, std::string_view keyPath,
                                                    std::string_view valueName) const override;
};

}  // namespace tavi
