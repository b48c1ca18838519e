#include "store/StoredNameKeys.h"

#include <memory>
#include <string>

#include "platform/values/Convert.h"
#include "store/cDatabase.h"

namespace tavi {
namespace {

constexpr const char* kFirstNameKey = "FuzzedFirstName";
constexpr const char* kSurnameKey = "FuzzedLastName";

std::unique_ptr<ado::Recordset> OpenMembers(ado::Connection& connection, ado::CursorType cursorType,
                                            ado::LockType lockType) {
  return connection.OpenRecordset("Select FirstName, LastName, FuzzedFirstName, FuzzedLastName From Members",
                                  cursorType, lockType, ado::SourceKind::CommandText);
}

StoredNames NamesOf(const ado::Recordset& row) {
  const auto text = [&row](const char* column) {
    const Value value = row.Get(column);
    return IsNull(value) ? std::string() : ToText(value);
  };
  return {text("FirstName"), text("LastName"), text(kFirstNameKey), text(kSurnameKey)};
}

}  // namespace

StoredNames WithFreshKeys(StoredNames names, const NameKeyService& keys) {
  const NameKeys fresh = keys.Keys(cDatabase::PlainText(names.surname), cDatabase::PlainText(names.firstName));
  names.firstNameKey = cDatabase::StoredText(fresh.firstName);
  names.surnameKey = cDatabase::StoredText(fresh.surname);
  return names;
}

std::size_t CountStaleNameKeys(ado::Connection& connection, const NameKeyService& keys) {
  std::size_t count = 0;
  const auto rows = OpenMembers(connection, ado::CursorType::ForwardOnly, ado::LockType::ReadOnly);
  for (; !rows->AtEnd(); rows->MoveNext()) {
    const StoredNames names = NamesOf(*rows);
    if (WithFreshKeys(names, keys) != names) ++count;
  }
  return count;
}

std::size_t RefreshNameKeys(ado::Connection& connection, const NameKeyService& keys) {
  std::size_t count = 0;
  const auto rows = OpenMembers(connection, ado::CursorType::Dynamic, ado::LockType::Pessimistic);
  for (; !rows->AtEnd(); rows->MoveNext()) {
    const StoredNames names = NamesOf(*rows);
    const StoredNames fresh = WithFreshKeys(names, keys);
    if (fresh == names) continue;
    rows->Set(kFirstNameKey, fresh.firstNameKey);
    rows->Set(kSurnameKey, fresh.surnameKey);
    rows->Update();
    ++count;
  }
  return count;
}

}  // namespace tavi
