' Drives every operation of the automation server as a script does. Argument: the folder of a club file that
' club_maker made. Prints each failed check and a last line with the counts; the exit code is 1 when one failed.
Option Explicit

Dim checks, failures, db, settings, handicaps, details, list, item, found, matches
Dim number, name, par, first, initials, last, ebu, p1, p1Name, p2, p2Name, pairName, otherName, retired, text
Dim ann, bob, eloise, competition, folder, accented
checks = 0
failures = 0

Sub Check(what, got, want)
  checks = checks + 1
  If got = want Then
    If TypeName(got) = TypeName(want) Then Exit Sub
  End If
  failures = failures + 1
  WScript.Echo "FAILED " & what & ": got " & TypeName(got) & " " & CStr(got) & ", want " & TypeName(want) & " " & CStr(want)
End Sub

Sub CheckError(what, wantNumber, wantSource, wantText)
  checks = checks + 1
  If Err.Number = wantNumber Then
    If wantSource = "" Or (Err.Source = wantSource And InStr(Err.Description, wantText) > 0) Then
      Err.Clear
      Exit Sub
    End If
  End If
  failures = failures + 1
  WScript.Echo "FAILED " & what & ": error " & Hex(Err.Number) & " of " & Err.Source & ": " & Err.Description
  Err.Clear
End Sub

folder = WScript.Arguments(0)
accented = Chr(201) & "lo" & Chr(239) & "se"

' --- Location, opening and closing
Set db = CreateObject("TaviMembership.MembershipDatabase")
Check "IncludeInactiveMembers at first", db.IncludeInactiveMembers, False
db.DatabaseFolder = folder
Check "DatabaseFolder", db.DatabaseFolder, folder
Check "DatabaseFileName", db.DatabaseFileName, folder & "\ClubMembers.mdb"
Check "DatabaseExists", db.DatabaseExists, True
db.OpenDatabase
db.CloseDatabase

' --- Members
ann = db.AddNewMember("Ann", "B", "Smith", 52.5)
Check "AddNewMember", ann, CLng(1)
bob = db.AddNewMember("Bob", "", "Jones")
Check "AddNewMember without handicap", bob, CLng(2)
eloise = db.AddNewMember(accented, "", "M" & Chr(252) & "ller", "47")
Check "GetHandicap", db.GetHandicap(ann), 52.5
Check "GetHandicap of the default", db.GetHandicap(bob), 50.0
Check "GetHandicap of a text", db.GetHandicap(eloise), 47.0
db.SetHandicap bob, 48.25
Check "SetHandicap", db.GetHandicap(bob), 48.25
Check "GetMemberName", db.GetMemberName(ann, 0), "Ann B Smith"
Check "GetMemberName of nobody", db.GetMemberName(99, 0, "nobody"), "nobody"
Check "GetMemberName with default left out", db.GetMemberName(99, 0), ""
Check "GetMemberName with accents", db.GetMemberName(eloise, 10), "M" & Chr(252) & "ller, " & accented
db.SetEBUNumber ann, "123456"
Check "GetNameAndEBUNumber", db.GetNameAndEBUNumber(ann, 0, ebu), "Ann B Smith"
Check "its EBU number", ebu, "123456"
text = db.GetNameAndEBUNumber(99, 0, ebu, "nobody")
Check "GetNameAndEBUNumber of nobody", text, "nobody"
Check "GetEBUNoAndNames", db.GetEBUNoAndNames(eloise, first, initials, last), ""
Check "its first name", first, accented
Check "its initials", initials, ""
Check "its surname", last, "M" & Chr(252) & "ller"
Check "EnteredNumberToClubNumber", db.EnteredNumberToClubNumber(123456), ann
Check "IsValidMemberID", db.IsValidMemberID(ann), True
Check "IsValidMemberID of nobody", db.IsValidMemberID(99), False
db.PlayersStratum(ann) = 3
Check "PlayersStratum", db.PlayersStratum(ann), CInt(3)
db.ClubName = "Caf" & Chr(233) & " Bridge"
Check "ClubName", db.ClubName, "Caf" & Chr(233) & " Bridge"
Check "WasClubEverCalled", db.WasClubEverCalled("caf" & Chr(233) & " bridge"), True
Check "WasClubEverCalled another", db.WasClubEverCalled("Elsewhere"), False
Check "ClubID", db.ClubID, ""
Check "FindMember", db.FindMember("Ann B Smith"), ann
Check "FindMember exactly", db.FindMember("Ann Smyth", True), CLng(-1)
matches = db.FindNearestMatches("Bob Jones")
Check "FindNearestMatches from 1", LBound(matches), CLng(1)
Check "FindNearestMatches to 1", UBound(matches), CLng(1)
Check "FindNearestMatches", matches(1), bob
matches = db.FindNearestMatches("")
Check "FindNearestMatches without any", LBound(matches), CLng(0)
Check "its one number", matches(0), CLng(0)

' --- Errors
On Error Resume Next
db.AddNewMember "Bob", "", "Jones"
CheckError "A second Bob Jones", &H80040000, "cDatabase", "member called Bob Jones"
db.AddRegularPair ann, ann
CheckError "A pair of one", &H80040000, "cDatabase", "You cannot partner a player with themself."
db.GetHandicap "ann"
CheckError "A text for a number", 13, "", ""
db.GetHandicap
CheckError "A missing argument", 450, "", ""
db.Handicapped
CheckError "An unknown name", 438, "", ""
db.GetMemberName 1, 70000
CheckError "Too large a number", 6, "", ""
On Error Goto 0

' --- Walks and address lists
Check "GetFirstMember", db.GetFirstMember(number, name, par, 0), True
Check "number of the first", number, ann
Check "name of the first", name, "Ann B Smith"
Check "handicap of the first", par, 52.5
Check "GetNextMember", db.GetNextMember(number, name, par, 0), True
Check "number of the second", number, bob
Check "Retired", db.Retired, False
Check "GetNextMember again", db.GetNextMember(number, name, par, 0), True
Check "name of the third", name, accented & " M" & Chr(252) & "ller"
Check "GetNextMember at the end", db.GetNextMember(number, name, par, 0), False
db.EndGet
Check "GetFirstEBURecord", db.GetFirstEBURecord(ebu, name, 10), True
Check "its number", ebu, "77"
Check "its name", name, "Smith, John"
Check "GetNextEBURecord", db.GetNextEBURecord(ebu, name, 10), True
Check "the name of the next", name, "Smith, Jane"
db.EndGet
Set list = db.SearchEBUList("", "Smith")
Check "SearchEBUList", list.Count, CLng(2)
Check "its first item", list.Item(1).FirstName, "John"
Check "its second item", list(2).EBUNumber, "78"
found = ""
For Each item In list
  found = found & item.FirstName & " " & item.LastName & " " & item.CountyCode & ";"
Next
Check "its items in their order", found, "John Smith KEN;Jane Smith SUR;"
On Error Resume Next
Set item = list.Item(3)
CheckError "An item behind the end", 9, "TaviMembership", "1 to 2"
Set item = list.Item("x")
CheckError "An item of no key", 5, "TaviMembership", "no item"
On Error Goto 0
Check "MembersEmailAddress", db.MembersEmailAddress(ann), ""
Set list = db.AllEmailAddresses
Check "AllEmailAddresses", list.Count, CLng(0)
retired = False
Check "CheckMembershipID", db.CheckMembershipID(ann, "Ann Smith", 50, retired), ann
Check "its Retired", retired, False

' --- Regular partnerships
Check "AddRegularPair", db.AddRegularPair(bob, ann), False
pairName = "?"
Check "IsRegularPair", db.IsRegularPair(ann, bob, pairName, par), True
Check "its name", pairName, ""
Check "its handicap", par, 50.375
db.SetPairHandicap ann, bob, 51
Check "IsRegularPair again", db.IsRegularPair(ann, bob, pairName, par), True
Check "its new handicap", par, 51.0
Check "GetPairName", db.GetPairName(ann, "A", bob, "B", 0), "Ann B Smith & Bob Jones"
Check "GetPairName in the other order", db.GetPairName(ann, "A", bob, "B", 0, False, True), "Bob Jones & Ann B Smith"
par = 7
Check "GetFirstPartnership", db.GetFirstPartnership(p1, p1Name, p2, p2Name, pairName, otherName, par, 0), True
Check "its players", p1Name & "/" & p2Name, "Bob Jones/Ann B Smith"
Check "its numbers", p1 * 10 + p2, bob * 10 + ann
Check "its names", pairName & "/" & otherName, "Bob Jones & Ann B Smith/Ann B Smith & Bob Jones"
Check "ParScore as it was", par, 7.0
Check "GetNextPartnership", db.GetNextPartnership(p1, p1Name, p2, p2Name, pairName, otherName, par, 0), False
db.EndGet

' --- Competitions, results, master points
competition = db.SetCompetitionEx("Monday", #3 June 2024#, False, 1, 0, False, False, 1, 8, 1, "EBU", 1, True)
Check "SetCompetitionEx", competition, CLng(1)
db.NoteCompetitorResult competition, ann, "Ann Smith", bob, "Bob Jones", 55.5, 56.25
db.AddMasterPoints competition, 1, ann, "Ann Smith", bob, "Bob Jones", 12, 1
db.EndResultUpdate competition
competition = db.SetCompetition("Tuesday", "4 June 2024", False, 1, 0, 1, 8, 1, 1, True, 0)
Check "SetCompetition", competition, CLng(2)
db.UpdateResult competition, False, ann, "Ann Smith", bob, "Bob Jones", 44.5, 45, 0, 50
db.EndResultUpdate competition

' --- Handicaps
Set settings = db.HandicalcOptions
Check "MaxResults", settings.MaxResults, CInt(0)
settings.MaxResults = 10
settings.MaxWeeks = 52
settings.SamePartnerWeighting = 110
Check "SamePartnerWeighting is limited", settings.SamePartnerWeighting, CInt(100)
settings.RegularPairMultiplier = 0.5
settings.RegularPairAdd = 1.25
settings.UnknownPlayerHandicap = 49
Check "IncludesRegularPairAdjustment", settings.IncludesRegularPairAdjustment, True
Check "AdjustRegularPair", settings.AdjustRegularPair(60), 31.25
Set item = settings.Clone
settings.SetDefaults
Check "SetDefaults", settings.RegularPairMultiplier, 1.0
Check "Clone", item.MaxWeeks, CInt(52)
item.Disabled = True
Set db.HandicalcOptions = item
Check "A stored object is not disabled", item.Disabled, False
Check "The stored settings", db.HandicalcOptions.RegularPairAdd, 1.25
Check "HandiCalcDisabled", db.HandiCalcDisabled, False
db.HandiCalcDisabled = True
Check "HandiCalcDisabled set", db.HandiCalcDisabled, True
Check "in the object that is held", item.Disabled, True
db.HandiCalcDisabled = False
db.RecalculateAllHandicaps
Set handicaps = db.CalculateHandicaps(ann, bob, "", #1 January 2000#, False)
Check "CalculateHandicaps", TypeName(handicaps.PartnershipHandicap), "Double"
handicaps.Player1Handicap = 1.5
handicaps.Player2Handicap = "2.5"
Check "Player1Handicap", handicaps.Player1Handicap, 1.5
Check "Player2Handicap", handicaps.Player2Handicap, 2.5
db.CloseDatabase

' --- Leaving
db.DeletePair ann, bob
Check "DeletePair", db.IsRegularPair(ann, bob, pairName, par), False
db.DeleteMember bob
Check "DeleteMember", db.GetMemberName(bob, 0, "gone"), "gone"
db.IncludeInactiveMembers = True
Check "GetFirstMember with inactive ones", db.GetFirstMember(number, name, par, 0), True
Check "GetNextMember with inactive ones", db.GetNextMember(number, name, par, 0), True
Check "Retired of the second", db.Retired, True
db.EndGet

' --- The other classes by themselves
Set settings = CreateObject("TaviMembership.HandiCalcSettings")
Check "New settings", settings.UnknownPlayerHandicap, 50.0
Set handicaps = CreateObject("TaviMembership.Handicaps")
handicaps.PartnershipHandicap = 61
Check "New handicaps", handicaps.PartnershipHandicap, 61.0
Set details = CreateObject("TaviMembership.EBUMembershipDetails")
details.EBUNumber = "9"
details.FirstName = accented
details.LastName = "O'Neil"
details.CountyCode = "KEN"
details.Location = "Dover"
Check "New details", details.EBUNumber & details.FirstName & details.LastName & details.CountyCode & details.Location, _
  "9" & accented & "O'NeilKENDover"

WScript.Echo checks & " checks, " & failures & " failures"
If failures > 0 Then WScript.Quit 1
