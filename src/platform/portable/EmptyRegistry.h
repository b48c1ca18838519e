#pragma once

#include "platform/Platform.h"

namespace tavi {

/// The registry of a system that has none: no value is ever there.
class EmptyRegistry : public Registry {
 public:
  [[nodiscard]] std::optional<std::string> ReadText(RegistryRoot /*root*/, std::string_view /*keyPath*/,
                                                    std::string_view /*valueName*/) const override {
    return std::nullopt;
  }
};

}  // namespace tavi
