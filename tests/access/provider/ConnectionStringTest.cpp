#include "access/provider/AccessProvider.h"

#include <gtest/gtest.h>

#include "platform/values/Error.h"

namespace tavi::access {
namespace {

TEST(ConnectionString, NamesIgnoreCaseAndBlanks) {
  EXPECT_EQ(ParseConnectionString("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=C:\\Club\\a b.mdb").dataSource,
            "C:\\Club\\a b.mdb");
  EXPECT_EQ(ParseConnectionString(" data source = x.mdb ; PROVIDER=microsoft.ace.oledb.12.0;").dataSource, "x.mdb");
}

TEST(ConnectionString, ValuesMayBeQuoted) {
  EXPECT_EQ(ParseConnectionString("Data Source=\"a;b.mdb\";Mode=Read").dataSource, "a;b.mdb");
  EXPECT_TRUE(ParseConnectionString("Data Source='a;b.mdb';Mode=Read").readOnly);
  EXPECT_FALSE(ParseConnectionString("Data Source=a.mdb;Mode=ReadWrite").readOnly);
  EXPECT_EQ(ParseConnectionString("Data Source=\"a\"\";Data Source='b'\"\"\";Mode=Read").dataSource,
            "a\";Data Source='b'\"");
  EXPECT_TRUE(ParseConnectionString("Data Source='it''s';Mode=Read").readOnly);
  EXPECT_THROW(ParseConnectionString("Data Source=\"a\"\""), Error);
}

TEST(ConnectionString, AsksForTheFlushOfEachStatement) {
  EXPECT_EQ(ParseConnectionString("Data Source=a.mdb; flush = each").flush, FlushTime::EachStatement);
  EXPECT_EQ(ParseConnectionString("Data Source=a.mdb;Flush=Soon").flush, FlushTime::Soon);
  EXPECT_EQ(ParseConnectionString("Data Source=a.mdb").flush, FlushTime::Soon);
}

TEST(ConnectionString, WhatCannotBeOpenedIsRefused) {
  EXPECT_THROW(ParseConnectionString(""), Error);
  EXPECT_THROW(ParseConnectionString("Provider=Microsoft.Jet.OLEDB.4.0"), Error);
  EXPECT_THROW(ParseConnectionString("Provider=SQLOLEDB;Data Source=x"), Error);
  EXPECT_THROW(ParseConnectionString("Data Source='x"), Error);
  EXPECT_THROW(ParseConnectionString("rubbish"), Error);
}

}  // namespace
}  // namespace tavi::access
