#include "store/RecoveryTask.h"

#include "platform/values/Error.h"
#include "platform/values/Text.h"

namespace tavi {

TableSpecification ParseTableSpecification(const std::string& text) {
  const std::size_t colon = text.find(':');
  if (colon == std::string::npos) return {text, ""};
  return {text.substr(0, colon), Trim(text.substr(colon + 1))};
}

std::map<std::string, std::string> ParseDefaults(const std::string& text) {
  std::map<std::string, std::string> defaults;
  if (text.empty()) return defaults;
  for (const std::string& item : Split(text, ',')) {
    const std::size_t equals = item.find('=');
    if (equals == std::string::npos) throw Error(ErrorNumber::Component, "Recovery", "Illegal defaults setting");
    defaults[LowerCase(Trim(item.substr(0, equals)))] = Trim(item.substr(equals + 1));
  }
  return defaults;
}

}  // namespace tavi
