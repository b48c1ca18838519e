' Lists the members of a club: cscript //nologo members.vbs [FOLDER]
Option Explicit
Dim database, number, name, handicap, found

Set database = CreateObject("TaviMembership.MembershipDatabase")
If WScript.Arguments.Count > 0 Then database.DatabaseFolder = WScript.Arguments(0)
If Not database.DatabaseExists Then
  WScript.Echo "There is no " & database.DatabaseFileName
  WScript.Quit 1
End If

found = database.GetFirstMember(number, name, handicap, 0)
Do While found
  WScript.Echo number & vbTab & name & vbTab & FormatNumber(handicap, 2)
  found = database.GetNextMember(number, name, handicap, 0)
Loop
database.EndGet
