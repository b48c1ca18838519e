#include "automation/MembershipDatabaseObject.h"

#include "automation/CollectionObject.h"
#include "automation/Conversion.h"
#include "automation/EBUMembershipDetailsObject.h"
#include "automation/HandiCalcSettingsObject.h"
#include "automation/HandicapsObject.h"

namespace tavi::automation {
namespace {

windows::ComPointer<_Collection> CollectionOf(const std::vector<std::string>& addresses) {
  std::vector<CollectionItem> items;
  for (const std::string& address : addresses) items.push_back({Variant(address), address});
  return MakeCollection(std::move(items));
}

windows::ComPointer<_Collection> CollectionOf(const std::vector<EBUMembershipDetails>& rows) {
  std::vector<CollectionItem> items;
  for (const EBUMembershipDetails& row : rows) items.push_back({Variant(MakeEBUMembershipDetails(row).Detach()), {}});
  return MakeCollection(std::move(items));
}

}  // namespace

STDMETHODIMP MembershipDatabaseObject::get_IncludeInactiveMembers(VARIANT_BOOL* result) {
  return Answer([&] { Return(result, database_.IncludeInactiveMembers); }, result);
}

STDMETHODIMP MembershipDatabaseObject::put_IncludeInactiveMembers(VARIANT_BOOL value) {
  return Answer([&] { database_.IncludeInactiveMembers = ToBool(value); });
}

STDMETHODIMP MembershipDatabaseObject::get_DatabaseExists(VARIANT_BOOL* result) {
  return Answer([&] { Return(result, database_.DatabaseExists()); }, result);
}

STDMETHODIMP MembershipDatabaseObject::get_DatabaseFolder(BSTR* result) {
  return Answer([&] { Return(result, database_.DatabaseFolder()); }, result);
}

STDMETHODIMP MembershipDatabaseObject::put_DatabaseFolder(BSTR folder) {
  return Answer([&] { database_.SetDatabaseFolder(ToText(folder)); });
}

STDMETHODIMP MembershipDatabaseObject::get_DatabaseFileName(BSTR* result) {
  return Answer([&] { Return(result, database_.DatabaseFileName()); }, result);
}

STDMETHODIMP MembershipDatabaseObject::OpenDatabase() {
  return Answer([&] { database_.OpenDatabase(); });
}

STDMETHODIMP MembershipDatabaseObject::CloseDatabase() {
  return Answer([&] { database_.CloseDatabase(); });
}

STDMETHODIMP MembershipDatabaseObject::AddNewMember(BSTR FirstName, BSTR Initials, BSTR LastName, VARIANT Handicap,
                                                    long* result) {
  return Answer(
      [&] {
        Return(result,
               database_.AddNewMember(ToText(FirstName), ToText(Initials), ToText(LastName), OptionalDouble(Handicap)));
      },
      result);
}

STDMETHODIMP MembershipDatabaseObject::GetMemberName(long MemberNo, short NameFormat, BSTR DefaultName, BSTR* result) {
  return Answer([&] { Return(result, database_.GetMemberName(MemberNo, NameFormat, ToText(DefaultName))); }, result);
}

STDMETHODIMP MembershipDatabaseObject::GetNameAndEBUNumber(long MemberNo, short NameFormat, BSTR* EBUNumber,
                                                           BSTR DefaultName, BSTR* result) {
  return Answer(
      [&] { Return(result, database_.GetNameAndEBUNumber(MemberNo, NameFormat, Out(EBUNumber), ToText(DefaultName))); },
      EBUNumber, result);
}

STDMETHODIMP MembershipDatabaseObject::GetEBUNoAndNames(long MemberNo, BSTR* FirstName, BSTR* Initials, BSTR* LastName,
                                                        VARIANT* result) {
  return Answer(
      [&] { Return(result, database_.GetEBUNoAndNames(MemberNo, Out(FirstName), Out(Initials), Out(LastName))); },
      FirstName, Initials, LastName, result);
}

STDMETHODIMP MembershipDatabaseObject::SetEBUNumber(long MemberNo, BSTR EBUNo) {
  return Answer([&] { database_.SetEBUNumber(MemberNo, ToText(EBUNo)); });
}

STDMETHODIMP MembershipDatabaseObject::EnteredNumberToClubNumber(long EnteredNumber, long* result) {
  return Answer([&] { Return(result, database_.EnteredNumberToClubNumber(EnteredNumber)); }, result);
}

STDMETHODIMP MembershipDatabaseObject::DeleteMember(long MembershipNumber) {
  return Answer([&] { database_.DeleteMember(MembershipNumber); });
}

STDMETHODIMP MembershipDatabaseObject::GetHandicap(long MemberID, double* result) {
  return Answer([&] { Return(result, database_.GetHandicap(MemberID)); }, result);
}

STDMETHODIMP MembershipDatabaseObject::SetHandicap(long MemberID, double NewHandicap) {
  return Answer([&] { database_.SetHandicap(MemberID, NewHandicap); });
}

STDMETHODIMP MembershipDatabaseObject::IsValidMemberID(long MemberID, VARIANT_BOOL* result) {
  return Answer([&] { Return(result, database_.IsValidMemberID(MemberID)); }, result);
}

STDMETHODIMP MembershipDatabaseObject::get_PlayersStratum(long PlayerID, short* result) {
  return Answer([&] { Return(result, database_.PlayersStratum(PlayerID)); }, result);
}

STDMETHODIMP MembershipDatabaseObject::put_PlayersStratum(long PlayerID, short NewStratum) {
  return Answer([&] { database_.SetPlayersStratum(PlayerID, NewStratum); });
}

STDMETHODIMP MembershipDatabaseObject::get_ClubName(BSTR* result) {
  return Answer([&] { Return(result, database_.ClubName()); }, result);
}

STDMETHODIMP MembershipDatabaseObject::put_ClubName(BSTR name) {
  return Answer([&] { database_.SetClubName(ToText(name)); });
}

STDMETHODIMP MembershipDatabaseObject::get_ClubID(BSTR* result) {
  return Answer([&] { Return(result, database_.ClubID()); }, result);
}

STDMETHODIMP MembershipDatabaseObject::WasClubEverCalled(BSTR ClubName, VARIANT_BOOL* result) {
  return Answer([&] { Return(result, database_.WasClubEverCalled(ToText(ClubName))); }, result);
}

STDMETHODIMP MembershipDatabaseObject::FindMember(BSTR Name, VARIANT_BOOL ExactMatchRequired, long* result) {
  return Answer([&] { Return(result, database_.FindMember(ToText(Name), ToBool(ExactMatchRequired))); }, result);
}

STDMETHODIMP MembershipDatabaseObject::FindNearestMatches(BSTR Name, SAFEARRAY** result) {
  return Answer([&] { *result = ArrayOf(database_.FindNearestMatches(ToText(Name))); }, result);
}

STDMETHODIMP MembershipDatabaseObject::GetFirstMember(long* Number, BSTR* Name, double* ParScore, short NameFormat,
                                                      VARIANT_BOOL* result) {
  return Answer([&] { Return(result, database_.GetFirstMember(Out(Number), Out(Name), Out(ParScore), NameFormat)); },
                Number, Name, ParScore, result);
}

STDMETHODIMP MembershipDatabaseObject::GetNextMember(long* Number, BSTR* Name, double* ParScore, short NameFormat,
                                                     VARIANT_BOOL* result) {
  return Answer([&] { Return(result, database_.GetNextMember(Out(Number), Out(Name), Out(ParScore), NameFormat)); },
                Number, Name, ParScore, result);
}

STDMETHODIMP MembershipDatabaseObject::get_Retired(VARIANT_BOOL* result) {
  return Answer([&] { Return(result, database_.Retired()); }, result);
}

STDMETHODIMP MembershipDatabaseObject::GetFirstEBURecord(BSTR* EBUNumber, BSTR* Name, short NameFormat,
                                                         VARIANT_BOOL* result) {
  return Answer([&] { Return(result, database_.GetFirstEBURecord(Out(EBUNumber), Out(Name), NameFormat)); }, EBUNumber,
                Name, result);
}

STDMETHODIMP MembershipDatabaseObject::GetNextEBURecord(BSTR* EBUNumber, BSTR* Name, BSTR NameFormat,
                                                        VARIANT_BOOL* result) {
  return Answer([&] { Return(result, database_.GetNextEBURecord(Out(EBUNumber), Out(Name), ToText(NameFormat))); },
                EBUNumber, Name, result);
}

STDMETHODIMP MembershipDatabaseObject::GetFirstPartnership(long* P1Number, BSTR* P1Name, long* P2Number, BSTR* P2Name,
                                                           BSTR* PartnershipName, BSTR* AlternateName, double* ParScore,
                                                           short NameFormat, VARIANT_BOOL* result) {
  return Answer(
      [&] {
        Return(result,
               database_.GetFirstPartnership(Out(P1Number), Out(P1Name), Out(P2Number), Out(P2Name),
                                             Out(PartnershipName), Out(AlternateName), Out(ParScore), NameFormat));
      },
      P1Number, P1Name, P2Number, P2Name, PartnershipName, AlternateName, ParScore, result);
}

STDMETHODIMP MembershipDatabaseObject::GetNextPartnership(long* P1Number, BSTR* P1Name, long* P2Number, BSTR* P2Name,
                                                          BSTR* PartnershipName, BSTR* AlternateName, double* ParScore,
                                                          short NameFormat, VARIANT_BOOL* result) {
  return Answer(
      [&] {
        Return(result,
               database_.GetNextPartnership(Out(P1Number), Out(P1Name), Out(P2Number), Out(P2Name),
                                            Out(PartnershipName), Out(AlternateName), Out(ParScore), NameFormat));
      },
      P1Number, P1Name, P2Number, P2Name, PartnershipName, AlternateName, ParScore, result);
}

STDMETHODIMP MembershipDatabaseObject::EndGet() {
  return Answer([&] { database_.EndGet(); });
}

STDMETHODIMP MembershipDatabaseObject::get_MembersEmailAddress(long MemberNo, BSTR* result) {
  return Answer([&] { Return(result, database_.MembersEmailAddress(MemberNo)); }, result);
}

STDMETHODIMP MembershipDatabaseObject::get_AllEmailAddresses(_Collection** result) {
  return Answer([&] { *result = CollectionOf(database_.AllEmailAddresses()).Detach(); }, result);
}

STDMETHODIMP MembershipDatabaseObject::SearchEBUList(BSTR GivenName, BSTR Surname, _Collection** result) {
  return Answer([&] { *result = CollectionOf(database_.SearchEBUList(ToText(GivenName), ToText(Surname))).Detach(); },
                result);
}

STDMETHODIMP MembershipDatabaseObject::CheckMembershipID(long MembershipID, BSTR Name, double Par,
                                                         VARIANT_BOOL* Retired, long* result) {
  return Answer([&] { Return(result, database_.CheckMembershipID(MembershipID, ToText(Name), Par, Out(Retired))); },
                Retired, result);
}

STDMETHODIMP MembershipDatabaseObject::AddRegularPair(long Player1MembershipNo, long Player2MembershipNo,
                                                      VARIANT_BOOL* result) {
  return Answer([&] { Return(result, database_.AddRegularPair(Player1MembershipNo, Player2MembershipNo)); }, result);
}

STDMETHODIMP MembershipDatabaseObject::IsRegularPair(long Player1No, long Player2No, BSTR* PairAlias, double* ParScore,
                                                     VARIANT_BOOL* result) {
  return Answer([&] { Return(result, database_.IsRegularPair(Player1No, Player2No, Out(PairAlias), Out(ParScore))); },
                PairAlias, ParScore, result);
}

STDMETHODIMP MembershipDatabaseObject::DeletePair(long MemberID1, long MemberID2) {
  return Answer([&] { database_.DeletePair(MemberID1, MemberID2); });
}

STDMETHODIMP MembershipDatabaseObject::SetPairHandicap(long MemberID1, long MemberID2, double NewHandicap) {
  return Answer([&] { database_.SetPairHandicap(MemberID1, MemberID2, NewHandicap); });
}

STDMETHODIMP MembershipDatabaseObject::GetPairName(long Player1ID, BSTR Player1Name, long Player2ID, BSTR Player2Name,
                                                   short NameFormat, VARIANT_BOOL TransferSurname,
                                                   VARIANT_BOOL AlternateName, BSTR* result) {
  return Answer(
      [&] {
        Return(result, database_.GetPairName(Player1ID, ToText(Player1Name), Player2ID, ToText(Player2Name), NameFormat,
                                             ToBool(TransferSurname), ToBool(AlternateName)));
      },
      result);
}

STDMETHODIMP MembershipDatabaseObject::SetCompetitionEx(BSTR CompName, DATE CompDate, VARIANT_BOOL Individual,
                                                        short ScoringMethod, short ButlerType, VARIANT_BOOL IsSwiss,
                                                        VARIANT_BOOL QualiFinal, short MasterPointsLevel,
                                                        short NumberOfTables, short NumberOfWinners, BSTR Gov,
                                                        short MasterPointsColour, VARIANT_BOOL IncludeInHandicaps,
                                                        short NumberOfTeams, long* result) {
  return Answer(
      [&] {
        Return(result, database_.SetCompetitionEx(ToText(CompName), Date{CompDate}, ToBool(Individual), ScoringMethod,
                                                  ButlerType, ToBool(IsSwiss), ToBool(QualiFinal), MasterPointsLevel,
                                                  NumberOfTables, NumberOfWinners, ToText(Gov), MasterPointsColour,
                                                  ToBool(IncludeInHandicaps), NumberOfTeams));
      },
      result);
}

STDMETHODIMP MembershipDatabaseObject::SetCompetition(BSTR CompName, DATE CompDate, VARIANT_BOOL Individual,
                                                      short ScoringMethod, short ButlerType, short MasterPoints,
                                                      short NumberOfTables, short NumberOfWinners,
                                                      short MasterPointsColour, VARIANT_BOOL IncludeInHandicaps,
                                                      short NumberOfTeams, long* result) {
  return Answer(
      [&] {
        Return(result, database_.SetCompetition(ToText(CompName), Date{CompDate}, ToBool(Individual), ScoringMethod,
                                                ButlerType, MasterPoints, NumberOfTables, NumberOfWinners,
                                                MasterPointsColour, ToBool(IncludeInHandicaps), NumberOfTeams));
      },
      result);
}

STDMETHODIMP MembershipDatabaseObject::NoteCompetitorResult(long CompetitionID, long Player1ID, BSTR P1Name,
                                                            long Player2ID, BSTR P2Name, double ActualPercent,
                                                            double NetPercent, double AppliedHandicap) {
  return Answer([&] {
    database_.NoteCompetitorResult(CompetitionID, Player1ID, ToText(P1Name), Player2ID, ToText(P2Name), ActualPercent,
                                   NetPercent, AppliedHandicap);
  });
}

STDMETHODIMP MembershipDatabaseObject::AddMasterPoints(long CompetitionID, short SessionNo, long Player1ID, BSTR P1Name,
                                                       long Player2ID, BSTR P2Name, double MasterPoints,
                                                       long MasterPointsColour) {
  return Answer([&] {
    database_.AddMasterPoints(CompetitionID, SessionNo, Player1ID, ToText(P1Name), Player2ID, ToText(P2Name),
                              MasterPoints, MasterPointsColour);
  });
}

STDMETHODIMP MembershipDatabaseObject::UpdateResult(long CompetitionID, VARIANT_BOOL Individual, long Player1ID,
                                                    BSTR P1Name, long Player2ID, BSTR P2Name, double ActualPercent,
                                                    double NetPercent, short MasterPoints, double AppliedHandicap) {
  return Answer([&] {
    database_.UpdateResult(CompetitionID, ToBool(Individual), Player1ID, ToText(P1Name), Player2ID, ToText(P2Name),
                           ActualPercent, NetPercent, MasterPoints, AppliedHandicap);
  });
}

STDMETHODIMP MembershipDatabaseObject::EndResultUpdate(long CompetitionID) {
  return Answer([&] { database_.EndResultUpdate(CompetitionID); });
}

STDMETHODIMP MembershipDatabaseObject::get_HandicalcOptions(_HandiCalcSettings** result) {
  return Answer([&] { *result = MakeSettings(database_.HandicalcOptions()).Detach(); }, result);
}

STDMETHODIMP MembershipDatabaseObject::putref_HandicalcOptions(_HandiCalcSettings* value) {
  return Answer([&] { database_.SetHandicalcOptions(SettingsOf(value)); });
}

STDMETHODIMP MembershipDatabaseObject::get_HandiCalcDisabled(VARIANT_BOOL* result) {
  return Answer([&] { Return(result, database_.HandiCalcDisabled()); }, result);
}

STDMETHODIMP MembershipDatabaseObject::put_HandiCalcDisabled(VARIANT_BOOL value) {
  return Answer([&] { database_.SetHandiCalcDisabled(ToBool(value)); });
}

STDMETHODIMP MembershipDatabaseObject::CalculateHandicaps(long PlayerID, long PartnerID, BSTR CompetitionName,
                                                          DATE CompetitionDate, VARIANT_BOOL Individual,
                                                          _Handicaps** result) {
  return Answer(
      [&] {
        const Handicaps handicaps = database_.CalculateHandicaps(PlayerID, PartnerID, ToText(CompetitionName),
                                                                 Date{CompetitionDate}, ToBool(Individual));
        *result = MakeHandicaps(handicaps).Detach();
      },
      result);
}

STDMETHODIMP MembershipDatabaseObject::RecalculateAllHandicaps() {
  return Answer([&] { database_.RecalculateAllHandicaps(); });
}

}  // namespace tavi::automation
