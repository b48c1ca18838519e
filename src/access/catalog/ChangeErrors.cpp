// The words are those that Access uses, where it has any, because people know them and look them up; what follows in
// brackets or in a further sentence names table, field and index, which Access leaves out. A duplicate key and whatever
// stands in the way of the change as a whole is ProviderFailure, a value that the rules of a field or a relationship
// refuse is ProviderIntegrity, as programs written for Access know it.
#include "access/catalog/ChangeErrors.h"

#include "access/file/EngineError.h"

namespace tavi::access {

namespace {

[[noreturn]] void Raise(ErrorNumber number, const std::string& description) {
  throw Error(number, kErrorSource, description);
}

/// Names stand between single quotes, as in messages of Access.
std::string Quoted(std::string_view name) {
  return "'" + std::string(name) + "'";
}

/// A column as Access writes it in messages: 'table.column'.
std::string Field(std::string_view table, std::string_view column) {
  return Quoted(std::string(table) + "." + std::string(column));
}

}  // namespace

void RaiseDuplicate(const std::string& table, const std::string& index) {
  Raise(ErrorNumber::ProviderFailure,
        "The changes you requested to the table were not successful because they would create duplicate values in the "
        "index, primary key, or relationship. Change the data in the field or fields that contain duplicate data, "
        "remove the index, or redefine the index to permit duplicate entries and try again. (Table " +
            Quoted(table) + ", index " + Quoted(index) + ".)");
}

void RaiseNullKey(const std::string& table, const std::string& index) {
  Raise(ErrorNumber::ProviderIntegrity, "Index or primary key cannot contain a Null value. (Table " + Quoted(table) +
                                            ", index " + Quoted(index) + ".)");
}

// Found before the tree is asked to take the key, so that nothing has been changed.
void RaiseLongKey(const std::string& table, const std::string& index) {
  Raise(ErrorNumber::ProviderFailure, "The values are too long for the index " + Quoted(index) + " of the table " +
                                          Quoted(table) + ". Shorten them, or delete the index.");
}

void RaiseRequired(const std::string& table, const std::string& column) {
  Raise(ErrorNumber::ProviderIntegrity,
        "The field " + Field(table, column) +
            " cannot contain a Null value because the Required property for this field is set to True. Enter a value "
            "in this field.");
}

void RaiseZeroLength(const std::string& table, const std::string& column) {
  Raise(ErrorNumber::ProviderIntegrity, "Field " + Field(table, column) + " cannot be a zero-length string.");
}

void RaiseAutoNumberChange(const std::string& table, const std::string& column) {
  Raise(ErrorNumber::ProviderIntegrity,
        "Cannot update " + Field(table, column) + "; field not updateable. Automatic numbers never change.");
}

void RaiseNoAutoNumberLeft(const std::string& table, const std::string& column) {
  Raise(ErrorNumber::ProviderFailure, "The automatic numbers of the field " + Field(table, column) +
                                          " are used up. Compact the database, or give the number yourself.");
}

void RaiseNoRelatedRow(const std::string& primaryTable) {
  Raise(ErrorNumber::ProviderIntegrity,
        "You cannot add or change a record because a related record is required in "
        "table " +
            Quoted(primaryTable) + ".");
}

void RaiseRelatedRows(const std::string& foreignTable) {
  Raise(ErrorNumber::ProviderIntegrity,
        "The record cannot be deleted or changed because table " + Quoted(foreignTable) + " includes related records.");
}

void RaiseNoTable(std::string_view table) {
  Raise(ErrorNumber::ProviderNoTable, "The Microsoft Jet database engine cannot find the input table or query " +
                                          Quoted(table) +
                                          ". Make sure it exists and that its name is spelled correctly.");
}

void RaiseTableExists(std::string_view table) {
  Raise(ErrorNumber::ProviderFailure, "Table " + Quoted(table) + " already exists.");
}

void RaiseSystemTable(std::string_view table) {
  Raise(ErrorNumber::ProviderPermission,
        "The definition of the table " + Quoted(table) + " cannot be changed: it belongs to the system.");
}

void RaiseNoColumn(std::string_view table, std::string_view column) {
  Raise(ErrorNumber::ProviderBadParameter,
        "The table " + Quoted(table) + " has no field " + Quoted(column) + ". Check the spelling of the name.");
}

void RaiseColumnExists(std::string_view table, std::string_view column) {
  Raise(ErrorNumber::ProviderBadStatus, "Field " + Quoted(column) + " already exists in table " + Quoted(table) + ".");
}

void RaiseColumnInUse(std::string_view table, std::string_view column, std::string_view index) {
  Raise(ErrorNumber::ProviderFailure,
        "Cannot delete a field that is part of an index or is needed by the system. "
        "Field " +
            Field(table, column) + " is used by " + Quoted(index) + "; delete that first.");
}

void RaiseNoIndex(std::string_view table, std::string_view index) {
  Raise(ErrorNumber::ProviderFailure,
        "No such index " + Quoted(index) + " on table " + Quoted(table) + ". Check the spelling of the name.");
}

// `what` is a table or an index: either holds a relationship.
void RaiseInRelationship(std::string_view what, std::string_view relationship) {
  Raise(ErrorNumber::ProviderFailure,
        "Cannot delete this index or table. It is either the current index or is used in a relationship. (" +
            Quoted(what) + " is used by the relationship " + Quoted(relationship) + ".)");
}

}  // namespace tavi::access
