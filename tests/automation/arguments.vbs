' What scripts may pass and how: values of every kind, variables that hold anything, arguments left out, texts of all
' alphabets, dates. Argument: the folder of a club file that club_maker made. Prints each failed check and a last line
' with the counts; the exit code is 1 when one failed.
Option Explicit

Dim checks, failures, db, settings, handicaps, details, list, item, folder, matches
Dim number, name, par, other, nothingSet, never, clef, ann, bob, list1, text, count
checks = 0
failures = 0

Function Shown(value)
  If IsObject(value) Then
    Shown = "object"
  ElseIf IsNull(value) Then
    Shown = "Null"
  ElseIf IsArray(value) Then
    Shown = "array"
  Else
    Shown = CStr(value)
  End If
End Function

Sub Check(what, got, want)
  checks = checks + 1
  If TypeName(got) = TypeName(want) Then
    If got = want Then Exit Sub
  End If
  failures = failures + 1
  WScript.Echo "FAILED " & what & ": got " & TypeName(got) & " " & Shown(got) & ", want " & TypeName(want) & " " & Shown(want)
End Sub

Sub CheckError(what, wantNumber)
  checks = checks + 1
  If Err.Number <> wantNumber Then
    failures = failures + 1
    WScript.Echo "FAILED " & what & ": error " & Err.Number & " of " & Err.Source & ": " & Err.Description & ", want " & wantNumber
  End If
  Err.Clear
End Sub

Const kOverflow = 6, kTypeMismatch = 13, kNoObject = 91, kNoSuchMember = 438, kNotOptional = 449, kWrongCount = 450

folder = WScript.Arguments(0)
Set db = CreateObject("TaviMembership.MembershipDatabase")
db.DatabaseFolder = folder
Set nothingSet = Nothing
' --- Texts of all alphabets, both ways
' (Letters of many bits come from the club's file, because some scripting systems have no function for them.)
list1 = Split(db.SearchEBUList("", "Alphabets")(1).FirstName, " ")
Check "how many", UBound(list1), CLng(4)
clef = list1(4)
Check "the clef has two halves", Len(clef), CLng(2)
For Each text In Array("Zo" & Chr(235), "O'Neil", list1(0), list1(1), list1(2), list1(3), clef & "clef")
  number = db.AddNewMember(text, "", "Surname")
  Check "the number of " & Len(text), db.FindMember(text & " Surname", True), number
  other = db.GetEBUNoAndNames(number, name, par, list)
  Check "a text of " & Len(text), name, text
  Check "its length", Len(name), Len(text)
  Check "the surname beside it", list, "Surname"
  Check "the name in a format", db.GetMemberName(number, 0), text & " Surname"
  db.DeleteMember number
Next
Set details = CreateObject("TaviMembership.EBUMembershipDetails")
details.Location = clef & Chr(0) & "x"
Check "a text with a zero inside", details.Location, clef & Chr(0) & "x"
details.Location = String(100000, "y")
Check "a long text", Len(details.Location), CLng(100000)

' --- Numbers, texts and truths for each other
list1 = Array(1, 2, 3)
ann = db.AddNewMember("Ann", Empty, "Smith", "52.5")
bob = db.AddNewMember("Bob", "", "Jones", 48)
Check "a handicap in text form", db.GetHandicap(CStr(ann)), 52.5
Check "a number as a double", db.GetHandicap(CDbl(ann)), 52.5
Check "a number as a byte", db.GetHandicap(CByte(ann)), 52.5
Check "a truth for a number", db.IsValidMemberID(False), False
Check "an empty value for a number", db.IsValidMemberID(Empty), False
Check "an empty value for a text", db.FindMember(Empty), CLng(-1)
Check "a number for a text", db.FindMember(5), CLng(-1)
Check "a number for a truth", db.FindMember("Ann Smith", 1), ann
Check "a text for a truth", db.FindMember("Ann Smith", "True"), ann
never = Empty
Check "a variable never set", db.IsValidMemberID(never), False
Check "arguments from an array", db.GetMemberName(list1(0) * 0 + ann, list1(0) - 1), "Ann Smith"

' --- What cannot be taken
On Error Resume Next
db.GetHandicap Null
CheckError "Null for a number", kTypeMismatch
db.FindMember Null
CheckError "Null for a text", kTypeMismatch
db.FindMember "Ann Smith", Null
CheckError "Null for a truth", kTypeMismatch
db.GetHandicap list1
CheckError "an array for a number", kTypeMismatch
db.GetHandicap nothingSet
checks = checks + 1
If Err.Number = 0 Then
  failures = failures + 1
  WScript.Echo "FAILED Nothing for a number was taken"
End If
Err.Clear
db.GetHandicap "one"
CheckError "a word for a number", kTypeMismatch
db.GetHandicap 3000000000
CheckError "a number of too many bits", kOverflow
db.GetMemberName ann, -32769
CheckError "a format of too many bits", kOverflow
db.SetHandicap ann, "fifty"
CheckError "a word for a handicap", kTypeMismatch
db.AddNewMember "Cat", "", "Null", Null
CheckError "Null for a handicap that may be left out", kTypeMismatch
db.AddNewMember "Cat", "", "Word", "word"
CheckError "a word for it", kTypeMismatch
db.SetCompetitionEx "x", "no date", False, 1, 0, False, False, 1, 8, 1, "EBU", 1, True
CheckError "a word for a date", kTypeMismatch
db.IncludeInactiveMembers = "perhaps"
CheckError "a word for a truth", kTypeMismatch
db.DatabaseFolder = Null
CheckError "Null for a folder", kTypeMismatch
db.PlayersStratum(ann) = 40000
CheckError "a stratum of too many bits", kOverflow
db.PlayersStratum("x") = 1
CheckError "a word for a player", kTypeMismatch
On Error Goto 0
Check "nothing was added", db.FindMember("Cat Word"), CLng(-1)
Check "the handicap is as it was", db.GetHandicap(ann), 52.5
Check "the folder too", db.DatabaseFolder, folder

' --- Too many, too few, unknown, misused
On Error Resume Next
db.GetHandicap
CheckError "too few arguments", kWrongCount
db.GetHandicap ann, 2
CheckError "too many arguments", kWrongCount
db.EndGet 1
CheckError "an argument for what has none", kWrongCount
text = db.DatabaseFolder(1)
CheckError "an index of a plain property", kWrongCount
db.PlayersStratum = 1
CheckError "a property without its index", kWrongCount
db.NoSuchOperation
CheckError "an unknown operation", kNoSuchMember
text = db.NoSuchProperty
CheckError "an unknown property", kNoSuchMember
db.NoSuchProperty = 1
CheckError "an unknown property set", kNoSuchMember
db.DatabaseExists = True
CheckError "a property that is only read", kNoSuchMember
db.MembersEmailAddress(ann) = "x"
CheckError "another one", kNoSuchMember
db.OpenDatabase = 1
CheckError "an operation as a property", kNoSuchMember
Set db.DatabaseFolder = details
CheckError "an object for a text property", kNoSuchMember
On Error Goto 0

' --- Arguments that may be left out, in the middle too
Check "left out at the end", db.GetMemberName(99, 0), ""
Check "left out in between", db.GetPairName(-1, "A", -1, "B", 0, , True), "B & A"
Check "all of them there", db.GetPairName(-1, "A", -1, "B", 0, False, False), "A & B"
On Error Resume Next
db.GetMemberName , 0
CheckError "one that must be there", kNotOptional
On Error Goto 0

' --- Names in any case of letters
Check "an operation in capitals", db.GETHANDICAP(ann), 52.5
Check "a property in small letters", db.databasefolder, folder

' --- Variables that something is passed back in hold anything before
number = Empty: name = Empty: par = Empty
Check "empty variables", db.GetFirstMember(number, name, par, 0), True
Check "the number", number, ann
Check "the name", name, "Ann Smith"
Check "the handicap", par, 52.5
db.EndGet
number = "12": name = 12: par = "13.5"
Check "texts with numbers", db.GetFirstMember(number, name, par, 0), True
Check "its number", number, ann
Check "its name", name, "Ann Smith"
Check "its handicap", par, 52.5
number = "word": name = Null: par = list1
Check "a word, Null and an array", db.GetNextMember(number, name, par, 0), True
Check "the next number", number, bob
Check "the next name", name, "Bob Jones"
Check "the next handicap", par, 48.0
Set number = db
Set name = Nothing
par = #1 January 2000#
Check "objects and a date", db.GetFirstMember(number, name, par, 0), True
Check "a number instead of the object", number, ann
Check "a name instead of nothing", name, "Ann Smith"
Check "a handicap instead of the date", par, 52.5
db.EndGet
number = 7: name = "kept": par = 8
Check "behind the end", db.GetNextMember(number, name, par, 0), False
Check "the number is kept", number, CLng(7)
Check "the name is kept", name, "kept"
Check "the handicap is kept", par, 8.0
Check "values instead of variables", db.GetFirstMember(1, "x", 2.5, 0), True
Check "brackets around variables", db.GetNextMember((number), (name), (par), 0), True
Check "keep them as they are", name, "kept"
db.EndGet
Dim cells(2)
Check "places of an array", db.GetFirstMember(cells(0), cells(1), cells(2), 0), True
Check "a place's number", cells(0), ann
Check "a place's name", cells(1), "Ann Smith"
db.EndGet
On Error Resume Next
number = 7: name = "kept": par = 8
db.GetFirstMember number, name, par, "word"
CheckError "an operation that is refused", kTypeMismatch
On Error Goto 0
Check "leaves the variables", number & name & par, "7kept8"
name = "?": par = "?"
Check "IsRegularPair", db.IsRegularPair(ann, bob, name, par), False
Check "its name", name, ""
Check "its handicap of a word's variable", par, 50.0
other = Null
Check "CheckMembershipID", db.CheckMembershipID(ann, "Ann Smith", 50, other), ann
Check "its truth in a variable that was Null", TypeName(other), "Boolean"

' --- Dates
number = db.SetCompetitionEx("Dates", #29 February 2024#, False, 1, 0, False, False, 1, 8, 1, "EBU", 1, True)
db.EndResultUpdate number
Check "the same date as a number", db.SetCompetition("Dates", CDbl(#29 February 2024#), False, 1, 0, 1, 8, 1, 1, True), number
db.EndResultUpdate number
On Error Resume Next
db.SetCompetitionEx "Dates", 1e9, False, 1, 0, False, False, 1, 8, 1, "EBU", 1, True
CheckError "a date far away", kOverflow
On Error Goto 0
db.CloseDatabase

' --- Settings are set as an object
Set settings = db.HandicalcOptions
On Error Resume Next
Set db.HandicalcOptions = Nothing
CheckError "no settings", kNoObject
Set db.HandicalcOptions = details
checks = checks + 1
If Err.Number = 0 Then
  failures = failures + 1
  WScript.Echo "FAILED an object of another class was taken for settings"
End If
Err.Clear
db.HandicalcOptions = 5
CheckError "a number for settings", kNoSuchMember
settings.MaxWeeks = 70000
CheckError "weeks of too many bits", kOverflow
settings.IncludesRegularPairAdjustment = True
CheckError "a property of the settings that is only read", kNoSuchMember
settings.AdjustRegularPair
CheckError "no gross handicap", kWrongCount
On Error Goto 0
settings.MaxWeeks = "26"
settings.MaxResults = 12.5
settings.RegularPairMultiplier = "0.5"
settings.RegularPairAdd = 1
settings.UnknownPlayerHandicap = Empty
Check "weeks in text form", settings.MaxWeeks, CInt(26)
Check "a half is rounded to the even number", settings.MaxResults, CInt(12)
Check "a factor in text form", settings.RegularPairMultiplier, 0.5
Check "an addition", settings.RegularPairAdd, 1.0
Check "an empty handicap", settings.UnknownPlayerHandicap, 0.0
settings.Disabled = "True"
Check "a truth in text form", settings.Disabled, True
Set db.HandicalcOptions = settings
Check "the stored settings", db.HandicalcOptions.MaxWeeks, CInt(26)
settings.MaxWeeks = 5
Check "are the object itself", db.HandicalcOptions.MaxWeeks, CInt(5)
db.HandicalcOptions.MaxWeeks = 6
Check "what is read is a copy", db.HandicalcOptions.MaxWeeks, CInt(5)
Check "AdjustRegularPair of a text", settings.AdjustRegularPair("60"), 31.0

' --- Arrays and collections
matches = db.FindNearestMatches("Ann Smith")
Check "an array", TypeName(matches), "Variant()"
Check "its lower bound", LBound(matches), CLng(1)
Check "its best match", matches(1), ann
count = 0
For Each item In matches
  count = count + 1
Next
Check "all of them", count, CInt(UBound(matches))
matches = db.FindNearestMatches(" ")
Check "nobody's lower bound", LBound(matches), CLng(0)
Check "nobody's upper bound", UBound(matches), CLng(0)
Set list = db.SearchEBUList("John", "Smith")
Check "one row", list.Count, CLng(1)
Check "by position", list.Item(1).EBUNumber, "77"
Check "by the default member", list(1).EBUNumber, "77"
Check "by a position in a double", list(1.0).EBUNumber, "77"
Check "a row's text that is empty", list(1).Location, ""
Check "no rows", db.SearchEBUList("John", "Nobody").Count, CLng(0)
count = 0
For Each item In db.SearchEBUList("", "Nobody")
  count = count + 1
Next
Check "nothing to walk over", count, CInt(0)
On Error Resume Next
Set item = list.Item(0)
CheckError "an item before the first", 9
Set item = list.Item("77")
CheckError "an item by a key that is none", 5
Set item = list.Item(Null)
CheckError "an item by Null", kTypeMismatch
list.Count = 3
CheckError "a count that is only read", kNoSuchMember
On Error Goto 0

' --- Addresses, by position and by key
db.DatabaseFolder = folder & "\addresses"
Check "an address", db.MembersEmailAddress(1), "ann@example.org"
Check "that of a retired member", db.MembersEmailAddress(2), "bob@example.org"
Check "that of nobody", db.MembersEmailAddress(99), ""
Set list = db.AllEmailAddresses
Check "the addresses of the active members", list.Count, CLng(2)
Check "the first one", list(1), "ann@example.org"
Check "by its key", list.Item("ANN@example.org"), "ann@example.org"
Check "with accents, by its key", list.Item(Chr(201) & "LO" & Chr(207) & "SE@example.org"), Chr(201) & "lo" & Chr(239) & "se@example.org"
text = ""
For Each item In list
  text = text & item & ";"
Next
Check "all of them", text, "ann@example.org;" & Chr(201) & "lo" & Chr(239) & "se@example.org;"
On Error Resume Next
text = list.Item("bob@example.org")
CheckError "an address that is not there", 5
text = list.Item(3)
CheckError "an address behind the end", 9
db.DatabaseFolder = folder & "\twice"
Set list = db.AllEmailAddresses
CheckError "an address of two members", 457
On Error Goto 0
db.DatabaseFolder = folder

' --- Objects live as long as they are used
Set list = db.SearchEBUList("", "Smith")
Set item = list(2)
Set list = Nothing
Set db = Nothing
Check "a row without its collection and database", item.FirstName, "Jane"
Set item = Nothing
Set db = CreateObject("TaviMembership.MembershipDatabase")
db.DatabaseFolder = folder
Check "another object", db.GetHandicap(ann), 52.5

WScript.Echo checks & " checks, " & failures & " failures"
If failures > 0 Then WScript.Quit 1
