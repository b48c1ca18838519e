#pragma once

#include <memory>

#include "platform/Platform.h"
#include "platform/values/Text.h"

namespace tavi::testing {

/// Keys that tests can foresee: the mode and the upper-case consonants of the name. Counts how often it is asked.
class LetterKeys : public NameKeyService {
 public:
  [[nodiscard]] std::string Key(NameKeyMode mode, std::string_view name) const override {
    calls.emplace_back(mode, std::string(name));
    std::string key = mode == NameKeyMode::Surname ? "S" : "F";
    for (const char letter : UpperCase(name)) {
      if (std::string_view("AEIOUY").find(letter) == std::string_view::npos) key.push_back(letter);
    }
    return key;
  }
  mutable std::vector<std::pair<NameKeyMode, std::string>> calls;
};

inline std::shared_ptr<const NameKeyService> Keys() {
  return std::make_shared<LetterKeys>();
}

}  // namespace tavi::testing
