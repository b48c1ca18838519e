#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace tavi {

/// The numbers of the errors that the system raises. A number is a 32-bit signed value whose usual writing is
/// hexadecimal (0x80040000 is -2147221504); hosts compare it, so the values never change.
enum class ErrorNumber : std::uint32_t {
  // Run-time errors of the automation language: 0x800A0000 + the language's own number.
  InvalidArgument = 0x800A0005,
  Overflow = 0x800A0006,
  BadSubscript = 0x800A0009,
  TypeMismatch = 0x800A000D,
  NoObject = 0x800A005B,
  DuplicateKey = 0x800A01C9,
  // Errors of the component itself, source "cDatabase".
  Component = 0x80040000,
  // Errors of the database provider.
  ProviderFailure = 0x80004005,  // unspecified: file not found or in use, no database, duplicate key, no more columns
  ProviderPermission = 0x80040E09,    // the database or object is read-only
  ProviderBadParameter = 0x80040E10,  // an unknown column (taken for a parameter without a value)
  ProviderSyntax = 0x80040E14,        // the statement cannot be understood
  ProviderTypeConflict = 0x80040E07,  // a value does not convert to the type of its column
  ProviderBadStatus = 0x80040E21,     // a column of that name exists already, or a value was refused
  ProviderIntegrity = 0x80040E2F,     // a required column, relationship or duplicate key forbids the change
  ProviderNoTable = 0x80040E37,       // no such table
  ProviderNoColumn = 0x800A0CC1,      // a record set has no field of that name
  ProviderEndOfRecords = 0x800A0BCD,  // no current record
};

/// The one exception type of the system: a number, the source that raised it and a description for people. The
/// description says what went wrong, where, and what to do.
class Error : public std::runtime_error {
 public:
  Error(ErrorNumber number, std::string source, const std::string& description)
      : std::runtime_error(description),
        number_(static_cast<std::int32_t>(static_cast<std::uint32_t>(number))),
        source_(std::move(source)) {}
  Error(std::int32_t number, std::string source, const std::string& description)
      : std::runtime_error(description), number_(number), source_(std::move(source)) {}

  /// The number as hosts see it (negative: the top bit is set).
  [[nodiscard]] std::int32_t Number() const { return number_; }
  /// Who raised it: "cDatabase", "TaviMembership", or the provider's name.
  [[nodiscard]] const std::string& Source() const { return source_; }
  /// The text for people.
  [[nodiscard]] std::string Description() const { return what(); }
  /// True when the number is `number`.
  [[nodiscard]] bool Is(ErrorNumber number) const {
    return number_ == static_cast<std::int32_t>(static_cast<std::uint32_t>(number));
  }

 private:
  std::int32_t number_;
  std::string source_;
};

}  // namespace tavi
