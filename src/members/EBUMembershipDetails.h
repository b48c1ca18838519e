#pragma once

#include <string>

namespace tavi {

/// One row of the governing body's membership list.
class EBUMembershipDetails {
 public:
  [[nodiscard]] const std::string& EBUNumber() const { return ebuNumber_; }
  void SetEBUNumber(const std::string& value) { ebuNumber_ = value; }
  [[nodiscard]] const std::string& FirstName() const { return firstName_; }
  void SetFirstName(const std::string& value) { firstName_ = value; }
  [[nodiscard]] const std::string& LastName() const { return lastName_; }
  void SetLastName(const std::string& value) { lastName_ = value; }
  [[nodiscard]] const std::string& CountyCode() const { return countyCode_; }
  void SetCountyCode(const std::string& value) { countyCode_ = value; }
  [[nodiscard]] const std::string& Location() const { return location_; }
  void SetLocation(const std::string& value) { location_ = value; }

 private:
  std::string ebuNumber_;
  std::string firstName_;
  std::string lastName_;
  std::string countyCode_;
  std::string location_;
};

}  // namespace tavi
