#include <gtest/gtest.h>
#include <set>

#include "access/sql/expression/ExpressionText.h"
#include "access/sql/expression/Functions.h"

/// Tables of calls and their values (see ExpressionText.h for the columns and the notation).
namespace tavi::access::sql {
namespace {

TEST(Functions, AreFoundInAnyCaseWithOrWithoutDollar) {
  ASSERT_NE(FindFunction("Left"), nullptr);
  EXPECT_EQ(FindFunction("left$"), FindFunction("LEFT"));
  EXPECT_EQ(FindFunction("Lefty"), nullptr);
  EXPECT_EQ(FindFunction(""), nullptr);
  EXPECT_EQ(FindFunction("Count"), nullptr);
}

TEST(Functions, TheTablesAreConsistent) {
  std::set<std::string_view> names;
  for (const auto table :
       {TextFunctions(), NumberFunctions(), ConversionFunctions(), DateFunctions(), LogicFunctions()}) {
    for (const Function& function : table) {
      EXPECT_TRUE(names.insert(function.name).second) << function.name;
      EXPECT_LE(function.minimumArguments, function.maximumArguments) << function.name;
      EXPECT_NE(function.call == nullptr, function.lazyCall == nullptr) << function.name;
      EXPECT_EQ(FindFunction(function.name), &function);
    }
  }
  EXPECT_GE(names.size(), 70U);
}

TEST(Functions, OfTextCountCharacters) {
  const ResultCase cases[] = {
      {"Len(Name)", "6L"},
      {"Len('')", "0L"},
      {"Len(12345)", "5L"},
      {"Left(Name, 1)", "'É'"},
      {"Left('abc', 9)", "'abc'"},
      {"Left('abc', -1)", "error 0005"},
      {"Right(Name, 4)", "'oïse'"},
      {"Right('abc', 0)", "''"},
      {"Right('abc', 9)", "'abc'"},
      {"Mid(Name, 4, 2)", "'ïs'"},
      {"Mid('abc', 2)", "'bc'"},
      {"Mid('abc', 9)", "''"},
      {"Mid('abc', 0)", "error 0005"},
      {"UCase(Name)", "'ÉLOÏSE'"},
      {"LCase('ŁÓDŹ')", "'łódź'"},
      {"'<' & Trim('  a b ') & '>'", "'<a b>'"},
      {"'<' & LTrim('  a ') & '>'", "'<a >'"},
      {"'<' & RTrim('  a ') & '>'", "'<  a>'"},
      {"LTrim('   ')", "''"},
      {"RTrim('   ')", "''"},
      {"StrReverse(Name)", "'esïolÉ'"},
      {"Space(3)", "'   '"},
      {"String(3, 'xy')", "'xxx'"},
      {"String(2, 65)", "'AA'"},
      {"String(2, '')", "error 0005"},
      {"Space(2000000000)", "error 0006"},
      {"String(2000000000, 'x')", "error 0006"},
      {"StrConv('john SMITH', 3)", "'John Smith'"},
      {"StrConv('aB', 1) & StrConv('aB', 2)", "'ABab'"},
      {"StrConv('a', 4)", "error 0005"},
      {"Left(Nothing, 2)", "Null"},
      {"Left('abc', Null)", "Null"},
      {"UCase(5)", "'5'"},
  };
  ExpectResults(cases);
}

TEST(Functions, OfSearchIgnoreCaseUnlessAskedNotTo) {
  const ResultCase cases[] = {
      {"InStr('Bridge', 'D')", "4L"},
      {"InStr('Bridge', 'x')", "0L"},
      {"InStr('Bridge', '')", "1L"},
      {"InStr('', '')", "0L"},
      {"InStr(5, 'abcabc', 'b')", "5L"},
      {"InStr(6, 'abcabc', 'b')", "0L"},
      {"InStr(99, 'abc', 'b')", "0L"},
      {"InStr(0, 'abc', 'b')", "error 0005"},
      {"InStr(1, 'aBb', 'b', 0)", "3L"},
      {"InStr(1, 'aBb', 'b', 1)", "2L"},
      {"InStr(1, 'aBb', 'b', 7)", "error 0005"},
      {"InStr(Name, 'Ï')", "4L"},
      {"InStrRev('abcabc', 'B')", "5L"},
      {"InStrRev('abcabc', 'b', 4)", "2L"},
      {"InStrRev('abcabc', 'bc', 5)", "2L"},
      {"InStrRev('abc', 'x')", "0L"},
      {"InStrRev('abc', 'b', 9)", "0L"},
      {"InStrRev('aBb', 'B', -1, 0)", "2L"},
      {"InStrRev('', 'a')", "0L"},
      {"Replace('aXbxc', 'x', '-')", "'a-b-c'"},
      {"Replace('aXbxc', 'x', '-', 1, -1, 0)", "'aXb-c'"},
      {"Replace('aXbxc', 'x', '-', 1, 1)", "'a-bxc'"},
      {"Replace('aXbxc', 'x', '', 3)", "'bc'"},
      {"Replace('aaa', 'aa', 'b')", "'ba'"},
      {"Replace('abc', '', 'x')", "'abc'"},
      {"Replace('abc', 'b', 'bb')", "'abbc'"},
      {"Replace('abc', 'b', 'x', 0)", "error 0005"},
      {"Replace('abc', 'b', 'x', 1, -2)", "error 0005"},
      {"Replace(String(10000, 'a'), 'a', String(10000, 'b'))", "error 0006"},
      {"StrComp('abc', 'ABC')", "0L"},
      {"StrComp('abc', 'abd')", "-1L"},
      {"StrComp('abc', 'ABC', 0)", "1L"},
      {"StrComp('b', 'a', 1)", "1L"},
  };
  ExpectResults(cases);
}

TEST(Functions, OfCharacterCodes) {
  const ResultCase cases[] = {
      {"Asc('A')", "65L"},       {"Asc('€')", "128L"},       {"Asc('é')", "233L"},       {"Asc('Ł')", "63L"},
      {"Asc('')", "error 0005"}, {"AscW('Ł')", "321L"},      {"AscW('€')", "8364L"},     {"Chr(65)", "'A'"},
      {"Chr(128)", "'€'"},       {"Chr(233)", "'é'"},        {"Chr(256)", "error 0005"}, {"Chr(-1)", "error 0005"},
      {"ChrW(321)", "'Ł'"},      {"ChrW(-1)", "error 0005"}, {"Asc(Chr(129))", "129L"},  {"Asc(Chr(159))", "159L"},
  };
  ExpectResults(cases);
}

TEST(Functions, OfNumbers) {
  const ResultCase cases[] = {
      {"Abs(-5)", "5L"},
      {"Abs(-2.5)", "2.5"},
      {"Abs(Money)", "12.3456C"},
      {"Abs(-Money)", "12.3456C"},
      {"Abs('-3')", "3"},
      {"Sgn(-2.5)", "-1L"},
      {"Sgn(0)", "0L"},
      {"Sgn(Whole)", "1L"},
      {"Int(2.7)", "2"},
      {"Int(-2.1)", "-3"},
      {"Fix(-2.7)", "-2"},
      {"Fix(2.7)", "2"},
      {"Int(Whole)", "7I"},
      {"Int(Money)", "12C"},
      {"Int(-Money)", "-13C"},
      {"Fix(-Money)", "-12C"},
      {"Int(Born)", "#2001-05-03#"},
      {"Round(2.5)", "2"},
      {"Round(3.5)", "4"},
      {"Round(-2.5)", "-2"},
      {"Round(0.125, 2)", "0.12"},
      {"Round(0.375, 2)", "0.38"},
      {"Round(Whole, 1)", "7I"},
      {"Round(1.5, -1)", "error 0005"},
      {"Round(Money, 2)", "12.35C"},
      {"Round(CCur(0.5))", "0C"},
      {"Round(CCur(1.5))", "2C"},
      {"Round(CCur(-1.5))", "-2C"},
      {"Round(CCur(0.125), 2)", "0.12C"},
      {"Sqr(9)", "3"},
      {"Sqr(-1)", "error 0005"},
      {"Exp(0)", "1"},
      {"Exp(1000)", "error 0006"},
      {"Log(1)", "0"},
      {"Log(0)", "error 0005"},
      {"Sin(0)", "0"},
      {"Cos(0)", "1"},
      {"Tan(0)", "0"},
      {"Round(Atn(1) * 4, 5)", "3.14159"},
      {"Abs(Nothing)", "Null"},
      {"Abs('x')", "error 0E07"},
      {"Abs(-2147483647 - 1)", "2147483648"},
  };
  ExpectResults(cases);
}

TEST(Functions, OfChanceKeepTheirRange) {
  for (int turn = 0; turn < 20; ++turn) EXPECT_EQ(ResultOf("Rnd() >= 0 And Rnd() < 1"), "True");
  EXPECT_EQ(ResultOf("Rnd(-1) = Rnd(-1)"), "True");
  EXPECT_EQ(ResultOf("Rnd(-1) = Rnd(-2)"), "False");
  EXPECT_EQ(ResultOf("GenGUID() = GenGUID()"), "False");
}

TEST(Functions, OfConversion) {
  const ResultCase cases[] = {
      {"CStr(1.50)", "'1.5'"},
      {"CStr(True)", "'-1'"},
      {"CStr(Born)", "'2001-05-03T14:30:00'"},
      {"CInt(2.5)", "2I"},
      {"CInt(3.5)", "4I"},
      {"CInt('12')", "12I"},
      {"CInt(40000)", "error 0006"},
      {"CInt('x')", "error 0E07"},
      {"CInt(Null)", "error 0E07"},
      {"CLng(2.5)", "2L"},
      {"CLng(-2.6)", "-3L"},
      {"CLng(3e9)", "error 0006"},
      {"CLng(2147483647.4)", "2147483647L"},
      {"CLng(2147483647.6)", "error 0006"},
      {"CByte(255)", "255B"},
      {"CByte(256)", "error 0006"},
      {"CByte(-1)", "error 0006"},
      {"CDbl('1.5e3')", "1500"},
      {"CDbl(Money)", "12.3456"},
      {"CSng(0.1)", "0.1S"},
      {"CSng(1e39)", "error 0006"},
      {"CCur(1.03125)", "1.0312C"},
      {"CCur(1.09375)", "1.0938C"},
      {"CCur(1e16)", "error 0006"},
      {"CCur('2.5')", "2.5C"},
      {"CCur('922337203685477.5807')", "922337203685477.5807C"},
      {"CCur('-922337203685477.5808')", "-922337203685477.5808C"},
      {"CCur(' 12.34565 ')", "12.3456C"},
      {"CCur('922337203685477.5808')", "error 0006"},
      {"CCur('x')", "error 0E07"},
      {"CCur(Money)", "12.3456C"},
      {"CBool(2)", "True"},
      {"CBool('false')", "False"},
      {"CBool('0')", "False"},
      {"CBool('maybe')", "error 0E07"},
      {"CDate(37014)", "#2001-05-03#"},
      {"CDate('3/5/2001')", "#2001-05-03#"},
      {"CDate('3 May 2001 2:30 PM')", "#2001-05-03T14:30:00#"},
      {"CDate('x')", "error 0E07"},
      {"CDate(9999999)", "error 0006"},
      {"Str(5)", "' 5'"},
      {"Str(-5)", "'-5'"},
      {"Str(Null)", "Null"},
      {"Val('12abc')", "12"},
      {"Val(' 1 2.5 x')", "12.5"},
      {"Val('-3')", "-3"},
      {"Val('+3')", "3"},
      {"Val('')", "0"},
      {"Val('abc')", "0"},
      {"Val('1e3')", "1000"},
      {"Val('.5')", "0.5"},
      {"Val('&HFF')", "255"},
      {"Val('&O17')", "15"},
      {"Val('inf')", "0"},
      {"Val('nan')", "0"},
      {"Val('1e999')", "error 0006"},
      {"Hex(255)", "'FF'"},
      {"Hex(-1)", "'FFFFFFFF'"},
      {"Oct(8)", "'10'"},
      {"Hex(15.5)", "'10'"},
      {"Hex(3e9)", "error 0006"},
  };
  ExpectResults(cases);
}

TEST(Functions, OfDatesKnowTheParts) {
  const ResultCase cases[] = {
      {"Now()", "#2024-02-29T18:05:09#"},
      {"Date()", "#2024-02-29#"},
      {"Time()", "#1899-12-30T18:05:09#"},
      {"Year(Born)", "2001L"},
      {"Month(Born)", "5L"},
      {"Day(Born)", "3L"},
      {"Hour(Born)", "14L"},
      {"Minute(Born)", "30L"},
      {"Second(#1:02:03#)", "3L"},
      {"Year(37014)", "2001L"},
      {"Year('3 May 2001')", "2001L"},
      {"Year('x')", "error 0E07"},
      {"Weekday(Born)", "5L"},
      {"Weekday(Born, 2)", "4L"},
      {"Weekday(Born, 5)", "1L"},
      {"Weekday(Born, 8)", "error 0005"},
      {"Weekday(#12/30/1899#)", "7L"},
      {"Weekday(#12/23/1899#)", "7L"},
      {"WeekdayName(1)", "'Sunday'"},
      {"WeekdayName(1, True)", "'Sun'"},
      {"WeekdayName(1, False, 2)", "'Monday'"},
      {"WeekdayName(7, False, 2)", "'Sunday'"},
      {"WeekdayName(8)", "error 0005"},
      {"MonthName(9)", "'September'"},
      {"MonthName(9, True)", "'Sep'"},
      {"MonthName(13)", "error 0005"},
      {"Year(Nothing)", "Null"},
      {"DateSerial(2001, 5, 3)", "#2001-05-03#"},
      {"DateSerial(2001, 13, 1)", "#2002-01-01#"},
      {"DateSerial(2001, 3, 0)", "#2001-02-28#"},
      {"DateSerial(2001, 1, -1)", "#2000-12-30#"},
      {"DateSerial(2001, 0, 1)", "#2000-12-01#"},
      {"DateSerial(29, 1, 1)", "#2029-01-01#"},
      {"DateSerial(30, 1, 1)", "#1930-01-01#"},
      {"DateSerial(100, 1, 1)", "#0100-01-01#"},
      {"DateSerial(9999, 12, 32)", "error 0006"},
      {"DateSerial(2001, 2147483647, 1)", "error 0006"},
      {"DateSerial(2001, 1, 2147483647)", "error 0006"},
      {"DateSerial(-5, 1, 1)", "error 0006"},
      {"TimeSerial(14, 30, 0)", "#1899-12-30T14:30:00#"},
      {"TimeSerial(0, 90, -60)", "#1899-12-30T01:29:00#"},
      {"TimeSerial(25, 0, 0)", "#1899-12-31T01:00:00#"},
      {"DateValue(Born)", "#2001-05-03#"},
      {"TimeValue(Born)", "#1899-12-30T14:30:00#"},
      {"DateValue('May 3, 2001 2 PM')", "#2001-05-03#"},
  };
  ExpectResults(cases);
}

TEST(Functions, OfDatesAddIntervals) {
  const ResultCase cases[] = {
      {"DateAdd('yyyy', 1, #2/29/2000#)", "#2001-02-28#"},
      {"DateAdd('m', 1, #1/31/2001#)", "#2001-02-28#"},
      {"DateAdd('m', -1, #3/31/2000#)", "#2000-02-29#"},
      {"DateAdd('q', 1, #11/30/2000#)", "#2001-02-28#"},
      {"DateAdd('d', 1, #2/28/2000#)", "#2000-02-29#"},
      {"DateAdd('y', -1, #3/1/2000#)", "#2000-02-29#"},
      {"DateAdd('w', 2, #2/28/2000#)", "#2000-03-01#"},
      {"DateAdd('ww', -52, #5/3/2001#)", "#2000-05-04#"},
      {"DateAdd('h', 12, Born)", "#2001-05-04T02:30:00#"},
      {"DateAdd('n', -31, Born)", "#2001-05-03T13:59:00#"},
      {"DateAdd('s', 86400, Born)", "#2001-05-04T14:30:00#"},
      {"DateAdd('H', 1, Born)", "#2001-05-03T15:30:00#"},
      {"DateAdd('d', 1.9, #2/28/2000#)", "#2000-02-29#"},
      {"DateAdd('x', 1, Born)", "error 0005"},
      {"DateAdd('yyyy', 9999, Born)", "error 0006"},
      {"DateAdd('s', 1e300, Born)", "error 0006"},
      {"DateAdd('d', Null, Born)", "Null"},
      {"DateAdd('h', -12, #12/30/1899#)", "#1899-12-29T12:00:00#"},
      {"DateAdd('h', 12, #12/29/1899 18:00#)", "#1899-12-30T06:00:00#"},
  };
  ExpectResults(cases);
}

TEST(Functions, OfDatesCountBeginningsOfIntervals) {
  const ResultCase cases[] = {
      {"DateDiff('yyyy', #12/31/2000#, #1/1/2001#)", "1L"},
      {"DateDiff('yyyy', #1/1/2001#, #12/31/2001#)", "0L"},
      {"DateDiff('q', #3/31/2001#, #4/1/2001#)", "1L"},
      {"DateDiff('q', #4/1/2001#, #3/31/2000#)", "-5L"},
      {"DateDiff('m', #1/31/2001#, #2/1/2001#)", "1L"},
      {"DateDiff('m', #5/1/2001#, #2/28/2000#)", "-15L"},
      {"DateDiff('d', #5/3/2001 23:59#, #5/4/2001 0:01#)", "1L"},
      {"DateDiff('y', #5/3/2001#, #5/1/2001#)", "-2L"},
      {"DateDiff('w', #5/3/2001#, #5/16/2001#)", "1L"},
      {"DateDiff('w', #5/3/2001#, #5/17/2001#)", "2L"},
      {"DateDiff('ww', #5/5/2001#, #5/6/2001#)", "1L"},
      {"DateDiff('ww', #5/6/2001#, #5/12/2001#)", "0L"},
      {"DateDiff('ww', #5/6/2001#, #5/7/2001#, 2)", "1L"},
      {"DateDiff('ww', #1/1/2001#, #1/1/1890#)", "-5792L"},
      {"DateDiff('h', #5/3/2001 1:59#, #5/3/2001 2:01#)", "1L"},
      {"DateDiff('n', #5/3/2001#, #5/4/2001#)", "1440L"},
      {"DateDiff('s', #5/3/2001#, Born)", "52200L"},
      {"DateDiff('s', #1/1/1900#, #1/1/2000#)", "error 0006"},
      {"DateDiff('h', #12/29/1899 18:00#, #12/30/1899 6:00#)", "12L"},
      {"DateDiff('d', Null, Born)", "Null"},
      {"DateDiff('x', Born, Born)", "error 0005"},
  };
  ExpectResults(cases);
}

TEST(Functions, OfDatesGiveParts) {
  const ResultCase cases[] = {
      {"DatePart('yyyy', Born)", "2001L"},
      {"DatePart('q', Born)", "2L"},
      {"DatePart('m', Born)", "5L"},
      {"DatePart('y', Born)", "123L"},
      {"DatePart('d', Born)", "3L"},
      {"DatePart('w', Born)", "5L"},
      {"DatePart('ww', Born)", "18L"},
      {"DatePart('h', Born)", "14L"},
      {"DatePart('n', Born)", "30L"},
      {"DatePart('s', Born)", "0L"},
      {"DatePart('ww', #1/1/2005#)", "1L"},
      {"DatePart('ww', #1/2/2005#)", "2L"},
      {"DatePart('ww', #1/1/2005#, 2, 2)", "53L"},
      {"DatePart('ww', #1/3/2005#, 2, 2)", "1L"},
      {"DatePart('ww', #12/31/2008#, 2, 2)", "1L"},
      {"DatePart('ww', #1/1/2005#, 1, 3)", "52L"},
      {"DatePart('ww', #1/2/2005#, 1, 3)", "1L"},
      {"DatePart('ww', #12/31/2000#)", "54L"},
      {"DatePart('w', Born, 2)", "4L"},
      {"DatePart('ww', Born, 1, 4)", "error 0005"},
      {"DatePart('', Born)", "error 0005"},
  };
  ExpectResults(cases);
}

TEST(Functions, OfLogicEvaluateOnlyWhatTheyNeed) {
  const ResultCase cases[] = {
      {"IIf(True, 1, 1 / 0)", "1L"},
      {"IIf(False, 1 / 0, 2)", "2L"},
      {"IIf(Null, 1, 2)", "2L"},
      {"IIf('x', 1, 2)", "error 0E07"},
      {"Nz(Nothing)", "''"},
      {"Nz(Nothing, 5)", "5L"},
      {"Nz(Whole, 1 / 0)", "7I"},
      {"Switch(False, 1 / 0, True, 2)", "2L"},
      {"Switch(False, 1)", "Null"},
      {"Switch(True)", "error 0E14"},
      {"Switch(True, 1, 2)", "error 0005"},
      {"Choose(2, 1 / 0, 'b')", "'b'"},
      {"Choose(2.9, 'a', 'b')", "'b'"},
      {"Choose(3, 'a', 'b')", "Null"},
      {"Choose(0, 'a', 'b')", "Null"},
      {"Choose(Null, 'a')", "Null"},
      {"IsNull(Nothing)", "True"},
      {"IsNull('')", "False"},
      {"IsDate('3 May 2001')", "True"},
      {"IsDate('31/2/2001')", "False"},
      {"IsDate(Born)", "True"},
      {"IsDate(5)", "False"},
      {"IsDate(Null)", "False"},
      {"IsNumeric('1.5')", "True"},
      {"IsNumeric('x')", "False"},
      {"IsNumeric('')", "False"},
      {"IsNumeric(5)", "True"},
      {"IsNumeric(Born)", "False"},
      {"IsNumeric(Null)", "False"},
      {"IsNumeric(Money)", "True"},
  };
  ExpectResults(cases);
}

TEST(Functions, RefuseWrongCountsOfArguments) {
  for (const std::string_view call :
       {"Len()", "Date(1)", "IIf(1, 2)", "Mid('a')", "Replace('a', 'b')", "Nz()", "Rnd(1, 2)"}) {
    EXPECT_EQ(ResultOf(call), "error 0E14") << call;
  }
}

}  // namespace
}  // namespace tavi::access::sql
