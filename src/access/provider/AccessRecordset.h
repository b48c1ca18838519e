#pragma once

#include <memory>
#include <string>
#include <unordered_map>

#include "access/provider/AccessConnection.h"
#include "access/sql/run/ResultSet.h"

namespace tavi::access {

/// A record set of the provider on a result set of the engine.
class AccessRecordset final : public ado::Recordset {
 public:
  AccessRecordset(std::shared_ptr<OpenFile> file, std::unique_ptr<sql::ResultSet> rows, bool isReadOnly);

  [[nodiscard]] const std::vector<ado::Field>& Fields() const override { return fields_; }
  [[nodiscard]] bool AtEnd() const override;
  void MoveNext() override;
  void MovePrevious() override;
  [[nodiscard]] Value Get(std::string_view fieldName) const override;
  void Set(std::string_view fieldName, const Value& value) override;
  void AddNew() override;
  void Update() override;
  void CancelUpdate() override;
  void Close() override { rows_.reset(); }

 private:
  /// Raises ProviderFailure when this record set or its connection is closed.
  [[nodiscard]] sql::ResultSet& Rows() const;
  [[nodiscard]] std::size_t PositionOf(std::string_view fieldName) const;
  void RefuseReadOnly() const;

  std::shared_ptr<OpenFile> file_;
  std::unique_ptr<sql::ResultSet> rows_;
  bool isReadOnly_;
  std::vector<ado::Field> fields_;
  /// Names as they were asked for: hosts ask for the same few again and again.
  mutable std::unordered_map<std::string, std::size_t> positions_;
};

}  // namespace tavi::access
