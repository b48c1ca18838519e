#include "host/scoring/StoredEvents.h"

#include <algorithm>

#include "facade/ThreadStore.h"
#include "platform/values/Convert.h"
#include "platform/values/Text.h"

namespace tavi::host {
namespace {

constexpr const char* kAwardNumber = "ID";

/// Adds each row of a statement: its values but the one of `unwanted`. Null and an empty text are told apart.
void AddRows(cDatabase& store, const std::string& statement, std::string_view unwanted,
             std::vector<std::string>& texts) {
  const auto rows = store.OpenRecordset(statement);
  for (; !rows->AtEnd(); rows->MoveNext()) {
    std::string text;
    for (const ado::Field& field : rows->Fields()) {
      if (EqualIgnoringCase(field.name, unwanted)) continue;
      const Value value = rows->Get(field.name);
      text += '\n' + field.name + (IsNull(value) ? "" : "=" + ToText(value));
    }
    texts.push_back(std::move(text));
  }
}

std::vector<std::string> NumbersOf(cDatabase& store, const Event& event) {
  std::vector<std::string> numbers;
  const auto rows =
      store.OpenRecordset("Select ID From Competitions Where CompetitionName = " + cDatabase::SQLString(event.name) +
                          " And CompetitionDate = " + cDatabase::SQLDate(event.date));
  for (; !rows->AtEnd(); rows->MoveNext()) numbers.push_back(ToText(rows->Get("ID")));
  return numbers;
}

}  // namespace

std::vector<std::string> ReadStoredEvents(const std::vector<ScoredEvent>& events) {
  const std::shared_ptr<cDatabase> store = ThreadStore();
  std::vector<std::string> texts;
  for (const ScoredEvent& scored : events) {
    for (const std::string& number : NumbersOf(*store, scored.event)) {
      AddRows(*store, "Select * From Competitions Where ID = " + number, "", texts);
      const auto results = static_cast<std::ptrdiff_t>(texts.size());
      AddRows(*store, "Select * From Results Where Competition = " + number, "", texts);
      // They have no numbers, and come in the order of their places in the file.
      std::sort(texts.begin() + results, texts.end());
      AddRows(*store, "Select * From MasterPoints Where CompetitionID = " + number + " Order By ID", kAwardNumber,
              texts);
    }
  }
  return texts;
}

}  // namespace tavi::host
