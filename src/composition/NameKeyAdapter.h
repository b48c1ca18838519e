#pragma once

#include "names/NameKeys.h"
#include "platform/Platform.h"

namespace tavi {

/// The component's own name keys as the name-key service.
class NameKeyAdapter : public NameKeyService {
 public:
  [[nodiscard]] std::string Key(NameKeyMode mode, std::string_view name) const override {
    return mode == NameKeyMode::Surname ? SurnameKey(name) : FirstNameKey(name);
  }
};

}  // namespace tavi
