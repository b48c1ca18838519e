// The club's handicap settings, one row of a table, as one public object holds them. They are read once and then
// believed: another program's change shows in objects that are made after it.
#include "handicaps/HeldSettings.h"

#include <string>

#include "platform/values/Convert.h"
#include "store/Transaction.h"

namespace tavi {
namespace {

void ReadRow(const ado::Recordset& row, HandiCalcSettings& settings) {
  settings.SetMaxWeeks(ToInt16(row.Get("MaxWeeks")));
  settings.SetMaxResults(ToInt16(row.Get("MaxResults")));
  settings.SetSamePartnerWeighting(ToInt16(row.Get("SamePartnerWeighting")));
  settings.SetRegularPairMultiplier(ToDouble(row.Get("RegularPairMultiplier")));
  settings.SetRegularPairAdd(ToDouble(row.Get("RegularPairAdd")));
  settings.SetUnknownPlayerHandicap(ToDouble(row.Get("UnknownPlayerHandicap")));
  // Files of older versions lack the column; the reader then gives False.
  settings.SetDisabled(cDatabase::GetBooleanField(row, "Disabled"));
}

/// Disabled is 0: storing settings switches the calculation on.
std::string InsertStatement(const HandiCalcSettings& settings) {
  return "Insert Into HandicalcSettings (MaxWeeks, MaxResults, SamePartnerWeighting, RegularPairMultiplier, "
         "RegularPairAdd, UnknownPlayerHandicap, Disabled) Values (" +
         std::to_string(settings.MaxWeeks()) + ", " + std::to_string(settings.MaxResults()) + ", " +
         std::to_string(settings.SamePartnerWeighting()) + ", " +
         cDatabase::SQLNumber(settings.RegularPairMultiplier(), "RegularPairMultiplier") + ", " +
         cDatabase::SQLNumber(settings.RegularPairAdd(), "RegularPairAdd") + ", " +
         cDatabase::SQLNumber(settings.UnknownPlayerHandicap(), "UnknownPlayerHandicap") + ", 0)";
}

}  // namespace

// Held only when all of the row was read: half of a club's settings would be worse than none.
void HeldSettings::LoadHandicalcSettings(cDatabase& database) {
  if (held_) return;
  auto settings = std::make_shared<HandiCalcSettings>();
  WhileOpen(database, [&] {
    const auto row = database.OpenRecordset("HandicalcSettings", ado::CursorType::ForwardOnly, true);
    // A file without the row has the defaults.
    if (!row->AtEnd()) ReadRow(*row, *settings);
    held_ = std::move(settings);
  });
}

HandiCalcSettings& HeldSettings::Require() const {
  if (!held_) {
    throw Error(ErrorNumber::NoObject, "TaviMembership",
                "Object variable not set: no handicap settings are held yet; read or store HandicalcOptions first.");
  }
  return *held_;
}

bool HeldSettings::HeldDisabled() const {
  return Require().Disabled();
}

// A copy, so that a caller who changes it changes nothing here until he stores it.
HandiCalcSettings HeldSettings::HandicalcOptions(cDatabase& database) {
  LoadHandicalcSettings(database);
  return held_->Clone();
}

void HeldSettings::SetHandicalcOptions(cDatabase& database, const std::shared_ptr<HandiCalcSettings>& settings) {
  // First of all, so that a value that cannot be stored changes nothing.
  const std::string insert = settings ? InsertStatement(*settings) : std::string();
  // The object itself and no copy: a program that goes on changing it changes what this object calculates with.
  held_ = settings;
  Require().SetDisabled(false);
  InTransaction(database, [&] {
    database.Execute("Delete from HandicalcSettings");
    database.Execute(insert);
  });
}

bool HeldSettings::HandiCalcDisabled(cDatabase& database) {
  LoadHandicalcSettings(database);
  return held_->Disabled();
}

// Held before it is stored: a file that refuses the change does not keep this object calculating.
void HeldSettings::SetHandiCalcDisabled(cDatabase& database, bool disabled) {
  Require().SetDisabled(disabled);
  WhileOpen(database, [&] {
    database.Execute(std::string("Update HandicalcSettings Set Disabled = ") + (disabled ? "1" : "0"));
  });
}

}  // namespace tavi
