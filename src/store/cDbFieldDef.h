#pragma once

#include <cstdint>
#include <string>

namespace tavi {

/// One change of the file's layout that the layout check has queued.
struct cDbFieldDef {
  enum class ChangeAction { Add, Remove };

  std::string TableName;
  std::string FieldName;
  std::string FieldType;              ///< an SQL type word: Text, Integer, Short, Long, Double, Date, Bit, Memo
  std::int16_t TextFieldLength = 10;  ///< in characters; used when FieldType is "Text"
  bool SetDefault = false;
  std::string DefaultValue;  ///< an SQL literal put into existing rows
  ChangeAction Action = ChangeAction::Add;
};

}  // namespace tavi
