' What scripts see when the club's file is not there, and that everything goes on when it is back. Argument: the folder of
' a club file that club_maker made. Prints each failed check and a last line with the counts; the exit code is 1 when one
' failed.
Option Explicit

Dim checks, failures, db, second, files, folder, away, operation, number, name, par, settings, ann, bob, list, p1, p2, q1, q2
checks = 0
failures = 0

Sub Check(what, got, want)
  checks = checks + 1
  If TypeName(got) = TypeName(want) Then
    If got = want Then Exit Sub
  End If
  failures = failures + 1
  WScript.Echo "FAILED " & what & ": got " & TypeName(got) & " " & CStr(got) & ", want " & TypeName(want) & " " & CStr(want)
End Sub

Sub CheckError(what, wantNumber, wantSource, wantText)
  checks = checks + 1
  If Err.Number <> wantNumber Or Err.Source <> wantSource Or InStr(Err.Description, wantText) = 0 Then
    failures = failures + 1
    WScript.Echo "FAILED " & what & ": error " & Hex(Err.Number) & " of " & Err.Source & ": " & Err.Description
  End If
  Err.Clear
End Sub

Const kNotOpened = "Failed to open membership database "

' Every operation that opens the file, one after the other.
Sub CheckAll(what, wantText)
  On Error Resume Next
  db.OpenDatabase
  CheckError what & ", OpenDatabase", &H80040000, "cDatabase", wantText
  number = db.AddNewMember("Cat", "", "Gone")
  CheckError what & ", AddNewMember", &H80040000, "cDatabase", wantText
  name = db.GetMemberName(ann, 0)
  CheckError what & ", GetMemberName", &H80040000, "cDatabase", wantText
  name = db.GetNameAndEBUNumber(ann, 0, number)
  CheckError what & ", GetNameAndEBUNumber", &H80040000, "cDatabase", wantText
  name = db.GetEBUNoAndNames(ann, number, par, p1)
  CheckError what & ", GetEBUNoAndNames", &H80040000, "cDatabase", wantText
  db.SetEBUNumber ann, "1"
  CheckError what & ", SetEBUNumber", &H80040000, "cDatabase", wantText
  number = db.EnteredNumberToClubNumber(1)
  CheckError what & ", EnteredNumberToClubNumber", &H80040000, "cDatabase", wantText
  db.DeleteMember ann
  CheckError what & ", DeleteMember", &H80040000, "cDatabase", wantText
  par = db.GetHandicap(ann)
  CheckError what & ", GetHandicap", &H80040000, "cDatabase", wantText
  db.SetHandicap ann, 1
  CheckError what & ", SetHandicap", &H80040000, "cDatabase", wantText
  number = db.IsValidMemberID(ann)
  CheckError what & ", IsValidMemberID", &H80040000, "cDatabase", wantText
  number = db.PlayersStratum(ann)
  CheckError what & ", PlayersStratum", &H80040000, "cDatabase", wantText
  db.PlayersStratum(ann) = 1
  CheckError what & ", PlayersStratum set", &H80040000, "cDatabase", wantText
  name = db.ClubName
  CheckError what & ", ClubName", &H80040000, "cDatabase", wantText
  db.ClubName = "x"
  CheckError what & ", ClubName set", &H80040000, "cDatabase", wantText
  name = db.ClubID
  CheckError what & ", ClubID", &H80040000, "cDatabase", wantText
  number = db.WasClubEverCalled("x")
  CheckError what & ", WasClubEverCalled", &H80040000, "cDatabase", wantText
  number = db.FindMember("Ann Smith")
  CheckError what & ", FindMember", &H80040000, "cDatabase", wantText
  number = db.FindNearestMatches("Ann Smith")
  CheckError what & ", FindNearestMatches", &H80040000, "cDatabase", wantText
  number = db.GetFirstMember(p1, name, par, 0)
  CheckError what & ", GetFirstMember", &H80040000, "cDatabase", wantText
  number = db.GetFirstEBURecord(p1, name, 0)
  CheckError what & ", GetFirstEBURecord", &H80040000, "cDatabase", wantText
  number = db.GetFirstPartnership(p1, q1, p2, q2, name, number, par, 0)
  CheckError what & ", GetFirstPartnership", &H80040000, "cDatabase", wantText
  name = db.MembersEmailAddress(ann)
  CheckError what & ", MembersEmailAddress", &H80040000, "cDatabase", wantText
  Set list = db.AllEmailAddresses
  CheckError what & ", AllEmailAddresses", &H80040000, "cDatabase", wantText
  Set list = db.SearchEBUList("", "Smith")
  CheckError what & ", SearchEBUList", &H80040000, "cDatabase", wantText
  number = db.CheckMembershipID(ann, "Ann Smith", 50, p1)
  CheckError what & ", CheckMembershipID", &H80040000, "cDatabase", wantText
  number = db.AddRegularPair(ann, bob)
  CheckError what & ", AddRegularPair", &H80040000, "cDatabase", wantText
  number = db.IsRegularPair(ann, bob, name, par)
  CheckError what & ", IsRegularPair", &H80040000, "cDatabase", wantText
  db.DeletePair ann, bob
  CheckError what & ", DeletePair", &H80040000, "cDatabase", wantText
  db.SetPairHandicap ann, bob, 1
  CheckError what & ", SetPairHandicap", &H80040000, "cDatabase", wantText
  name = db.GetPairName(ann, "A", bob, "B", 0)
  CheckError what & ", GetPairName", &H80040000, "cDatabase", wantText
  number = db.SetCompetitionEx("x", #3 June 2024#, False, 1, 0, False, False, 1, 8, 1, "EBU", 1, True)
  CheckError what & ", SetCompetitionEx", &H80040000, "cDatabase", wantText
  number = db.SetCompetition("x", #3 June 2024#, False, 1, 0, 1, 8, 1, 1, True)
  CheckError what & ", SetCompetition", &H80040000, "cDatabase", wantText
  db.NoteCompetitorResult 1, ann, "A", bob, "B", 50, 50
  CheckError what & ", NoteCompetitorResult", &H80040000, "cDatabase", wantText
  db.AddMasterPoints 1, 1, ann, "A", bob, "B", 12, 1
  CheckError what & ", AddMasterPoints", &H80040000, "cDatabase", wantText
  db.UpdateResult 1, False, ann, "A", bob, "B", 50, 50, 0
  CheckError what & ", UpdateResult", &H80040000, "cDatabase", wantText
  db.EndResultUpdate 1
  CheckError what & ", EndResultUpdate", &H80040000, "cDatabase", wantText
  Set settings = db.HandicalcOptions
  CheckError what & ", HandicalcOptions", &H80040000, "cDatabase", wantText
  number = db.HandiCalcDisabled
  CheckError what & ", HandiCalcDisabled", &H80040000, "cDatabase", wantText
  Set number = db.CalculateHandicaps(ann, bob, "", #1 January 2000#, False)
  CheckError what & ", CalculateHandicaps", &H80040000, "cDatabase", wantText
  db.RecalculateAllHandicaps
  CheckError what & ", RecalculateAllHandicaps", &H80040000, "cDatabase", wantText
  On Error Goto 0
  ' These need no file.
  db.CloseDatabase
  db.EndGet
  db.IncludeInactiveMembers = False
  Check what & ", GetNextMember", db.GetNextMember(number, name, par, 0), False
  Check what & ", Retired", db.Retired, False
  Check what & ", DatabaseExists", db.DatabaseExists, False
End Sub

folder = WScript.Arguments(0)
away = folder & "\away.mdb"
Set files = CreateObject("Scripting.FileSystemObject")
Set db = CreateObject("TaviMembership.MembershipDatabase")
db.DatabaseFolder = folder
ann = db.AddNewMember("Ann", "", "Smith", 52.5)
bob = db.AddNewMember("Bob", "", "Jones")

' --- The file vanishes and comes back
files.MoveFile folder & "\ClubMembers.mdb", away
CheckAll "Without its file", kNotOpened & folder & "\ClubMembers.mdb"
files.MoveFile away, folder & "\ClubMembers.mdb"
Check "The file is back", db.DatabaseExists, True
Check "and open to all", db.GetHandicap(ann), 52.5

' --- Another folder, none, one that is no folder
db.DatabaseFolder = "C:\no\such\folder"
CheckAll "In a folder that is not there", kNotOpened & "C:\no\such\folder\ClubMembers.mdb"
db.DatabaseFolder = folder & "\ClubMembers.mdb"
CheckAll "With a file for a folder", kNotOpened
db.DatabaseFolder = ""
CheckAll "Without a folder", "Attempt to use database before path set."
db.DatabaseFolder = folder
Check "In the right folder", db.GetMemberName(bob, 0), "Bob Jones"

' --- A folder in the place of the file, a file that is none
files.MoveFile folder & "\ClubMembers.mdb", away
files.CreateFolder folder & "\ClubMembers.mdb"
CheckAll "With a folder of the file's name", kNotOpened
files.DeleteFolder folder & "\ClubMembers.mdb"
files.CreateTextFile(folder & "\ClubMembers.mdb").Write "no database"
On Error Resume Next
number = db.GetHandicap(ann)
CheckError "With a text for a database", &H80040000, "cDatabase", kNotOpened
On Error Goto 0
Check "which is there", db.DatabaseExists, True
files.DeleteFile folder & "\ClubMembers.mdb"
files.MoveFile away, folder & "\ClubMembers.mdb"
Check "The right file again", db.GetHandicap(ann), 52.5
Check "An error is not remembered", Err.Number, CLng(0)

' --- Objects of one thread share the store of the newest
db.OpenDatabase
Set second = CreateObject("TaviMembership.MembershipDatabase")
second.DatabaseFolder = folder & "\other"
Check "The newest store's folder", db.DatabaseFolder, folder & "\other"
On Error Resume Next
number = db.GetHandicap(ann)
CheckError "The older object uses it too", &H80040000, "cDatabase", kNotOpened
On Error Goto 0
Set second = Nothing
Check "which stays while an object is there", db.DatabaseFolder, folder & "\other"
db.DatabaseFolder = folder
db.OpenDatabase
db.OpenDatabase

' --- The last object closes the file
Set db = Nothing
files.MoveFile folder & "\ClubMembers.mdb", away
Check "The file can be moved", files.FileExists(away), True
files.MoveFile away, folder & "\ClubMembers.mdb"

WScript.Echo checks & " checks, " & failures & " failures"
If failures > 0 Then WScript.Quit 1
