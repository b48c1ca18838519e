#pragma once

#include <TaviMembership.h>

#include "automation/AutomationObject.h"
#include "automation/ThreadUse.h"
#include "facade/MembershipDatabase.h"

namespace tavi::automation {

/// A MembershipDatabase for automation: each member is a call of the operation of its name (see the class and
/// TaviMembership.idl).
class MembershipDatabaseObject final : public AutomationObject<_MembershipDatabase, ::MembershipDatabase> {
 public:
  STDMETHODIMP get_IncludeInactiveMembers(VARIANT_BOOL* result) override;
  STDMETHODIMP put_IncludeInactiveMembers(VARIANT_BOOL value) override;
  STDMETHODIMP get_DatabaseExists(VARIANT_BOOL* result) override;
  STDMETHODIMP get_DatabaseFolder(BSTR* result) override;
  STDMETHODIMP put_DatabaseFolder(BSTR folder) override;
  STDMETHODIMP get_DatabaseFileName(BSTR* result) override;
  STDMETHODIMP OpenDatabase() override;
  STDMETHODIMP CloseDatabase() override;
  STDMETHODIMP AddNewMember(BSTR FirstName, BSTR Initials, BSTR LastName, VARIANT Handicap, long* result) override;
  STDMETHODIMP GetMemberName(long MemberNo, short NameFormat, BSTR DefaultName, BSTR* result) override;
  STDMETHODIMP GetNameAndEBUNumber(long MemberNo, short NameFormat, BSTR* EBUNumber, BSTR DefaultName,
                                   BSTR* result) override;
  STDMETHODIMP GetEBUNoAndNames(long MemberNo, BSTR* FirstName, BSTR* Initials, BSTR* LastName,
                                VARIANT* result) override;
  STDMETHODIMP SetEBUNumber(long MemberNo, BSTR EBUNo) override;
  STDMETHODIMP EnteredNumberToClubNumber(long EnteredNumber, long* result) override;
  STDMETHODIMP DeleteMember(long MembershipNumber) override;
  STDMETHODIMP GetHandicap(long MemberID, double* result) override;
  STDMETHODIMP SetHandicap(long MemberID, double NewHandicap) override;
  STDMETHODIMP IsValidMemberID(long MemberID, VARIANT_BOOL* result) override;
  STDMETHODIMP get_PlayersStratum(long PlayerID, short* result) override;
  STDMETHODIMP put_PlayersStratum(long PlayerID, short NewStratum) override;
  STDMETHODIMP get_ClubName(BSTR* result) override;
  STDMETHODIMP put_ClubName(BSTR name) override;
  STDMETHODIMP get_ClubID(BSTR* result) override;
  STDMETHODIMP WasClubEverCalled(BSTR ClubName, VARIANT_BOOL* result) override;
  STDMETHODIMP FindMember(BSTR Name, VARIANT_BOOL ExactMatchRequired, long* result) override;
  STDMETHODIMP FindNearestMatches(BSTR Name, SAFEARRAY** result) override;
  STDMETHODIMP GetFirstMember(long* Number, BSTR* Name, double* ParScore, short NameFormat,
                              VARIANT_BOOL* result) override;
  STDMETHODIMP GetNextMember(long* Number, BSTR* Name, double* ParScore, short NameFormat,
                             VARIANT_BOOL* result) override;
  STDMETHODIMP get_Retired(VARIANT_BOOL* result) override;
  STDMETHODIMP GetFirstEBURecord(BSTR* EBUNumber, BSTR* Name, short NameFormat, VARIANT_BOOL* result) override;
  STDMETHODIMP GetNextEBURecord(BSTR* EBUNumber, BSTR* Name, BSTR NameFormat, VARIANT_BOOL* result) override;
  STDMETHODIMP GetFirstPartnership(long* P1Number, BSTR* P1Name, long* P2Number, BSTR* P2Name, BSTR* PartnershipName,
                                   BSTR* AlternateName, double* ParScore, short NameFormat,
                                   VARIANT_BOOL* result) override;
  STDMETHODIMP GetNextPartnership(long* P1Number, BSTR* P1Name, long* P2Number, BSTR* P2Name, BSTR* PartnershipName,
                                  BSTR* AlternateName, double* ParScore, short NameFormat,
                                  VARIANT_BOOL* result) override;
  STDMETHODIMP EndGet() override;
  STDMETHODIMP get_MembersEmailAddress(long MemberNo, BSTR* result) override;
  STDMETHODIMP get_AllEmailAddresses(_Collection** result) override;
  STDMETHODIMP SearchEBUList(BSTR GivenName, BSTR Surname, _Collection** result) override;
  STDMETHODIMP CheckMembershipID(long MembershipID, BSTR Name, double Par, VARIANT_BOOL* Retired,
                                 long* result) override;
  STDMETHODIMP AddRegularPair(long Player1MembershipNo, long Player2MembershipNo, VARIANT_BOOL* result) override;
  STDMETHODIMP IsRegularPair(long Player1No, long Player2No, BSTR* PairAlias, double* ParScore,
                             VARIANT_BOOL* result) override;
  STDMETHODIMP DeletePair(long MemberID1, long MemberID2) override;
  STDMETHODIMP SetPairHandicap(long MemberID1, long MemberID2, double NewHandicap) override;
  STDMETHODIMP GetPairName(long Player1ID, BSTR Player1Name, long Player2ID, BSTR Player2Name, short NameFormat,
                           VARIANT_BOOL TransferSurname, VARIANT_BOOL AlternateName, BSTR* result) override;
  STDMETHODIMP SetCompetitionEx(BSTR CompName, DATE CompDate, VARIANT_BOOL Individual, short ScoringMethod,
                                short ButlerType, VARIANT_BOOL IsSwiss, VARIANT_BOOL QualiFinal,
                                short MasterPointsLevel, short NumberOfTables, short NumberOfWinners, BSTR Gov,
                                short MasterPointsColour, VARIANT_BOOL IncludeInHandicaps, short NumberOfTeams,
                                long* result) override;
  STDMETHODIMP SetCompetition(BSTR CompName, DATE CompDate, VARIANT_BOOL Individual, short ScoringMethod,
                              short ButlerType, short MasterPoints, short NumberOfTables, short NumberOfWinners,
                              short MasterPointsColour, VARIANT_BOOL IncludeInHandicaps, short NumberOfTeams,
                              long* result) override;
  STDMETHODIMP NoteCompetitorResult(long CompetitionID, long Player1ID, BSTR P1Name, long Player2ID, BSTR P2Name,
                                    double ActualPercent, double NetPercent, double AppliedHandicap) override;
  STDMETHODIMP AddMasterPoints(long CompetitionID, short SessionNo, long Player1ID, BSTR P1Name, long Player2ID,
                               BSTR P2Name, double MasterPoints, long MasterPointsColour) override;
  STDMETHODIMP UpdateResult(long CompetitionID, VARIANT_BOOL Individual, long Player1ID, BSTR P1Name, long Player2ID,
                            BSTR P2Name, double ActualPercent, double NetPercent, short MasterPoints,
                            double AppliedHandicap) override;
  STDMETHODIMP EndResultUpdate(long CompetitionID) override;
  STDMETHODIMP get_HandicalcOptions(_HandiCalcSettings** result) override;
  STDMETHODIMP putref_HandicalcOptions(_HandiCalcSettings* value) override;
  STDMETHODIMP get_HandiCalcDisabled(VARIANT_BOOL* result) override;
  STDMETHODIMP put_HandiCalcDisabled(VARIANT_BOOL value) override;
  STDMETHODIMP CalculateHandicaps(long PlayerID, long PartnerID, BSTR CompetitionName, DATE CompetitionDate,
                                  VARIANT_BOOL Individual, _Handicaps** result) override;
  STDMETHODIMP RecalculateAllHandicaps() override;

 private:
  // Before the database, which it outlives.
  ThreadUse use_;
  MembershipDatabase database_;
};

}  // namespace tavi::automation
