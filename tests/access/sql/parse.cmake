list(APPEND TAVI_ACCESS_SQL_TESTS
  ClubStatementTreesTest.cpp
  EvaluatorTest.cpp
  ExpressionText.cpp
  FormatTest.cpp
  FunctionTest.cpp
  LexerTest.cpp
  LikeTest.cpp
  LogicExhaustiveTest.cpp
  ParserErrorTest.cpp
  ParserTest.cpp
  ParserRobustnessTest.cpp
  TreeText.cpp)
