#include <algorithm>

#include "names/MemberValues.h"
#include "store/OpenUse.h"
#include "store/cDatabase.h"

namespace tavi {
namespace {

constexpr const char* kSource = "cDatabase";

std::string InsertStatement(std::int32_t P1, std::int32_t P2, double handicap, const std::string& knownAs) {
  return "Insert into Partnerships (LowerPlayer, HigherPlayer, HigherFirst, Handicap, KnownAs) Values (" +
         std::to_string(std::min(P1, P2)) + ", " + std::to_string(std::max(P1, P2)) + ", " + (P1 > P2 ? "1" : "0") +
         ", " + cDatabase::SQLNumber(handicap, "the pair's handicap") + ", " + cDatabase::SQLString(knownAs) + ")";
}

std::string ReactivateStatement(std::int32_t P1, std::int32_t P2, double handicap, const std::string& knownAs) {
  return "Update Partnerships Set Active = 1, Handicap = " + cDatabase::SQLNumber(handicap, "the pair's handicap") +
         ", KnownAs = " + cDatabase::SQLString(knownAs) + " Where " + cDatabase::PairWhereClause(P1, P2);
}

}  // namespace

std::string cDatabase::PairWhereClause(std::int32_t P1, std::int32_t P2) {
  return "LowerPlayer = " + std::to_string(std::min(P1, P2)) +
         " And HigherPlayer = " + std::to_string(std::max(P1, P2));
}

bool cDatabase::IsRegularPartnership(std::int32_t P1, std::int32_t P2, std::string& PairName, double& Handicap,
                                     bool& Inactive) {
  return WhileOpen(*this, [&] {
    const auto row = OpenRecordset("Select * from Partnerships Where " + PairWhereClause(P1, P2));
    if (row->AtEnd()) return false;
    Inactive = !GetBooleanField(*row, "Active");
    PairName = GetTextField(*row, "KnownAs");
    Handicap = GetNonIntegerField(*row, "Handicap", kNeutralHandicap);
    return true;
  });
}

void cDatabase::MakeRegularPartnership(std::int32_t P1, std::int32_t P2, double Handicap, bool ErrorIfAlreadyExists,
                                       const std::string& KnownAs) {
  WhileOpen(*this, [&] {
    const double handicap = Handicap < 0.0 ? GetHandicap(P1) / 2.0 + GetHandicap(P2) / 2.0 : Handicap;
    if (P1 == P2) throw Error(ErrorNumber::Component, kSource, "You cannot partner a player with themself.");

    std::string storedName;
    double storedHandicap = 0.0;
    bool inactive = false;
    if (!IsRegularPartnership(P1, P2, storedName, storedHandicap, inactive)) {
      Execute(InsertStatement(P1, P2, handicap, KnownAs));
    } else if (inactive) {
      Execute(ReactivateStatement(P1, P2, handicap, KnownAs));
    } else if (ErrorIfAlreadyExists) {
      throw Error(ErrorNumber::Component, kSource, "Partnership already exists");
    }
  });
}

}  // namespace tavi
