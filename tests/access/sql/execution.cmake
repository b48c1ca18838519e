# Running statements: its own program, as it works on files and is compared with SQLite.
find_package(SQLite3 REQUIRED)
tavi_test(test_access_sql_execution
  SOURCES
    AccessPathTest.cpp
    ChangeTest.cpp
    ClubStatementTest.cpp
    DefinitionTest.cpp
    ExecutionErrorTest.cpp
    KeysetResultTest.cpp
    SelectTest.cpp
    SqliteHistoryTest.cpp
    StatementCacheTest.cpp
    support/SqlFile.cpp
  USES tavi_access_sql test_catalog_support SQLite::SQLite3)
