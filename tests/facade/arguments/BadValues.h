#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "facade/arguments/BadArguments.h"
#include "platform/values/Date.h"

/// The values that nobody should pass, by the type of the argument. Each function gives one call for each value.
namespace tavi::testing {

template <typename T>
struct NamedValue {
  std::string name;
  T value;
};

/// The calls refer to the values, of which some are long: a copy in each of them would take seconds to make.
template <typename T>
std::vector<BadCall> CallsWith(const std::string& argument, const std::vector<NamedValue<T>>& values,
                               const std::function<void(MembershipDatabase&, const T&)>& operation) {
  std::vector<BadCall> calls;
  for (const NamedValue<T>& bad : values) {
    calls.push_back({argument + ": " + bad.name,
                     [operation, value = &bad.value](MembershipDatabase& club) { operation(club, *value); }});
  }
  return calls;
}

inline std::vector<BadCall> Text(const std::string& argument,
                                 const std::function<void(MembershipDatabase&, const std::string&)>& operation) {
  using namespace std::string_literals;
  static const std::vector<NamedValue<std::string>> kTexts{
      {"empty", ""},
      {"blanks", "   "},
      {"a million letters", std::string(1'000'000, 'x')},
      {"a million blanks", std::string(1'000'000, ' ')},
      {"a million words",
       [] {
         std::string words;
         for (int word = 0; word < 250'000; ++word) words += "ab c";
         return words;
       }()},
      {"sixty thousand quotes", std::string(60'000, '\'')},
      {"256 letters", std::string(256, 'x')},
      {"255 letters of which one is escaped", std::string(254, 'x') + "%"},
      {"a NUL", "\0"s},
      {"a NUL inside", "An\0n Lee"s},
      {"no UTF-8", "An\xFF\xC3 \x80Lee"},
      {"a cut sequence", "Ann \xE2\x82"},
      {"unpaired surrogates", "An\xED\xA0\x80 \xED\xB0\x80Lee"},
      {"characters beyond 16 bits", "\xF0\x9F\x82\xA1 \xF0\x9F\x82\xB1"},
      {"SQL", "x'; Delete from Members; '"},
      {"SQL comment", "x' Or 'a' = 'a"},
      {"escapes", "%p%c%l%\r\n%"},
      {"wildcards", "*?[#"}};
  return CallsWith<std::string>(argument, kTexts, operation);
}

inline std::vector<BadCall> Number(const std::string& argument,
                                   const std::function<void(MembershipDatabase&, double)>& operation) {
  using Limits = std::numeric_limits<double>;
  static const std::vector<NamedValue<double>> kNumbers{{"NaN", Limits::quiet_NaN()},
                                                        {"infinite", Limits::infinity()},
                                                        {"negatively infinite", -Limits::infinity()},
                                                        {"the largest", Limits::max()},
                                                        {"the lowest", Limits::lowest()},
                                                        {"enormous", 1e308},
                                                        {"tiny", Limits::denorm_min()},
                                                        {"negative", -50.0},
                                                        {"nothing", -0.0}};
  return CallsWith<double>(argument, kNumbers, operation);
}

inline std::vector<BadCall> Whole(const std::string& argument,
                                  const std::function<void(MembershipDatabase&, std::int32_t)>& operation) {
  using Limits = std::numeric_limits<std::int32_t>;
  static const std::vector<NamedValue<std::int32_t>> kNumbers{
      {"the lowest", Limits::min()}, {"the largest", Limits::max()}, {"-2", -2}, {"-1", -1}, {"0", 0}, {"unknown", 77}};
  return CallsWith<std::int32_t>(argument, kNumbers, operation);
}

inline std::vector<BadCall> Short(const std::string& argument,
                                  const std::function<void(MembershipDatabase&, std::int16_t)>& operation) {
  using Limits = std::numeric_limits<std::int16_t>;
  static const std::vector<NamedValue<std::int16_t>> kNumbers{
      {"the lowest", Limits::min()}, {"the largest", Limits::max()}, {"-1", -1}, {"0", 0}, {"256", 256}};
  return CallsWith<std::int16_t>(argument, kNumbers, operation);
}

inline std::vector<BadCall> Day(const std::string& argument,
                                const std::function<void(MembershipDatabase&, Date)>& operation) {
  using Limits = std::numeric_limits<double>;
  static const std::vector<NamedValue<Date>> kDays{{"NaN", Date{Limits::quiet_NaN()}},
                                                   {"infinite", Date{Limits::infinity()}},
                                                   {"negatively infinite", Date{-Limits::infinity()}},
                                                   {"behind the year 9999", Date{2958466.0}},
                                                   {"before the year 100", Date{-657436.0}},
                                                   {"enormous", Date{1e300}},
                                                   {"the last moment", Date{2958465.99999}},
                                                   {"the first day", Date{-657434.0}},
                                                   {"before day 0", Date{-1.25}}};
  return CallsWith<Date>(argument, kDays, operation);
}

}  // namespace tavi::testing
