// The texts begin as programs know them from the database engine, and go on with what is wrong here and what to do.
#include "access/sql/plan/ExecutionErrors.h"

#include "access/file/EngineError.h"

namespace tavi::access::sql {

Error EngineError(ErrorNumber number, const std::string& description) {
  return {number, kErrorSource, description};
}

Error EngineError(std::uint32_t number, const std::string& description) {
  return {static_cast<std::int32_t>(number), kErrorSource, description};
}

Error UnknownColumnError(std::string_view name, std::string_view where) {
  return EngineError(ErrorNumber::ProviderBadParameter, "No value given for one or more required parameters. '" +
                                                            std::string(name) + "' is no column of " +
                                                            std::string(where) + "; correct the name.");
}

Error AmbiguousColumnError(std::string_view name) {
  return EngineError(ErrorNumber::ProviderFailure,
                     "The field '" + std::string(name) +
                         "' could refer to more than one table of the statement. Write the table's name and a point "
                         "in front of it.");
}

Error UnknownTableError(std::string_view name) {
  return EngineError(ErrorNumber::ProviderNoTable, "The database engine cannot find the table or query '" +
                                                       std::string(name) +
                                                       "'. Make sure that it exists and that its name is right.");
}

Error StatementError(const std::string& reason) {
  return EngineError(ErrorNumber::ProviderSyntax, reason);
}

Error ReadOnlyError(std::string_view object) {
  return EngineError(ErrorNumber::ProviderPermission,
                     "Cannot update.  Database or object is read-only: " + std::string(object) + ".");
}

Error RowDeletedError() {
  return EngineError(kRowDeletedNumber, "The record has been deleted since it was found. Move to another record.");
}

Error NotUpdatableError(std::string_view what) {
  return EngineError(kNotUpdatableNumber, "The record set does not support updating " + std::string(what) + ".");
}

Error CancelledError() {
  return EngineError(kCancelledNumber, "The statement was cancelled. Nothing of it was stored.");
}

}  // namespace tavi::access::sql
