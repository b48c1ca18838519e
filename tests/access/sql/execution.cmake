# Running statements: its own program, as it works on files and is compared with SQLite where a library of that is
# packaged, which for Windows it is not.
if(NOT WIN32)
  find_package(SQLite3)
  if(SQLite3_FOUND)
    set(sqlite_test SqliteHistoryTest.cpp)
    set(sqlite SQLite::SQLite3)
  else()
    # Noted as a test that was not run.
    tavi_check(SqliteHistory NEEDS libsqlite3-dev COMMAND false)
  endif()
endif()
tavi_test(test_access_sql_execution
  SOURCES
    AccessPathTest.cpp
    CancelTest.cpp
    ChangeTest.cpp
    ClubStatementTest.cpp
    DefinitionTest.cpp
    ExecutionErrorTest.cpp
    KeysetResultTest.cpp
    SelectTest.cpp
    StatementCacheTest.cpp
    TransactionTest.cpp
    support/SqlFile.cpp
    ${sqlite_test}
  USES tavi_access_sql_run test_catalog_support ${sqlite})
