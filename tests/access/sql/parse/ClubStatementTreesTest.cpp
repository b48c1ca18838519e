#include <gtest/gtest.h>

#include "access/sql/support/Parsing.h"
#include "platform/values/Error.h"

/// The statements of a program that has lived on Access for long, in the exact form in which it joins them: odd blanks,
/// none between a text and a keyword, keywords in any case, dates as day numbers.
namespace tavi::access::sql {
namespace {

TEST(ClubStatementTrees, OfTheLayoutCheck) {
  const TreeCase cases[] = {
      {"Select Top 1 HandicalcSeed From Members", "(select top 1 [HandicalcSeed] from Members)"},
      {"Create Table EBUMembershipList (EBUNumber Long PRIMARY KEY, FirstName Text (50), LastName Text (50), "
       "CountyCode Text "
       "(4), Location Text (50))",
       "(create EBUMembershipList [EBUNumber Long, FirstName Text(50), LastName Text(50), CountyCode Text(4), Location "
       "Text(50)] (index PrimaryKey [EBUNumber] primary unique required))"},
      {"Alter Table Members Add Column Title Text (20)", "(add-column Members Title Text(20))"},
      {"Alter Table Members Add Column Sex Integer", "(add-column Members Sex Long)"},
      {"Alter Table Members Add Column Privacy bit", "(add-column Members Privacy Boolean)"},
      {"Alter Table Members Add Column DOB Date", "(add-column Members DOB Date)"},
      {"Alter Table Competitions Add Column NumberOfWinners Short",
       "(add-column Competitions NumberOfWinners Integer)"},
      {"Alter Table MasterPoints Add Column TempMPTotal Double", "(add-column MasterPoints TempMPTotal Double)"},
      {"Alter Table MasterPoints Add Column MPTotalsString Memo", "(add-column MasterPoints MPTotalsString Memo)"},
      {"Alter Table Settings Drop Column DirectCreditMPs", "(drop-column Settings DirectCreditMPs)"},
      {"Update MasterPoints Set Colour = -1", "(update MasterPoints [Colour := -1L])"},
      {"Update ClubNames Set Affiliation = 'EBU'", "(update ClubNames [Affiliation := 'EBU'])"},
      {"Select MasterPointsColour, Colour from MasterPoints Inner Join Competitions On MasterPoints.CompetitionID = "
       "Competitions.ID Where Colour < 0",
       "(select [MasterPointsColour, Colour] from (inner MasterPoints Competitions on (= MasterPoints.CompetitionID "
       "Competitions.ID)) where (< Colour 0L))"},
      {"Select * from Competitions Where ExternalType <> ''",
       "(select [*] from Competitions where (<> ExternalType ''))"},
      {"Delete from EBUMembershipList", "(delete from EBUMembershipList)"},
      {"Select MasterPointMethod from Settings", "(select [MasterPointMethod] from Settings)"},
      {"Select top 1 ClubName from ClubNames Order by ClubID Desc",
       "(select top 1 [ClubName] from ClubNames order [ClubID desc])"},
      {"Select top 1 ClubEBUNumber from ClubNames Order by ClubID Desc",
       "(select top 1 [ClubEBUNumber] from ClubNames order [ClubID desc])"},
      {"Insert into ClubNames (ClubName) Values ('O''Neil''s 50%p club')",
       "(insert ClubNames [ClubName] values ['O'Neil's 50%p club'])"},
      {"Select top 1 ClubID from ClubNames Where ClubName = 'Melfort'",
       "(select top 1 [ClubID] from ClubNames where (= ClubName 'Melfort'))"},
  };
  ExpectTrees(cases);
}

TEST(ClubStatementTrees, OfMembers) {
  const TreeCase cases[] = {
      {"Select Top 1 MembershipNumber from Members Order by MembershipNumber Desc",
       "(select top 1 [MembershipNumber] from Members order [MembershipNumber desc])"},
      {"Select count(*) From Members Where MembershipNumber = 17",
       "(select [(call count *)] from Members where (= MembershipNumber 17L))"},
      {"Select FirstName, MiddleInitials, LastName, Active From Members Where MembershipNumber = 17 Order by Active "
       "Desc",
       "(select [FirstName, MiddleInitials, LastName, Active] from Members where (= MembershipNumber 17L) order "
       "[Active desc])"},
      {"Select MembershipNumber, Active from Members Where FirstName = 'Éloïse' And MiddleInitials = '' And LastName = "
       "'O''Neil'",
       "(select [MembershipNumber, Active] from Members where (And (And (= FirstName 'Éloïse') (= MiddleInitials '')) "
       "(= "
       "LastName 'O'Neil')))"},
      {"Select Handicap from Members where MembershipNumber = 17",
       "(select [Handicap] from Members where (= MembershipNumber 17L))"},
      {"Select Stratum from Members where MembershipNumber = 17",
       "(select [Stratum] from Members where (= MembershipNumber 17L))"},
      {"Update Members Set Stratum = 2 Where MembershipNumber = 17",
       "(update Members [Stratum := 2L] where (= MembershipNumber 17L))"},
      {"Select MembershipNumber, FirstName, MiddleInitials, LastName, KnownAs, Handicap, EBUNumber, UniquenessFlag "
       "From Members "
       "Where MembershipNumber = 17 And Active <> 0",
       "(select [MembershipNumber, FirstName, MiddleInitials, LastName, KnownAs, Handicap, EBUNumber, UniquenessFlag] "
       "from "
       "Members where (And (= MembershipNumber 17L) (<> Active 0L)))"},
      {"Update Members set EBUNumber = '00123456' Where MembershipNumber = 17",
       "(update Members [EBUNumber := '00123456'] where (= MembershipNumber 17L))"},
      {"Select MembershipNumber from Members where EBUNumber = '123456'",
       "(select [MembershipNumber] from Members where (= EBUNumber '123456'))"},
      {"Update Members set Active = 0 Where MembershipNumber = 17",
       "(update Members [Active := 0L] where (= MembershipNumber 17L))"},
      {"Update Members Set Handicap = 52.25 Where MembershipNumber = 17 And Active <> 0",
       "(update Members [Handicap := 52.25] where (And (= MembershipNumber 17L) (<> Active 0L)))"},
      {"Update Members Set Handicap = 50 Where MembershipNumber = 17 Or MembershipNumber = -1",
       "(update Members [Handicap := 50L] where (Or (= MembershipNumber 17L) (= MembershipNumber -1L)))"},
      {"Select top 1 MembershipNumber From Members Where MembershipNumber = 17",
       "(select top 1 [MembershipNumber] from Members where (= MembershipNumber 17L))"},
      {"Insert into Members (MembershipNumber, EBUNumber, Title, FirstName, MiddleInitials, LastName, FuzzedFirstName, "
       "FuzzedLastName, KnownAs, Sex, DOB, email, HouseID, Address, PostCode, HomePhone, WorkPhone, MobilePhone, "
       "Notes, "
       "MemberType, DateOfJoining, SubsPaid, SubsDue, AmountOwing, Privacy) Values (17, '', ' ', 'Jane', '', 'Doe', "
       "'JN', 'D', '', "
       "0, 0, '', '', '%c%l', '', '', '', '', '', 'Standard', 36526, 36527, 36891, 12.5, 0)",
       "(insert Members [MembershipNumber, EBUNumber, Title, FirstName, MiddleInitials, LastName, FuzzedFirstName, "
       "FuzzedLastName, KnownAs, Sex, DOB, email, HouseID, Address, PostCode, HomePhone, WorkPhone, MobilePhone, "
       "Notes, "
       "MemberType, DateOfJoining, SubsPaid, SubsDue, AmountOwing, Privacy] values [17L, '', ' ', 'Jane', '', 'Doe', "
       "'JN', 'D', '', 0L, "
       "0L, '', '', '%c%l', '', '', '', '', '', 'Standard', 36526L, 36527L, 36891L, 12.5, 0L])"},
      {"Select email from Members where Active <> 0", "(select [email] from Members where (<> Active 0L))"},
      {"Select * from EBUMembershipList where LastName = 'Doe' and FirstName = 'Jane'",
       "(select [*] from EBUMembershipList where (And (= LastName 'Doe') (= FirstName 'Jane')))"},
      {"Select * from ClubPolicies Where MemberType = 'Standard'",
       "(select [*] from ClubPolicies where (= MemberType 'Standard'))"},
      {"Select FirstName, MiddleInitials, LastName, UniquenessFlag From Members Where Active <> 0  And FirstName = "
       "'John'Order By "
       "FirstName, LastName, MiddleInitials",
       "(select [FirstName, MiddleInitials, LastName, UniquenessFlag] from Members where (And (<> Active 0L) (= "
       "FirstName "
       "'John')) order [FirstName, LastName, MiddleInitials])"},
      {"Select FirstName, MiddleInitials, LastName, UniquenessFlag From Members Where Active <> 0 Order By FirstName, "
       "LastName, "
       "MiddleInitials",
       "(select [FirstName, MiddleInitials, LastName, UniquenessFlag] from Members where (<> Active 0L) order "
       "[FirstName, "
       "LastName, MiddleInitials])"},
      {"Select MembershipNumber, FirstName, MiddleInitials, LastName, KnownAs, Handicap, EBUNumber, UniquenessFlag "
       "from Members "
       "Where Active <> 0 And FuzzedFirstName = 'JN' And FuzzedLastName = 'D'",
       "(select [MembershipNumber, FirstName, MiddleInitials, LastName, KnownAs, Handicap, EBUNumber, UniquenessFlag] "
       "from "
       "Members where (And (And (<> Active 0L) (= FuzzedFirstName 'JN')) (= FuzzedLastName 'D')))"},
      {"Select * from Members where FirstName = 'Jane' And LastName = 'Doe' And Active <> 0",
       "(select [*] from Members where (And (And (= FirstName 'Jane') (= LastName 'Doe')) (<> Active 0L)))"},
  };
  ExpectTrees(cases);
}

TEST(ClubStatementTrees, OfPartnerships) {
  const TreeCase cases[] = {
      {"Select * from Partnerships Where LowerPlayer = 3 And HigherPlayer = 7",
       "(select [*] from Partnerships where (And (= LowerPlayer 3L) (= HigherPlayer 7L)))"},
      {"Update Partnerships set Active = 0 Where LowerPlayer = 3 And HigherPlayer = 7",
       "(update Partnerships [Active := 0L] where (And (= LowerPlayer 3L) (= HigherPlayer 7L)))"},
      {"Update Partnerships set Active = 0 where LowerPlayer = 3 Or HigherPlayer = 3",
       "(update Partnerships [Active := 0L] where (Or (= LowerPlayer 3L) (= HigherPlayer 3L)))"},
      {"Insert into Partnerships (LowerPlayer, HigherPlayer, HigherFirst, Handicap, KnownAs) Values (3, 7, -1, 50, "
       "'The "
       "Sharks')",
       "(insert Partnerships [LowerPlayer, HigherPlayer, HigherFirst, Handicap, KnownAs] values [3L, 7L, -1L, 50L, "
       "'The "
       "Sharks'])"},
      {"Insert into Partnerships (LowerPlayer, HigherPlayer,HigherFirst, Handicap, KnownAs) Values (3, 7, 0, 50, '')",
       "(insert Partnerships [LowerPlayer, HigherPlayer, HigherFirst, Handicap, KnownAs] values [3L, 7L, 0L, 50L, "
       "''])"},
      {"Update Partnerships Set Active = 1, Handicap = 48.5, KnownAs = '' Where LowerPlayer = 3 And HigherPlayer = 7",
       "(update Partnerships [Active := 1L, Handicap := 48.5, KnownAs := ''] where (And (= LowerPlayer 3L) (= "
       "HigherPlayer "
       "7L)))"},
      {"Select HandicalcSeed, HandicalcSeedDate From Partnerships Where (LowerPlayer = 3 And HigherPlayer = 7) And "
       "HandicalcSeedDate >= 36526",
       "(select [HandicalcSeed, HandicalcSeedDate] from Partnerships where (And (And (= LowerPlayer 3L) (= "
       "HigherPlayer 7L)) "
       "(>= HandicalcSeedDate 36526L)))"},
  };
  ExpectTrees(cases);
}

TEST(ClubStatementTrees, OfCompetitionsAndResults) {
  const TreeCase cases[] = {
      {"Select * from Competitions Where CompetitionName = 'Club Pairs' And CompetitionDate = 37014",
       "(select [*] from Competitions where (And (= CompetitionName 'Club Pairs') (= CompetitionDate 37014L)))"},
      {"Delete from Results where Competition = 5", "(delete from Results where (= Competition 5L))"},
      {"Update MasterPoints set RecordUpdated = 0 Where CompetitionID = 5",
       "(update MasterPoints [RecordUpdated := 0L] where (= CompetitionID 5L))"},
      {"Insert into MasterPoints (MembershipNumber, NonMemberName, CompetitionID, SessionNo, MasterPoints, Colour, "
       "Status, "
       "RecordUpdated) Values (-1, 'A. Guest', 5, 1, 0.24, 2, 0, 1)",
       "(insert MasterPoints [MembershipNumber, NonMemberName, CompetitionID, SessionNo, MasterPoints, Colour, Status, "
       "RecordUpdated] values [-1L, 'A. Guest', 5L, 1L, 0.24, 2L, 0L, 1L])"},
      {"Delete From MasterPoints Where CompetitionID = 5 And RecordUpdated = 0",
       "(delete from MasterPoints where (And (= CompetitionID 5L) (= RecordUpdated 0L)))"},
      {"Delete from MasterPoints Where CompetitionID = 5 And MembershipNumber < 0 and NonMemberName = 'A. Guest'",
       "(delete from MasterPoints where (And (And (= CompetitionID 5L) (< MembershipNumber 0L)) (= NonMemberName 'A. "
       "Guest')))"},
      {"Insert into Results (Competition, Player, Partner,  ActualPercentage,  NetPercentage) Values (5, 3, 7, 52.08, "
       "54.5833333333333)",
       "(insert Results [Competition, Player, Partner, ActualPercentage, NetPercentage] values [5L, 3L, 7L, 52.08, "
       "54.5833333333333])"},
  };
  ExpectTrees(cases);
}

TEST(ClubStatementTrees, OfHandicaps) {
  const TreeCase cases[] = {
      {"Delete from HandicalcSettings", "(delete from HandicalcSettings)"},
      {"Insert Into HandicalcSettings (MaxWeeks, MaxResults, SamePartnerWeighting, RegularPairMultiplier, "
       "RegularPairAdd, "
       "UnknownPlayerHandicap, Disabled) Values (52, 20, 50, 1.5, -0.25, 50, 0)",
       "(insert HandicalcSettings [MaxWeeks, MaxResults, SamePartnerWeighting, RegularPairMultiplier, RegularPairAdd, "
       "UnknownPlayerHandicap, Disabled] values [52L, 20L, 50L, 1.5, -0.25, 50L, 0L])"},
      {"Update HandicalcSettings Set Disabled = 1", "(update HandicalcSettings [Disabled := 1L])"},
      {"Select  Top 5 ActualPercentage, Player, Partner, Competitions.ID, Competitions.CompetitionDate  From Results "
       "Inner Join "
       "Competitions  On Results.Competition = Competitions.ID  Where (Player = 3 Or Partner = 3)  And "
       "IncludeInHandicapCalculations <> 0 And CompetitionDate >= 36526 And CompetitionDate <= 37014 And "
       "(CompetitionDate <> "
       "37014 Or CompetitionName <> 'Club Pairs' Or Individual <> 0) Order By Competitions.CompetitionDate Desc",
       "(select top 5 [ActualPercentage, Player, Partner, Competitions.ID, Competitions.CompetitionDate] from (inner "
       "Results "
       "Competitions on (= Results.Competition Competitions.ID)) where (And (And (And (Or (= Player 3L) (= Partner "
       "3L)) (<> "
       "IncludeInHandicapCalculations 0L)) (>= CompetitionDate 36526L)) (And (<= CompetitionDate 37014L) (Or (Or (<> "
       "CompetitionDate 37014L) (<> CompetitionName 'Club Pairs')) (<> Individual 0L)))) order "
       "[Competitions.CompetitionDate "
       "desc])"},
      {"Select ActualPercentage, Player, Partner, Competitions.ID, Competitions.CompetitionDate  From Results Inner "
       "Join "
       "Competitions  On Results.Competition = Competitions.ID  Where ( (Player = 3 And Partner = 7)  Or (Player = 7 "
       "And Partner "
       "= 3))  And IncludeInHandicapCalculations <> 0 Order By Competitions.CompetitionDate Desc",
       "(select [ActualPercentage, Player, Partner, Competitions.ID, Competitions.CompetitionDate] from (inner Results "
       "Competitions on (= Results.Competition Competitions.ID)) where (And (Or (And (= Player 3L) (= Partner 7L)) "
       "(And (= "
       "Player 7L) (= Partner 3L))) (<> IncludeInHandicapCalculations 0L)) order [Competitions.CompetitionDate desc])"},
  };
  ExpectTrees(cases);
}

}  // namespace
}  // namespace tavi::access::sql
