#include "platform/Matchers.h"

#include <algorithm>

namespace tavi::testing {
namespace {

using Texts = std::vector<std::string>;

bool AreAmong(const Texts& wanted, const Texts& texts) {
  return std::all_of(wanted.begin(), wanted.end(), [&](const std::string& text) {
    return std::count(texts.begin(), texts.end(), text) >= std::count(wanted.begin(), wanted.end(), text);
  });
}

::testing::AssertionResult Result(bool isFulfilled, const char* expression, const Matcher& matcher,
                                  const std::string& found) {
  if (isFulfilled) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << "Value of: " << expression << "\nExpected: " << matcher.Words()
                                       << "\n  Actual: " << found;
}

}  // namespace

bool Matcher::Takes(const std::string& text) const {
  switch (kind_) {
    case Kind::Contains:
      return text.find(texts_[0]) != std::string::npos;
    case Kind::StartsWith:
      return text.starts_with(texts_[0]);
    case Kind::EndsWith:
      return text.ends_with(texts_[0]);
    case Kind::IsEmpty:
      return text.empty();
    case Kind::Not:
      return !parts_[0].Takes(text);
    case Kind::AllOf:
      return parts_[0].Takes(text) && parts_[1].Takes(text);
    default:
      ADD_FAILURE() << "a text has no elements";
      return false;
  }
}

bool Matcher::Takes(const Texts& texts) const {
  switch (kind_) {
    case Kind::IsEmpty:
      return texts.empty();
    case Kind::Elements:
      return texts == texts_;
    case Kind::ElementsInAnyOrder:
      return texts.size() == texts_.size() && AreAmong(texts_, texts);
    case Kind::AmongElements:
      return AreAmong(texts_, texts);
    case Kind::Not:
      return !parts_[0].Takes(texts);
    case Kind::AllOf:
      return parts_[0].Takes(texts) && parts_[1].Takes(texts);
    default:
      ADD_FAILURE() << "this is asked of one text";
      return false;
  }
}

std::string Matcher::Words() const {
  const auto list = [&] { return ::testing::PrintToString(texts_); };
  switch (kind_) {
    case Kind::Contains:
      return "contains " + list();
    case Kind::StartsWith:
      return "starts with " + list();
    case Kind::EndsWith:
      return "ends with " + list();
    case Kind::IsEmpty:
      return "is empty";
    case Kind::Elements:
      return "has the elements " + list();
    case Kind::ElementsInAnyOrder:
      return "has, in any order, the elements " + list();
    case Kind::AmongElements:
      return "has among its elements " + list();
    case Kind::Not:
      return "does not: " + parts_[0].Words();
    case Kind::AllOf:
      return parts_[0].Words() + ", and " + parts_[1].Words();
  }
  return "";
}

Matcher HasSubstr(std::string part) {
  return {Matcher::Kind::Contains, Texts{std::move(part)}};
}
Matcher StartsWith(std::string start) {
  return {Matcher::Kind::StartsWith, Texts{std::move(start)}};
}
Matcher EndsWith(std::string end) {
  return {Matcher::Kind::EndsWith, Texts{std::move(end)}};
}
Matcher IsEmpty() {
  return {Matcher::Kind::IsEmpty, Texts()};
}
Matcher Not(Matcher part) {
  return {Matcher::Kind::Not, std::vector<Matcher>{std::move(part)}};
}
Matcher AllOf(Matcher first, Matcher second) {
  return {Matcher::Kind::AllOf, std::vector<Matcher>{std::move(first), std::move(second)}};
}
Matcher IsSupersetOf(std::vector<std::string> texts) {
  return {Matcher::Kind::AmongElements, std::move(texts)};
}

::testing::AssertionResult Fulfils(const char* expression, const char* /*expected*/, const std::string& text,
                                   const Matcher& matcher) {
  return Result(matcher.Takes(text), expression, matcher, ::testing::PrintToString(text));
}
::testing::AssertionResult Fulfils(const char* expression, const char* /*expected*/, const Texts& texts,
                                   const Matcher& matcher) {
  return Result(matcher.Takes(texts), expression, matcher, ::testing::PrintToString(texts));
}
::testing::AssertionResult Fulfils(const char* expression, const char* expected, const std::set<std::string>& texts,
                                   const Matcher& matcher) {
  return Fulfils(expression, expected, Texts(texts.begin(), texts.end()), matcher);
}

}  // namespace tavi::testing
