#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "handicaps/HandiCalcSettings.h"
#include "handicaps/Handicaps.h"
#include "members/EBUMembershipDetails.h"
#include "platform/values/Date.h"
#include "platform/values/Error.h"

namespace tavi {

struct Platform;

/// This machine's own platform: its database engine, clock, settings, folders and message boxes. Defined where all of
/// it is put together.
std::shared_ptr<const Platform> DefaultPlatform();

/// The numbers that FindNearestMatches gives, with the lower bound of their array: 1 with candidates; 0, holding the
/// one number 0, without.
struct MatchList {
  std::int32_t LowerBound = 0;
  std::vector<std::int32_t> Numbers{0};
};

/// A bridge club's membership records in the file ClubMembers.mdb of one folder: the public class that scoring programs
/// use.
///
/// Creating one makes a new store for the calling thread and finds the database folder; the file itself is opened by
/// the first operation that needs it and closed again at its end, unless OpenDatabase holds it open. All objects of a
/// thread share the thread's newest store. Use an object only on the thread that created it.
///
/// Numbers of members are 32-bit; -1 means no member. Percentages and handicaps are in per cent. Errors: the
/// component's own have number 0x80040000 and source "cDatabase"; those of the database pass through with their own
/// number. Every operation that reaches the file can raise "Failed to open membership database ..." and the database's
/// errors. An argument that no file can hold (no number, infinite, a date outside the years 100 to 9999, a text longer
/// than its place) raises InvalidArgument or the database's error before anything is stored.
class MembershipDatabase {
 public:
  /// Starts with this machine's own platform, or with another one (tests, other hosts). Never fails: problems are
  /// written to the diagnostics log.
  explicit MembershipDatabase(std::shared_ptr<const Platform> platform = DefaultPlatform());
  ~MembershipDatabase();
  MembershipDatabase(const MembershipDatabase&) = delete;
  MembershipDatabase& operator=(const MembershipDatabase&) = delete;

  // --- Location, opening and closing ---------------------------------------------------------------------------------

  /// Whether walks and searches include inactive members; False at first.
  bool IncludeInactiveMembers = false;
  /// True when the file is there and is no folder.
  [[nodiscard]] bool DatabaseExists() const;
  [[nodiscard]] std::string DatabaseFolder() const;
  void SetDatabaseFolder(const std::string& folder);
  /// The full path of the file.
  [[nodiscard]] std::string DatabaseFileName() const;
  /// Opens the file and keeps it open until CloseDatabase. Raises "Attempt to use database before path set." and
  /// "Failed to open membership database ...".
  void OpenDatabase();
  /// Closes the file at once, however often it was opened.
  void CloseDatabase();

  // --- Members -------------------------------------------------------------------------------------------------------

  /// Adds a standard member. A handicap below 1 (or none) becomes 50. Returns the new number. Raises 0x80040000 when a
  /// member, active or retired, bears exactly this name.
  std::int32_t AddNewMember(const std::string& FirstName, const std::string& Initials, const std::string& LastName,
                            std::optional<double> Handicap = std::nullopt);
  /// The name in a display format (0..10); DefaultName for unknown and retired members.
  [[nodiscard]] std::string GetMemberName(std::int32_t MemberNo, std::int16_t NameFormat,
                                          const std::string& DefaultName = "");
  /// As GetMemberName; EBUNumber is passed back.
  [[nodiscard]] std::string GetNameAndEBUNumber(std::int32_t MemberNo, std::int16_t NameFormat, std::string& EBUNumber,
                                                const std::string& DefaultName = "");
  /// The EBU number; the three name parts are passed back.
  [[nodiscard]] std::string GetEBUNoAndNames(std::int32_t MemberNo, std::string& FirstName, std::string& Initials,
                                             std::string& LastName);
  void SetEBUNumber(std::int32_t MemberNo, const std::string& EBUNo);
  /// A typed number that may be a club number or an EBU number, as a club number; 0 when it is neither.
  [[nodiscard]] std::int32_t EnteredNumberToClubNumber(std::int32_t EnteredNumber);
  /// Retires the member; the record stays.
  void DeleteMember(std::int32_t MembershipNumber);
  /// 50 for unknown and retired members.
  [[nodiscard]] double GetHandicap(std::int32_t MemberID);
  /// Changes nothing for a retired member.
  void SetHandicap(std::int32_t MemberID, double NewHandicap);
  /// True for retired members too.
  [[nodiscard]] bool IsValidMemberID(std::int32_t MemberID);
  [[nodiscard]] std::int16_t PlayersStratum(std::int32_t PlayerID);
  void SetPlayersStratum(std::int32_t PlayerID, std::int16_t NewStratum);
  /// The newest club name.
  [[nodiscard]] std::string ClubName();
  /// Adds a club name to the history and derives the certificate prefix anew.
  void SetClubName(const std::string& name);
  /// The EBU number of the club.
  [[nodiscard]] std::string ClubID();
  [[nodiscard]] bool WasClubEverCalled(const std::string& ClubName);
  /// The number of the one active member that a typed name means, or -1.
  [[nodiscard]] std::int32_t FindMember(const std::string& Name, bool ExactMatchRequired = false);
  /// The active members whose names sound like it, best first.
  [[nodiscard]] MatchList FindNearestMatches(const std::string& Name);

  // --- Walks and address lists ---------------------------------------------------------------------------------------

  // One walk at a time is open on an object: a "first" call ends the one before and returns the first row, each "next"
  // call the next one; false means that there was none (any more), and the walk has ended. Rows come in the order of
  // the file. With IncludeInactiveMembers inactive members and partnerships are returned too. The file stays open until
  // EndGet.

  /// Number, name in a display format, and handicap of a member.
  bool GetFirstMember(std::int32_t& Number, std::string& Name, double& ParScore, std::int16_t NameFormat);
  bool GetNextMember(std::int32_t& Number, std::string& Name, double& ParScore, std::int16_t NameFormat);
  /// Whether the member that a walk with IncludeInactiveMembers returned last is inactive.
  [[nodiscard]] bool Retired() const;
  /// A row of the governing body's list. Format 10 gives "Surname, First name", all others "First name Surname"; the
  /// next call takes the format as text and raises TypeMismatch when it is no number.
  bool GetFirstEBURecord(std::string& EBUNumber, std::string& Name, std::int16_t NameFormat);
  bool GetNextEBURecord(std::string& EBUNumber, std::string& Name, const std::string& NameFormat);
  /// Numbers and names of a regular pair's players, the pair's name and its name in the other order. ParScore stays as
  /// it was. Pairs of players who are not active members are left out; ending the walk makes them inactive.
  bool GetFirstPartnership(std::int32_t& P1Number, std::string& P1Name, std::int32_t& P2Number, std::string& P2Name,
                           std::string& PartnershipName, std::string& AlternateName, double& ParScore,
                           std::int16_t NameFormat);
  bool GetNextPartnership(std::int32_t& P1Number, std::string& P1Name, std::int32_t& P2Number, std::string& P2Name,
                          std::string& PartnershipName, std::string& AlternateName, double& ParScore,
                          std::int16_t NameFormat);
  /// Ends a walk and closes the file, however often it was opened.
  void EndGet();
  /// A member's e-mail address, retired members' too; empty for an unknown number.
  [[nodiscard]] std::string MembersEmailAddress(std::int32_t MemberNo);
  /// The addresses of all active members. Two members who share one raise DuplicateKey.
  [[nodiscard]] std::vector<std::string> AllEmailAddresses();
  /// The rows of the governing body's list with a surname, and a given name unless it is empty.
  [[nodiscard]] std::vector<EBUMembershipDetails> SearchEBUList(const std::string& GivenName,
                                                                const std::string& Surname);
  /// Checks a number and name: another member's number when that member bears the name; the number itself when it is
  /// known (Retired is passed back); otherwise the player is enrolled under it and the result is -1.
  std::int32_t CheckMembershipID(std::int32_t MembershipID, const std::string& Name, double Par, bool& Retired);

  // --- Regular partnerships ------------------------------------------------------------------------------------------

  /// Adds or reactivates a pair. The result is always False. Raises "You cannot partner a player with themself.".
  bool AddRegularPair(std::int32_t Player1MembershipNo, std::int32_t Player2MembershipNo);
  /// True for an active pair; its name and handicap are passed back ("" and 50 otherwise).
  bool IsRegularPair(std::int32_t Player1No, std::int32_t Player2No, std::string& PairAlias, double& ParScore);
  void DeletePair(std::int32_t MemberID1, std::int32_t MemberID2);
  /// Changes nothing for an inactive pair.
  void SetPairHandicap(std::int32_t MemberID1, std::int32_t MemberID2, double NewHandicap);
  /// The displayed name of a pair, from the members' stored names, else the names given.
  [[nodiscard]] std::string GetPairName(std::int32_t Player1ID, const std::string& Player1Name, std::int32_t Player2ID,
                                        const std::string& Player2Name, std::int16_t NameFormat,
                                        bool TransferSurname = false, bool AlternateName = false);

  // --- Competitions, results, master points --------------------------------------------------------------------------

  /// Registers a competition (found by name and date, or added), clears its results, marks its awards for replacement
  /// and leaves the file open until EndResultUpdate. Returns its identifier. MasterPointsColour is ignored.
  std::int32_t SetCompetitionEx(const std::string& CompName, Date CompDate, bool Individual, std::int16_t ScoringMethod,
                                std::int16_t ButlerType, bool IsSwiss, bool QualiFinal, std::int16_t MasterPointsLevel,
                                std::int16_t NumberOfTables, std::int16_t NumberOfWinners, const std::string& Gov,
                                std::int16_t MasterPointsColour, bool IncludeInHandicaps,
                                std::int16_t NumberOfTeams = 0);
  /// The older form: no Swiss event, no final, governing body "EBU".
  std::int32_t SetCompetition(const std::string& CompName, Date CompDate, bool Individual, std::int16_t ScoringMethod,
                              std::int16_t ButlerType, std::int16_t MasterPoints, std::int16_t NumberOfTables,
                              std::int16_t NumberOfWinners, std::int16_t MasterPointsColour, bool IncludeInHandicaps,
                              std::int16_t NumberOfTeams = 0);
  /// Stores one competitor's result, clears the competitor's earlier awards in the competition, and refreshes the
  /// handicaps when the competition counts for them.
  void NoteCompetitorResult(std::int32_t CompetitionID, std::int32_t Player1ID, const std::string& P1Name,
                            std::int32_t Player2ID, const std::string& P2Name, double ActualPercent, double NetPercent,
                            double AppliedHandicap = -1.0);
  /// Stores an award to both players (to the first one in an individual competition). 0 stores nothing.
  void AddMasterPoints(std::int32_t CompetitionID, std::int16_t SessionNo, std::int32_t Player1ID,
                       const std::string& P1Name, std::int32_t Player2ID, const std::string& P2Name,
                       double MasterPoints, std::int32_t MasterPointsColour);
  /// The older combined operation. It exchanges the first name and the second number in the award and repeats for ever
  /// on a recurring error: use NoteCompetitorResult and AddMasterPoints instead.
  void UpdateResult(std::int32_t CompetitionID, bool Individual, std::int32_t Player1ID, const std::string& P1Name,
                    std::int32_t Player2ID, const std::string& P2Name, double ActualPercent, double NetPercent,
                    std::int16_t MasterPoints, double AppliedHandicap = -1.0);
  /// Deletes the competition's awards that were not passed again and closes what SetCompetitionEx opened.
  void EndResultUpdate(std::int32_t CompetitionID);

  // --- Handicaps -----------------------------------------------------------------------------------------------------

  /// A copy of the settings.
  [[nodiscard]] HandiCalcSettings HandicalcOptions();
  /// Stores the settings; the object itself is kept and its Disabled cleared.
  void SetHandicalcOptions(const std::shared_ptr<HandiCalcSettings>& value);
  [[nodiscard]] bool HandiCalcDisabled();
  /// Raises NoObject while the settings were never read or stored through this object.
  void SetHandiCalcDisabled(bool value);
  /// The handicaps of a pair (or player) for a competition that is about to be scored; 1 January 2000 means today, with
  /// no competition left out. The file stays open afterwards.
  [[nodiscard]] Handicaps CalculateHandicaps(std::int32_t PlayerID, std::int32_t PartnerID,
                                             const std::string& CompetitionName, Date CompetitionDate, bool Individual);
  /// Refreshes the stored handicap of every active partnership and member.
  void RecalculateAllHandicaps();

 private:
  class State;
  std::unique_ptr<State> state_;
};

}  // namespace tavi
