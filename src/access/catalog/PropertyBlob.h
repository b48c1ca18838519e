#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "access/table/TableDefinition.h"
#include "platform/values/Value.h"

namespace tavi::access {

/// One property as stored.
struct Property {
  std::string name;
  ColumnType type = ColumnType::Text;
  Bytes data;              ///< in the form of `type`; a Boolean is one byte, texts are UTF-16LE
  std::uint8_t flags = 1;  ///< as stored; 1: changing it needs the right to change definitions
};

/// The properties of a table and of its columns (the LvProp value of its catalogue row): what the table definition has
/// no place for, such as Required, AllowZeroLength and DefaultValue. What is not understood is kept as it is.
class PropertyBlob {
 public:
  /// An empty set of properties.
  PropertyBlob() = default;
  /// Reads a blob. Raises ProviderFailure, saying at which byte and what was found, when it is damaged.
  static PropertyBlob Parse(std::span<const std::uint8_t> bytes);

  /// The bytes. A blob that was read and not changed gives the same bytes again.
  [[nodiscard]] Bytes Serialize() const;
  [[nodiscard]] bool IsEmpty() const { return groups_.empty(); }

  /// A column's property as a Boolean or text; nothing when it is not set. Names are compared ignoring case.
  [[nodiscard]] std::optional<bool> ColumnFlag(std::string_view column, std::string_view name) const;
  [[nodiscard]] std::optional<std::string> ColumnText(std::string_view column, std::string_view name) const;

  /// Sets a column's property. Raises ProviderFailure for a text of more than 32,000 characters.
  void SetColumnFlag(std::string_view column, std::string_view name, bool value);
  void SetColumnText(std::string_view column, std::string_view name, std::string_view value);
  /// Forgets all properties of a column.
  void RemoveColumn(std::string_view column);

 private:
  /// One chunk: the properties of the object itself (kind 0), of a column (kind 1), or bytes of an unknown kind.
  struct Group {
    std::uint16_t kind = 0;
    std::string name;
    std::vector<Property> properties;
    Bytes unknown;
  };

  [[nodiscard]] const Property* Find(std::string_view column, std::string_view name) const;
  void Set(std::string_view column, Property property);

  bool wide_ = true;                ///< texts are UTF-16LE; in Jet 3 files single bytes
  std::vector<std::string> names_;  ///< the names chunk; a property is stored with its name's place here
  std::vector<Group> groups_;
};

/// Names of properties that the engine obeys.
namespace property_name {
inline constexpr char kRequired[] = "Required";
inline constexpr char kAllowZeroLength[] = "AllowZeroLength";
inline constexpr char kDefaultValue[] = "DefaultValue";
inline constexpr char kUnicodeCompression[] = "UnicodeCompression";
}  // namespace property_name

}  // namespace tavi::access
