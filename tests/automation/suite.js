// Drives the automation server from JScript, whose variables are never passed back and which has no Set. Argument: the
// folder of a club file that club_maker made. Prints each failed check and a last line with the counts; the exit code is 1
// when one failed.
var checks = 0;
var failures = 0;

function check(what, got, want) {
  ++checks;
  if (got === want) return;
  ++failures;
  WScript.Echo("FAILED " + what + ": got " + typeof got + " " + got + ", want " + typeof want + " " + want);
}

function checkError(what, number, text, call) {
  ++checks;
  try {
    call();
  } catch (error) {
    var fits = error.number === number || error.number === number[0] || error.number === number[1];
    if (fits && error.description.indexOf(text) >= 0) return;
    ++failures;
    WScript.Echo("FAILED " + what + ": " + error.number + " " + error.description);
    return;
  }
  ++failures;
  WScript.Echo("FAILED " + what + ": no error");
}

var kOwn = 0x80040000 | 0;
// One scripting system gives the numbers of automation as they are, another one those of its own errors.
var kTypeMismatch = [0x80020005 | 0, 0x800A000D | 0];

var folder = WScript.Arguments(0);
var db = new ActiveXObject("TaviMembership.MembershipDatabase");
db.DatabaseFolder = folder;
check("DatabaseFolder", db.DatabaseFolder, folder);
check("DatabaseFileName", db.DatabaseFileName, folder + "\\ClubMembers.mdb");
check("DatabaseExists", db.DatabaseExists, true);
check("IncludeInactiveMembers", db.IncludeInactiveMembers, false);
db.OpenDatabase();

var first = "\u0141ukasz";
var last = "M\u00fcller \ud834\udd1e";
var lukasz = db.AddNewMember(first, "", last, 47.5);
var ann = db.AddNewMember("Ann", "B", "Smith");
check("AddNewMember", lukasz, 1);
check("GetMemberName", db.GetMemberName(lukasz, 0), first + " " + last);
check("GetMemberName of nobody", db.GetMemberName(99, 0, "nobody"), "nobody");
check("GetHandicap", db.GetHandicap(lukasz), 47.5);
check("a missing handicap", db.GetHandicap(ann), 50);
db.SetHandicap(ann, "51.25");
check("SetHandicap", db.GetHandicap(ann), 51.25);
db.SetEBUNumber(ann, 4711);
var unused = "before";
check("GetNameAndEBUNumber", db.GetNameAndEBUNumber(ann, 0, unused), "Ann B Smith");
check("a variable stays as it was", unused, "before");
check("GetEBUNoAndNames", db.GetEBUNoAndNames(ann, undefined, 5, ""), "4711");
check("EnteredNumberToClubNumber", db.EnteredNumberToClubNumber(4711), ann);
check("IsValidMemberID", db.IsValidMemberID(ann), true);
db.PlayersStratum(ann) = 2;
check("PlayersStratum", db.PlayersStratum(ann), 2);
db.ClubName = "Caf\u00e9";
check("ClubName", db.ClubName, "Caf\u00e9");
check("ClubID", db.ClubID, "");
check("WasClubEverCalled", db.WasClubEverCalled("CAF\u00c9"), true);
check("FindMember", db.FindMember("Ann B Smith"), ann);
check("FindMember exactly", db.FindMember("Ann Smyth", true), -1);

var matches = new VBArray(db.FindNearestMatches("Ann B Smith"));
check("FindNearestMatches from 1", matches.lbound(), 1);
check("FindNearestMatches", matches.getItem(1), ann);
matches = new VBArray(db.FindNearestMatches(""));
check("nobody's bounds", matches.lbound() + "-" + matches.ubound(), "0-0");
check("nobody's number", matches.toArray()[0], 0);

check("GetFirstMember", db.GetFirstMember(0, "", 0, 0), true);
check("GetNextMember", db.GetNextMember(0, "", 0, 0), true);
check("Retired", db.Retired, false);
check("GetNextMember at the end", db.GetNextMember(0, "", 0, 0), false);
check("GetFirstEBURecord", db.GetFirstEBURecord("", "", 10), true);
check("GetNextEBURecord", db.GetNextEBURecord("", "", 10), true);
db.EndGet();
check("AddRegularPair", db.AddRegularPair(lukasz, ann), false);
check("IsRegularPair", db.IsRegularPair(lukasz, ann, "", 0), true);
db.SetPairHandicap(lukasz, ann, 49);
check("GetPairName", db.GetPairName(-1, "A B", -1, "C B", 0, true), "A & C B");
check("GetFirstPartnership", db.GetFirstPartnership(0, "", 0, "", "", "", 0, 0), true);
check("GetNextPartnership", db.GetNextPartnership(0, "", 0, "", "", "", 0, 0), false);
db.EndGet();
db.DeletePair(lukasz, ann);
check("DeletePair", db.IsRegularPair(lukasz, ann, "", 0), false);
check("CheckMembershipID", db.CheckMembershipID(ann, "Ann B Smith", 50, false), ann);

check("MembersEmailAddress", db.MembersEmailAddress(ann), "");
check("AllEmailAddresses", db.AllEmailAddresses.Count, 0);
var rows = db.SearchEBUList("", "Smith");
check("SearchEBUList", rows.Count, 2);
check("an item", rows.Item(1).FirstName, "John");
check("an item by the default member", rows(2).FirstName, "Jane");
var names = "";
for (var walk = new Enumerator(rows); !walk.atEnd(); walk.moveNext()) names += walk.item().FirstName + ";";
check("a walk", names, "John;Jane;");

var date = 45446; // 3 June 2024, as the days that a date is
var competition = db.SetCompetitionEx("Monday", date, false, 0, 0, false, false, 1, 8, 1, "EBU", 1, true);
db.NoteCompetitorResult(competition, lukasz, "L", ann, "A", 60, 61);
db.AddMasterPoints(competition, 1, lukasz, "L", ann, "A", 12, 1);
db.EndResultUpdate(competition);
check("SetCompetition", db.SetCompetition("Monday", date, false, 0, 0, 1, 8, 1, 1, true), competition);
db.UpdateResult(competition, false, lukasz, "L", ann, "A", 55, 56, 0, 50);
db.EndResultUpdate(competition);

var settings = db.HandicalcOptions;
settings.MaxWeeks = 10;
settings.Disabled = true;
db.HandicalcOptions = settings;
check("an assigned object is set", settings.Disabled, false);
check("and stored", db.HandicalcOptions.MaxWeeks, 10);
settings.SetDefaults();
check("itself", db.HandicalcOptions.MaxWeeks, 0);
check("HandiCalcDisabled", db.HandiCalcDisabled, false);
db.HandiCalcDisabled = true;
check("HandiCalcDisabled set", db.HandiCalcDisabled, true);
db.HandiCalcDisabled = false;
db.RecalculateAllHandicaps();
check("RecalculateAllHandicaps", db.GetHandicap(ann), 55);
check("CalculateHandicaps", db.CalculateHandicaps(ann, -1, "", 36526, true).Player1Handicap, 55);
db.DeleteMember(ann);
check("DeleteMember", db.GetMemberName(ann, 0), "");
db.CloseDatabase();

checkError("an error of the component", kOwn, "You cannot partner", function () { db.AddRegularPair(1, 1); });
checkError("null for a number", kTypeMismatch, "", function () { db.GetHandicap(null); });
checkError("a word for a number", kTypeMismatch, "", function () { db.GetHandicap("one"); });
checkError("an item behind the end", 0x800A0009 | 0, "1 to 2", function () { unused = rows.Item(3); });
checkError("an unknown name", 0x800A01B6 | 0, "", function () { db.NoSuchOperation(); });

WScript.Echo(checks + " checks, " + failures + " failures");
if (failures > 0) WScript.Quit(1);
