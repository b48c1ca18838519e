#include <gtest/gtest.h>

#include "access/sql/support/Parsing.h"

/// Tables of a text and the tree that the parser makes of it.
namespace tavi::access::sql {
namespace {

TEST(ParseExpression, OperatorsBindAsTheyShould) {
  const TreeCase cases[] = {
      {"1+2*3", "(+ 1L (* 2L 3L))"},
      {"(1+2)*3", "(* (+ 1L 2L) 3L)"},
      {"1-2-3", "(- (- 1L 2L) 3L)"},
      {"8/4*2", "(* (/ 8L 4L) 2L)"},
      {"7\\2*3", "(\\ 7L (* 2L 3L))"},
      {"7 Mod 4\\2", "(Mod 7L (\\ 4L 2L))"},
      {"1 + 7 Mod 4", "(+ 1L (Mod 7L 4L))"},
      {"2^3^2", "(^ (^ 2L 3L) 2L)"},
      {"-2^2", "(neg (^ 2L 2L))"},
      {"2^-1", "(^ 2L -1L)"},
      {"-2*3", "(* -2L 3L)"},
      {"-&H80000000", "2147483648"},
      {"--2", "2L"},
      {"-a", "(neg a)"},
      {"+a", "(pos a)"},
      {"a - -1.5", "(- a -1.5)"},
      {"a & b + c", "(& a (+ b c))"},
      {"a & b = c", "(= (& a b) c)"},
      {"a = b = c", "(= (= a b) c)"},
      {"Not a = b And c", "(And (Not (= a b)) c)"},
      {"Not Not a", "(Not (Not a))"},
      {"a Or b And c", "(Or a (And b c))"},
      {"a And b Or c And d", "(Or (And a b) (And c d))"},
      {"a Xor b Or c", "(Xor a (Or b c))"},
      {"a Imp b Eqv c Xor d", "(Imp a (Eqv b (Xor c d)))"},
      {"a And b And c", "(And (And a b) c)"},
      {"a And b And c And d And e", "(And (And (And a b) c) (And d e))"},
      {"a < b And c >= d", "(And (< a b) (>= c d))"},
  };
  for (const TreeCase& one : cases) EXPECT_EQ(TreeText(*ParseExpression(one.text)), one.tree) << one.text;
}

TEST(ParseExpression, PredicatesMayBeNegated) {
  const TreeCase cases[] = {
      {"a Between 1 And 2 And b", "(And (between a 1L 2L) b)"},
      {"a Not Between 1 + 1 And 2", "(not-between a (+ 1L 1L) 2L)"},
      {"a In (1, 'x', b)", "(in a 1L 'x' b)"},
      {"a Not In (1)", "(not-in a 1L)"},
      {"a + 1 Like 'x*' & b", "(like (+ a 1L) (& 'x*' b))"},
      {"a Not Like 'x'", "(not-like a 'x')"},
      {"a ALike 'x'", "(like a 'x')"},
      {"a Is Null Or b Is Not Null", "(Or (is-null a) (not-is-null b))"},
      {"Not a Is Null", "(Not (is-null a))"},
      {"a In (Select b From T)", "(in a (select [b] from T))"},
      {"Exists (Select * From T)", "(exists (select [*] from T))"},
      {"Not Exists (Select * From T)", "(Not (exists (select [*] from T)))"},
      {"a > All (Select b From T)", "(>-all a (select [b] from T))"},
      {"a = Any (Select b From T)", "(=-any a (select [b] from T))"},
      {"a <> Some (Select b From T) And c", "(And (<>-any a (select [b] from T)) c)"},
      {"1 + (Select Max(b) From T)", "(+ 1L (value (select [(call Max b)] from T)))"},
  };
  for (const TreeCase& one : cases) EXPECT_EQ(TreeText(*ParseExpression(one.text)), one.tree) << one.text;
}

TEST(ParseExpression, NamesConstantsAndFunctions) {
  const TreeCase cases[] = {
      {"Competitions.ID", "Competitions.ID"},
      {"[My Table]![My Column]", "My Table.My Column"},
      {"T.Order", "T.Order"},
      {"`Order`", "Order"},
      {"Name & Date & Level & Top & Count", "(& (& (& (& Name Date) Level) Top) Count)"},
      {"Null", "Null"},
      {"True Or No", "(Or True False)"},
      {"Yes And Off", "(And True False)"},
      {"No.Column", "No.Column"},
      {"[No]", "No"},
      {"Left(a, 2) & Right(b, 1)", "(& (call Left a 2L) (call Right b 1L))"},
      {"Left$(a, 2)", "(call Left$ a 2L)"},
      {"Date()", "(call Date)"},
      {"Count(*)", "(call Count *)"},
      {"count( Distinct a )", "(call count distinct a)"},
      {"Sum(a * 2)", "(call Sum (* a 2L))"},
      {"IIf(a, 1, 2)", "(call IIf a 1L 2L)"},
      {"#5/3/2001# + .5", "(+ #2001-05-03# 0.5)"},
      {"=No", "False"},
      {"= 'EBU'", "'EBU'"},
      {"\"EBU\"", "'EBU'"},
  };
  for (const TreeCase& one : cases) EXPECT_EQ(TreeText(*ParseExpression(one.text)), one.tree) << one.text;
}

TEST(ParseExpression, FunctionsAreFoundOnce) {
  EXPECT_NE(ParseExpression("Len('a')")->function, nullptr);
  EXPECT_EQ(ParseExpression("Sum(a)")->function, nullptr);
}

TEST(ParseExpression, PositionsPointAtTheOperator) {
  const ExpressionPointer sum = ParseExpression("É + bc");
  EXPECT_EQ(sum->position, 3U);
  EXPECT_EQ(sum->arguments[1]->position, 5U);
}

TEST(ParseSelect, ListsAndPredicates) {
  const TreeCase cases[] = {
      {"Select 1", "(select [1L])"},
      {"select * from T;", "(select [*] from T)"},
      {"Select All a From T", "(select [a] from T)"},
      {"Select T.*, U.a As b, a + 1 As [c d] From T, U", "(select [T.*, U.a as b, (+ a 1L) as c d] from (cross T U))"},
      {"Select a As Order From T", "(select [a as Order] from T)"},
      {"Select Distinct a From T", "(select distinct [a] from T)"},
      {"Select DistinctRow a From T", "(select distinctrow [a] from T)"},
      {"Select Top 5 a From T", "(select top 5 [a] from T)"},
      {"Select Distinct Top 10 Percent a From T", "(select distinct top 10% [a] from T)"},
      {"Select Top From T", "(select [Top] from T)"},
      {"Select Top, Percent From T", "(select [Top, Percent] from T)"},
      {"Select Name, Date From [Order]", "(select [Name, Date] from Order)"},
      {"Select a Into N From T", "(select [a] into N from T)"},
      {"Select a From T With OwnerAccess Option", "(select [a] from T)"},
  };
  ExpectTrees(cases);
}

TEST(ParseSelect, SourcesJoinAsWritten) {
  const TreeCase cases[] = {
      {"Select * From T As a, U b, V", "(select [*] from (cross (cross T as a U as b) V))"},
      {"Select * From A Inner Join B On A.x = B.x", "(select [*] from (inner A B on (= A.x B.x)))"},
      {"Select * From A Join B On x = y", "(select [*] from (inner A B on (= x y)))"},
      {"Select * From A Left Join B On x = y Where z", "(select [*] from (left A B on (= x y)) where z)"},
      {"Select * From A Right Outer Join B b2 On x = Left(y, 1)",
       "(select [*] from (right A B as b2 on (= x (call Left y 1L))))"},
      {"Select * From (A Inner Join B On x = y) Left Join C On y = z",
       "(select [*] from (left (inner A B on (= x y)) C on (= y z)))"},
      {"Select * From A Inner Join (B Inner Join C On y = z) On x = y",
       "(select [*] from (inner A (inner B C on (= y z)) on (= x y)))"},
      {"Select * From A Inner Join B On x = y Inner Join C On y = z",
       "(select [*] from (inner (inner A B on (= x y)) C on (= y z)))"},
      {"Select * From A, B Inner Join C On y = z", "(select [*] from (cross A (inner B C on (= y z))))"},
      {"Select * From (Select a From T) As S, (Select b From U) V",
       "(select [*] from (cross (select [a] from T) as S (select [b] from U) as V))"},
      {"Select * From ((A))", "(select [*] from A)"},
      {"Select * From [Select]", "(select [*] from Select)"},
      {"Select * From Łódź ł", "(select [*] from Łódź as ł)"},
  };
  ExpectTrees(cases);
}

TEST(ParseSelect, ClausesInTheirOrder) {
  const TreeCase cases[] = {
      {"Select a, Count(*) From T Where b > 0 Group By a, c + 1 Having Count(*) > 1 Order By a Desc, b Asc, 3",
       "(select [a, (call Count *)] from T where (> b 0L) group [a, (+ c 1L)] having (> (call Count *) 1L) order [a "
       "desc, b, "
       "3L])"},
      {"Select a From T Union Select b From U Union All Select c From V Order By a",
       "(select [a] from T union (select [b] from U union-all (select [c] from V)) order [a])"},
      {"Select a From T Where b = 'John'Order By a", "(select [a] from T where (= b 'John') order [a])"},
      {"Select a From T Where b In (Select c From U Union Select d From V)",
       "(select [a] from T where (in b (select [c] from U union (select [d] from V))))"},
  };
  ExpectTrees(cases);
}

TEST(ParseChanges, InsertUpdateDelete) {
  const TreeCase cases[] = {
      {"Insert Into T Values (1, 'a', Null)", "(insert T values [1L, 'a', Null])"},
      {"Insert Into T (a, [b c], Order) Values (-1, Date(), 2+3)",
       "(insert T [a, b c, Order] values [-1L, (call Date), (+ 2L 3L)])"},
      {"Insert Into T Select * From U", "(insert T (select [*] from U))"},
      {"Insert Into T (a) Select b From U Where c", "(insert T [a] (select [b] from U where c))"},
      {"Update T Set a = 1, T.b = a + 1 Where c", "(update T [a := 1L, T.b := (+ a 1L)] where c)"},
      {"Update T Set a = b = c", "(update T [a := (= b c)])"},
      {"Update A Inner Join B On A.x = B.x Set A.y = B.y", "(update (inner A B on (= A.x B.x)) [A.y := B.y])"},
      {"Delete From T", "(delete from T)"},
      {"Delete * From T Where a", "(delete from T where a)"},
      {"Delete T.* From T Inner Join U On x = y", "(delete T from (inner T U on (= x y)))"},
      {"Delete T From T", "(delete T from T)"},
      {"Delete DistinctRow T.* From T, U", "(delete T from (cross T U))"},
  };
  ExpectTrees(cases);
}

TEST(ParseDefinitions, TablesColumnsIndexes) {
  const TreeCase cases[] = {
      {"Create Table T (a Long)", "(create T [a Long])"},
      {"Create Table T (a Counter Primary Key, b Text (50) Not Null, c Text Default 'x y' Unique, d Bit Default No)",
       "(create T [a Long auto, b Text(50) required, c Text(255) default <'x y'>, d Boolean default <No>] (index "
       "PrimaryKey [a] "
       "primary unique required) (index c [c] unique))"},
      {"Create Table T (a Long, b Long, Constraint K Primary Key (a, b Desc), Unique (b))",
       "(create T [a Long, b Long] (index K [a, b desc] primary unique required) (index b [b] unique))"},
      {"Create Table T (a Long Constraint K Unique, Primary Key (a))",
       "(create T [a Long] (index K [a] unique) (index PrimaryKey [a] primary unique required))"},
      {"Create Table T (a Long Unique Unique)", "(create T [a Long] (index a [a] unique) (index a1 [a] unique))"},
      {"Create Table T (a Long Default = 1 + 2 Not Null)", "(create T [a Long required default <1 + 2>])"},
      {"Create Table T (a Date Default Now() Null, b Memo With Compression, c Char(3) With Comp)",
       "(create T [a Date default <Now()>, b Memo, c Text(3)])"},
      {"Create Table T (Unique Long, Primary Text)", "(create T [Unique Long, Primary Text(255)])"},
      {"Create Table T (a Identity(1,1), b Counter (1))", "(create T [a Long auto, b Long auto])"},
      {"Drop Table T", "(drop-table T)"},
      {"Alter Table T Add Column a Text (20)", "(add-column T a Text(20))"},
      {"Alter Table T Add a Double Not Null", "(add-column T a Double required)"},
      {"Alter Table T Add Column a Long Primary Key",
       "(add-column T a Long (index PrimaryKey [a] primary unique required))"},
      {"Alter Table T Add Constraint K Unique (a, b)", "(create-index T (index K [a, b] unique))"},
      {"Alter Table T Add Primary Key (a)", "(create-index T (index PrimaryKey [a] primary unique required))"},
      {"Alter Table T Drop Column a", "(drop-column T a)"},
      {"Alter Table T Drop a", "(drop-column T a)"},
      {"Alter Table T Drop Constraint K", "(drop-constraint T K)"},
      {"Begin", "begin"},
      {"BEGIN TRANSACTION;", "begin"},
      {"Commit Work", "commit"},
      {"commit transaction", "commit"},
      {"Rollback", "rollback"},
      {"Create Index I On T (a)", "(create-index T (index I [a]))"},
      {"Create Unique Index I On T (a Desc, [b c] Asc) With Primary",
       "(create-index T (index I [a desc, b c] primary unique required))"},
      {"Create Index I On T (a) With Disallow Null", "(create-index T (index I [a] required))"},
      {"Create Index I On T (a) With Ignore Null", "(create-index T (index I [a] ignore-nulls))"},
      {"Alter Table T Add Constraint K Foreign Key (a, b) References U (c, d) On Delete Cascade On Update No Action",
       "(reference K T [a, b] to U [c, d] cascade-deletes)"},
      {"Alter Table T Add Column c Long References U On Update Cascade",
       "(add-column T c Long (reference  T [c] to U [] cascade-updates))"},
      {"Create Table T (a Long Constraint R References U (x), Foreign Key (a) References V)",
       "(create T [a Long] (reference R T [a] to U [x]) (reference  T [a] to V []))"},
      {"Alter Table T Alter Column a Text (5) Not Null Default 'x'",
       "(change-column T a Text(5) required default <'x'>)"},
      {"Drop Index I On T", "(drop-index T I)"},
  };
  ExpectTrees(cases);
}

TEST(ParseDefinitions, EveryTypeWordIsKnown) {
  const TreeCase cases[] = {
      {"Bit", "Boolean"},
      {"YesNo", "Boolean"},
      {"Boolean", "Boolean"},
      {"Logical", "Boolean"},
      {"Byte", "Byte"},
      {"TinyInt", "Byte"},
      {"Short", "Integer"},
      {"SmallInt", "Integer"},
      {"Integer2", "Integer"},
      {"Long", "Long"},
      {"Integer", "Long"},
      {"Int", "Long"},
      {"Integer4", "Long"},
      {"Counter", "Long auto"},
      {"AutoIncrement", "Long auto"},
      {"Identity", "Long auto"},
      {"Currency", "Currency"},
      {"Money", "Currency"},
      {"Single", "Single"},
      {"Real", "Single"},
      {"Float4", "Single"},
      {"Double", "Double"},
      {"Double Precision", "Double"},
      {"Float", "Double"},
      {"Number", "Double"},
      {"Float8", "Double"},
      {"Date", "Date"},
      {"Time", "Date"},
      {"DateTime", "Date"},
      {"Timestamp", "Date"},
      {"Text", "Text(255)"},
      {"Char (1)", "Text(1)"},
      {"VarChar(255)", "Text(255)"},
      {"String(10)", "Text(10)"},
      {"Memo", "Memo"},
      {"LongText", "Memo"},
      {"Note", "Memo"},
      {"LongChar", "Memo"},
      {"Binary(16)", "Binary(16)"},
      {"VarBinary", "Binary(510)"},
      {"LongBinary", "Ole"},
      {"OleObject", "Ole"},
      {"Image", "Ole"},
      {"Guid", "Guid"},
      {"UniqueIdentifier", "Guid"},
      {"Decimal", "Numeric(18.0)"},
      {"Numeric(10)", "Numeric(10.0)"},
      {"Decimal (28, 28)", "Numeric(28.28)"},
  };
  for (const TreeCase& one : cases) {
    EXPECT_EQ(TreeText(Parse("Create Table T (c " + std::string(one.text) + ")")),
              "(create T [c " + std::string(one.tree) + "])");
    EXPECT_EQ(TreeText(Parse("Alter Table T Add Column c " + std::string(one.text))),
              "(add-column T c " + std::string(one.tree) + ")");
  }
}

}  // namespace
}  // namespace tavi::access::sql
