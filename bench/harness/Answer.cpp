#include "harness/Answer.h"

#include "platform/values/Convert.h"

namespace tavi::bench {

void Answer::Add(const Value& value) {
  if (const auto* text = std::get_if<std::string>(&value)) return Add(std::string_view(*text));
  if (const auto* number = std::get_if<std::int32_t>(&value)) return Add(static_cast<double>(*number));
  if (const auto* number = std::get_if<double>(&value)) return Add(*number);
  if (const auto* date = std::get_if<Date>(&value)) return Add(date->days);
  if (const auto* truth = std::get_if<bool>(&value)) return Add(*truth ? -1.0 : 0.0);
  if (IsNull(value)) return AddNull();
  Add(ToDouble(value));
}

}  // namespace tavi::bench
