#include "store/StoredNameKeys.h"

#include <memory>
#include <string>

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

/// The keys of the current row's names, and whether the row has others.
struct Keys {
  Keys(const ado::Recordset& row, const NameKeyService& keys)
      : firstName(keys.Key(NameKeyMode::FirstName, cDatabase::GetTextField(row, "FirstName"))),
        surname(keys.Key(NameKeyMode::Surname, cDatabase::GetTextField(row, "LastName"))),
        areStale(cDatabase::GetTextField(row, kFirstNameKey) != firstName ||
                 cDatabase::GetTextField(row, kSurnameKey) != surname) {}

  std::string firstName;
  std::string surname;
  bool areStale;
};

}  // namespace

std::size_t CountStaleNameKeys(ado::Connection& connection, const NameKeyService& keys) {
  std::size_t count = 0;
  const auto rows = OpenMembers(connection, ado::CursorType::ForwardOnly, ado::LockType::ReadOnly);
  for (; !rows->AtEnd(); rows->MoveNext()) {
    if (Keys(*rows, keys).areStale) ++count;
  }
  return count;
}

std::size_t RefreshNameKeys(ado::Connection& connection, const NameKeyService& keys) {
  std::size_t count = 0;
  const auto rows = OpenMembers(connection, ado::CursorType::Dynamic, ado::LockType::Pessimistic);
  for (; !rows->AtEnd(); rows->MoveNext()) {
    const Keys fresh(*rows, keys);
    if (!fresh.areStale) continue;
    rows->Set(kFirstNameKey, fresh.firstName);
    rows->Set(kSurnameKey, fresh.surname);
    rows->Update();
    ++count;
  }
  return count;
}

}  // namespace tavi
