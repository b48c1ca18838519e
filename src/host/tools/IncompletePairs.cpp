#include "host/tools/IncompletePairs.h"

#include <utility>

#include "host/tools/Connect.h"
#include "platform/values/Convert.h"
#include "store/cDatabase.h"

namespace tavi::host {
namespace {

/// A field as `read` converts it; nothing where it is empty.
template <typename Read>
auto FieldIn(const ado::Recordset& row, const char* column, const Read& read) {
  const Value value = row.Get(column);
  return IsNull(value) ? std::nullopt : std::optional(read(value));
}

}  // namespace

std::vector<IncompletePair> IncompletePairs(const Context& context, const std::string& file) {
  const std::unique_ptr<ado::Connection> connection = Connect(context, file);
  const std::unique_ptr<ado::Recordset> rows = connection->OpenRecordset(
      "Select LowerPlayer, HigherPlayer, HigherFirst, Handicap, KnownAs, Active From Partnerships "
      "Where LowerPlayer Is Null Or HigherPlayer Is Null",
      ado::CursorType::ForwardOnly, ado::LockType::ReadOnly, ado::SourceKind::CommandText);
  std::vector<IncompletePair> pairs;
  for (; !rows->AtEnd(); rows->MoveNext()) {
    IncompletePair pair;
    pair.first = FieldIn(*rows, "LowerPlayer", ToInt32);
    pair.second = FieldIn(*rows, "HigherPlayer", ToInt32);
    if (cDatabase::GetBooleanField(*rows, "HigherFirst", true)) std::swap(pair.first, pair.second);
    pair.knownAs = cDatabase::GetTextField(*rows, "KnownAs");
    pair.handicap = FieldIn(*rows, "Handicap", ToDouble);
    pair.active = cDatabase::GetBooleanField(*rows, "Active");
    pairs.push_back(std::move(pair));
  }
  rows->Close();
  connection->Close();
  return pairs;
}

}  // namespace tavi::host
