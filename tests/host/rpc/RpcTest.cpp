#include <gtest/gtest.h>

#include <fstream>
#include <random>
#include <sstream>

#include "composition/Composition.h"
#include "host/rpc/Operations.h"
#include "host/rpc/RequestText.h"
#include "host/rpc/Server.h"
#include "host/support/Command.h"

namespace tavi::host {
namespace {

constexpr int kParseError = -32700;
constexpr int kInvalidRequest = -32600;
constexpr int kMethodNotFound = -32601;
constexpr int kInvalidParams = -32602;
constexpr int kComponentError = -2147221504;

/// A club and the command that serves it; each call of Lines is a caller of its own.
class Rpc : public ::testing::Test {
 protected:
  Rpc() {
    const Outcome made = folder_.Run({"new", "--name", "Acol"});
    EXPECT_EQ(made.code, 0) << made.error;
  }

  /// The replies to some lines, a JSON value each.
  [[nodiscard]] std::vector<Json> Lines(const std::vector<std::string>& lines) const {
    std::string input;
    for (const std::string& line : lines) input += line + "\n";
    const Outcome outcome = folder_.Run({"rpc"}, input);
    EXPECT_EQ(outcome.code, 0) << outcome.error;
    std::vector<Json> replies;
    std::istringstream out(outcome.out);
    for (std::string line; std::getline(out, line);) replies.push_back(Json::Parse(line));
    return replies;
  }

  /// A request with the next id.
  std::string Request(const std::string& method, const Json& params = Json::Array(), int object = 1) {
    Json request = {{"jsonrpc", "2.0"}, {"id", ++lastId_}, {"method", method}, {"params", params}};
    if (object != 1) request["object"] = object;
    return request.Compact();
  }
  /// What one call gives on an object of its own.
  Json Result(const std::string& method, const Json& params = Json::Array()) {
    return Lines({Request(method, params)}).at(0).at("result");
  }
  int ErrorCode(const std::string& method, const Json& params = Json::Array()) {
    return static_cast<int>(Lines({Request(method, params)}).at(0).at("error").at("code").Number());
  }

  CommandFolder folder_;
  int lastId_ = 0;
};

TEST_F(Rpc, ArgumentsGoByNameOrByPositionAndOptionalOnesMayBeLeftOut) {
  EXPECT_EQ(Result("AddNewMember", {{"FirstName", "Anna"}, {"Initials", "B"}, {"LastName", "Łukasz"}}),
            Json({{"return", 1}}));
  EXPECT_EQ(Result("AddNewMember", {"Carl", "", "O'Neil", 47.5}), Json({{"return", 2}}));
  EXPECT_EQ(Result("GetHandicap", {2}).at("return"), 47.5);
  EXPECT_EQ(Result("GetHandicap", {1}).at("return"), 50.0);
  EXPECT_EQ(Result("GetMemberName", {{"NameFormat", 0}, {"MemberNo", 99}}).at("return"), "");
  EXPECT_EQ(Result("GetMemberName", {{"NameFormat", 0}, {"MemberNo", 99}, {"DefaultName", "?"}}).at("return"), "?");
  EXPECT_EQ(Result("GetMemberName", {{"NameFormat", 0}, {"MemberNo", 99}, {"DefaultName", nullptr}}).at("return"), "");
}

TEST_F(Rpc, ArgumentsThatArePassedBackStandBesideTheResult) {
  EXPECT_EQ(Result("AddNewMember", {"Anna", "B", "Smith"}).at("return"), 1);
  EXPECT_EQ(Result("SetEBUNumber", {1, "123"}), Json({{"return", nullptr}}));
  EXPECT_EQ(Result("GetEBUNoAndNames", {{"MemberNo", 1}}),
            Json({{"return", "123"}, {"FirstName", "Anna"}, {"Initials", "B"}, {"LastName", "Smith"}}));
  EXPECT_EQ(Result("IsRegularPair", {1, 2}), Json({{"return", false}, {"PairAlias", ""}, {"ParScore", 50.0}}));
  const Json first = {{"return", true}, {"Number", 1}, {"Name", "Anna B Smith"}, {"ParScore", 50.0}};
  EXPECT_EQ(Result("GetFirstMember", {{"NameFormat", 0}}), first);
  EXPECT_EQ(Result("GetFirstMember", {0}), first) << "by position without those that are passed back";
  EXPECT_EQ(Result("GetFirstMember", {0, "", 0, 0}), first) << "and with them";
  EXPECT_EQ(Result("GetFirstPartnership", {{"NameFormat", 0}, {"ParScore", 12.5}}).at("ParScore"), 12.5);
}

TEST_F(Rpc, PropertiesAreReadAndWritten) {
  EXPECT_EQ(Result("get_ClubName").at("return"), "Acol");
  EXPECT_EQ(Result("put_ClubName", {"New Acol"}), Json({{"return", nullptr}}));
  EXPECT_EQ(Result("ClubName").at("return"), "New Acol") << "the bare name reads";
  EXPECT_EQ(Result("put_ClubName", {{"value", "Third"}}), Json({{"return", nullptr}}));
  EXPECT_EQ(Result("WasClubEverCalled", {{"ClubName", "Acol"}}).at("return"), true);
  EXPECT_EQ(Result("get_DatabaseFolder").at("return"), folder_.Club());
  EXPECT_EQ(Result("get_DatabaseExists").at("return"), true);
  const auto replies = Lines({Request("put_IncludeInactiveMembers", {true}), Request("get_IncludeInactiveMembers")});
  EXPECT_EQ(replies.at(1).at("result").at("return"), true);
  EXPECT_EQ(Result("AddNewMember", {"Anna", "", "Smith"}).at("return"), 1);
  EXPECT_EQ(Result("put_PlayersStratum", {{"PlayerID", 1}, {"NewStratum", 3}}), Json({{"return", nullptr}}));
  EXPECT_EQ(Result("get_PlayersStratum", {1}).at("return"), 3);
}

TEST_F(Rpc, SettingsAreAnObjectWithItsProperties) {
  const Json standard = {{"MaxWeeks", 0},
                         {"MaxResults", 0},
                         {"RegularPairMultiplier", 1.0},
                         {"RegularPairAdd", 0.0},
                         {"UnknownPlayerHandicap", 50.0},
                         {"Disabled", false},
                         {"SamePartnerWeighting", 50},
                         {"IncludesRegularPairAdjustment", false}};
  EXPECT_EQ(Result("get_HandicalcOptions").at("return"), standard);
  EXPECT_EQ(Result("HandiCalcSettings.SetDefaults").at("return"), standard);
  EXPECT_EQ(Result("put_HandicalcOptions",
                   Json::Array({Json({{"MaxWeeks", 26}, {"SamePartnerWeighting", 300}, {"RegularPairAdd", -2.5}})})),
            Json({{"return", nullptr}}));
  const Json stored = Result("get_HandicalcOptions").at("return");
  EXPECT_EQ(stored.at("MaxWeeks"), 26);
  EXPECT_EQ(stored.at("SamePartnerWeighting"), 100);
  EXPECT_EQ(stored.at("IncludesRegularPairAdjustment"), true);
  EXPECT_EQ(Result("HandiCalcSettings.AdjustRegularPair", {stored, 60}).at("return"), 57.5);
  EXPECT_EQ(Result("HandiCalcSettings.Clone", Json::Array({stored})).at("return"), stored);
  EXPECT_EQ(ErrorCode("put_HandicalcOptions", {{"value", {{"MaxWeek", 1}}}}), kInvalidParams);
  EXPECT_EQ(ErrorCode("put_HandicalcOptions", {{"value", {{"IncludesRegularPairAdjustment", "x"}}}}), kInvalidParams);
  EXPECT_EQ(Result("HandiCalcSettings.Clone", {{"settings", {{"UnknownPlayerHandicap", nullptr}}}}).at("return"),
            standard)
      << "null is left out";
  EXPECT_EQ(ErrorCode("put_HandicalcOptions", {{"value", {{"MaxWeeks", 40000}}}}), kInvalidParams);
  EXPECT_EQ(ErrorCode("put_HandicalcOptions", {{"value", nullptr}}), static_cast<int>(0x800A005B));
}

TEST_F(Rpc, HandicapsAndListsAreJson) {
  EXPECT_EQ(Result("AddNewMember", {"John", "", "Smith", 44}).at("return"), 1);
  EXPECT_EQ(Result("CalculateHandicaps", {1, -1, "", "2000-01-01", true}).at("return"),
            Json({{"PartnershipHandicap", 50.0}, {"Player1Handicap", 50.0}, {"Player2Handicap", 50.0}}));
  EXPECT_EQ(Result("FindNearestMatches", {"John Smyth"}), Json({{"return", {1}}, {"LowerBound", 1}}));
  EXPECT_EQ(Result("FindNearestMatches", {"Zebedee"}), Json({{"return", {0}}, {"LowerBound", 0}}));
  EXPECT_EQ(Result("get_AllEmailAddresses").at("return"), Json::Array());
  EXPECT_EQ(
      folder_.Run({"sql", "Insert into EBUMembershipList (EBUNumber, FirstName, LastName) Values ('7', 'A', 'B')"})
          .code,
      0);
  EXPECT_EQ(Result("SearchEBUList", {"", "B"}).at("return").at(0).at("EBUNumber"), "7");
}

TEST_F(Rpc, DatesAreIsoTexts) {
  Json params = {{"CompName", "Monday"},
                 {"CompDate", "2026-01-05T19:30:00"},
                 {"Individual", false},
                 {"ScoringMethod", 1},
                 {"ButlerType", 0},
                 {"IsSwiss", false},
                 {"QualiFinal", false},
                 {"MasterPointsLevel", 1},
                 {"NumberOfTables", 5},
                 {"NumberOfWinners", 1},
                 {"Gov", "EBU"},
                 {"MasterPointsColour", 0},
                 {"IncludeInHandicaps", true}};
  EXPECT_EQ(Result("SetCompetitionEx", params).at("return"), 1);
  for (const char* date : {"2026-01-32", "5 Jan 2026", "", "2026-1-5x"}) {
    params["CompDate"] = date;
    EXPECT_EQ(ErrorCode("SetCompetitionEx", params), kInvalidParams) << date;
  }
  params["CompDate"] = 46027;
  EXPECT_EQ(ErrorCode("SetCompetitionEx", params), kInvalidParams);
}

TEST_F(Rpc, ErrorsOfTheComponentCarryNumberSourceAndText) {
  EXPECT_EQ(Result("AddNewMember", {"John", "", "Smith"}).at("return"), 1);
  EXPECT_EQ(Lines({Request("AddNewMember", {"John", "", "Smith"})}).at(0).at("error"),
            Json({{"code", kComponentError},
                  {"message", "There is already amember called John Smith"},
                  {"data", "cDatabase"}}));
}

TEST_F(Rpc, WrongRequestsAreRefusedAndTheSessionGoesOn) {
  const std::vector<std::pair<std::string, int>> cases = {
      {"nonsense", kParseError},
      {R"({"jsonrpc":"2.0","id":1,"method":"GetHandicap")", kParseError},
      {"{\"jsonrpc\":\"2.0\",\"id\":1,\"method\":\"FindMember\",\"params\":[\"\xC3\"]}", kParseError},
      {R"({"jsonrpc":"2.0","id":1,"method":"FindMember","params":["\ud800"]})", kParseError},
      {R"({"jsonrpc":"2.0","id":1,"method":"GetHandicap","params":[1e999]})", kInvalidParams},
      {R"({"jsonrpc":"2.0","id":1,"method":"FindMember","params":[-1e999]})", kInvalidParams},
      {R"({"jsonrpc":"2.0","id":1,"method":"put_ClubName","params":1e999})", kInvalidParams},
      {R"({"jsonrpc":"2.0","id":1e999,"method":"EndGet"})", kInvalidRequest},
      {R"({"jsonrpc":"2.0","id":1,"method":"GetHandicap","params":[NaN]})", kParseError},
      {R"({"jsonrpc":"2.0","id":1,"method":"GetHandicap","params":[1e999]} 1e999 ")", kParseError},
      {R"({"jsonrpc":"2.0","id":1,"method":"put_HandicalcOptions"})", kInvalidParams},
      {"17", kInvalidRequest},
      {"[]", kInvalidRequest},
      {R"({"jsonrpc":"1.0","id":1,"method":"EndGet"})", kInvalidRequest},
      {R"({"id":1,"method":"EndGet"})", kInvalidRequest},
      {R"({"jsonrpc":"2.0","id":1})", kInvalidRequest},
      {R"({"jsonrpc":"2.0","id":1,"method":7})", kInvalidRequest},
      {R"({"jsonrpc":"2.0","id":{},"method":"EndGet"})", kInvalidRequest},
      {R"({"jsonrpc":"2.0","id":1,"method":"EndGet","params":7})", kInvalidRequest},
      {R"({"jsonrpc":"2.0","id":1,"method":"endget"})", kMethodNotFound},
      {R"({"jsonrpc":"2.0","id":1,"method":""})", kMethodNotFound},
      {R"({"jsonrpc":"2.0","id":1,"method":"GetHandicap"})", kInvalidParams},
      {R"({"jsonrpc":"2.0","id":1,"method":"GetHandicap","params":[1,2]})", kInvalidParams},
      {R"({"jsonrpc":"2.0","id":1,"method":"GetHandicap","params":{"Member":1}})", kInvalidParams},
      {R"({"jsonrpc":"2.0","id":1,"method":"GetHandicap","params":["1"]})", kInvalidParams},
      {R"({"jsonrpc":"2.0","id":1,"method":"GetHandicap","params":[true]})", kInvalidParams},
      {R"({"jsonrpc":"2.0","id":1,"method":"GetHandicap","params":[1.5]})", kInvalidParams},
      {R"({"jsonrpc":"2.0","id":1,"method":"GetHandicap","params":[2147483648]})", kInvalidParams},
      {R"({"jsonrpc":"2.0","id":1,"method":"GetHandicap","params":[99999999999999999999999]})", kInvalidParams},
      {R"({"jsonrpc":"2.0","id":1,"method":"GetMemberName","params":[1,32768]})", kInvalidParams},
      {R"({"jsonrpc":"2.0","id":1,"method":"GetMemberName","params":[1,-32769]})", kInvalidParams},
      {R"({"jsonrpc":"2.0","id":1,"method":"FindMember","params":[7]})", kInvalidParams},
      {R"({"jsonrpc":"2.0","id":1,"method":"FindMember","params":["x",1]})", kInvalidParams},
      {R"({"jsonrpc":"2.0","id":1,"method":"EndGet","object":2})", kInvalidParams},
      {R"({"jsonrpc":"2.0","id":1,"method":"EndGet","object":"1"})", kInvalidParams},
  };
  std::vector<std::string> lines;
  for (const auto& [line, code] : cases) lines.push_back(line);
  lines.push_back(Request("get_ClubName"));
  const std::vector<Json> replies = Lines(lines);
  ASSERT_EQ(replies.size(), cases.size() + 1);
  for (std::size_t i = 0; i < cases.size(); ++i) {
    EXPECT_EQ(replies[i].at("error").at("code"), cases[i].second) << cases[i].first;
    EXPECT_FALSE(replies[i].at("error").at("message").Text().empty());
  }
  EXPECT_EQ(replies.back().at("result").at("return"), "Acol");
}

TEST_F(Rpc, ANumberThatIsTooLargeCostsOnlyItsOwnRequestOfABatch) {
  const auto replies = Lines({R"([{"jsonrpc":"2.0","id":5,"method":"FindMember","params":["1e999"]},)"
                              R"({"jsonrpc":"2.0","id":6,"method":"GetHandicap","params":[1e999]}])"});
  ASSERT_EQ(replies.at(0).size(), 2U);
  EXPECT_EQ(replies[0][0].at("result").at("return"), -1) << "a text may spell such a number";
  EXPECT_EQ(replies[0][1].at("error").at("code"), kInvalidParams);
  EXPECT_EQ(replies[0][1].at("id"), 6);
}

TEST_F(Rpc, AResultThatJsonHasNoNumberForIsAnOverflow) {
  EXPECT_EQ(ErrorCode("HandiCalcSettings.AdjustRegularPair", {{{"RegularPairMultiplier", 1e308}}, 1e308}),
            static_cast<int>(0x800A0006));
}

TEST_F(Rpc, ObjectsOfVeryManyMembersAndEndlessLinesAreRefused) {
  std::string many = R"({"jsonrpc":"2.0","id":1,"method":"EndGet")";
  for (int i = 0; i < 1000; ++i) many += ",\"k" + std::to_string(i) + "\":0";
  const auto replies = Lines({many + "}", std::string(kLongestLine + 1, 'x'), Request("get_ClubName")});
  ASSERT_EQ(replies.size(), 3U);
  EXPECT_EQ(replies[0].at("error").at("code"), kInvalidRequest);
  EXPECT_EQ(replies[1].at("error").at("code"), kParseError);
  EXPECT_EQ(replies[2].at("result").at("return"), "Acol");
}

TEST_F(Rpc, WholeNumbersMayBeWrittenWithAPoint) {
  EXPECT_EQ(Result("GetHandicap", {1.0}).at("return"), 50.0);
  EXPECT_EQ(Result("GetHandicap", {-2147483648.0}).at("return"), 50.0);
}

TEST_F(Rpc, NotificationsAreCarriedOutWithoutAReply) {
  const auto replies = Lines({R"({"jsonrpc":"2.0","method":"AddNewMember","params":["A","","B"]})",
                              R"({"jsonrpc":"2.0","method":"Nothing"})", R"({"jsonrpc":"2.0","method":"GetHandicap"})",
                              "", "  \r", Request("IsValidMemberID", {1})});
  ASSERT_EQ(replies.size(), 1U);
  EXPECT_EQ(replies[0].at("result").at("return"), true);
}

TEST_F(Rpc, ABatchIsAnsweredByAnArrayInItsOrder) {
  const auto replies = Lines({"[" + Request("AddNewMember", {"A", "", "B"}) +
                                  R"(,{"jsonrpc":"2.0","method":"EndGet"},5,)" + Request("IsValidMemberID", {1}) + "]",
                              R"([{"jsonrpc":"2.0","method":"EndGet"}])"});
  ASSERT_EQ(replies.size(), 1U) << "a batch of notifications has no reply";
  ASSERT_EQ(replies[0].size(), 3U);
  EXPECT_EQ(replies[0][0].at("result").at("return"), 1);
  EXPECT_EQ(replies[0][1].at("error").at("code"), kInvalidRequest);
  EXPECT_EQ(replies[0][2].at("result").at("return"), true);
}

TEST_F(Rpc, AnIdOfAnyKindComesBack) {
  for (const char* id : {"\"x\"", "0", "-1", "1.5", "null", "\"\""}) {
    const auto replies = Lines({std::string(R"({"jsonrpc":"2.0","method":"EndGet","id":)") + id + "}"});
    ASSERT_EQ(replies.size(), 1U) << id;
    EXPECT_EQ(replies[0].at("id"), Json::Parse(id));
  }
}

TEST_F(Rpc, ObjectsAreMadeMeantAndReleased) {
  const auto replies = Lines({Request("new"), Request("put_IncludeInactiveMembers", {true}, 2),
                              Request("get_IncludeInactiveMembers"), Request("get_IncludeInactiveMembers", {}, 2),
                              Request("get_DatabaseFolder", {}, 2), Request("release", {}, 2),
                              Request("get_IncludeInactiveMembers", {}, 2), Request("new"), Request("new", {1})});
  EXPECT_EQ(replies[0].at("result"), Json({{"return", 2}}));
  EXPECT_EQ(replies[2].at("result").at("return"), false);
  EXPECT_EQ(replies[3].at("result").at("return"), true);
  EXPECT_EQ(replies[4].at("result").at("return"), folder_.Club());
  EXPECT_EQ(replies[6].at("error").at("code"), kInvalidParams);
  EXPECT_EQ(replies[7].at("result").at("return"), 3) << "numbers are not used again";
  EXPECT_EQ(replies[8].at("error").at("code"), kInvalidParams);
}

TEST_F(Rpc, MessageBoxesArriveAsNotifications) {
  std::ostringstream out;
  MessageBoxNotifications(out).Show(MessageBoxIcon::Critical, "Title", "Line 1\r\nLine \"2\"");
  EXPECT_EQ(Json::Parse(out.str()),
            Json({{"jsonrpc", "2.0"},
                  {"method", "MessageBox"},
                  {"params", {{"icon", "Critical"}, {"title", "Title"}, {"text", "Line 1\r\nLine \"2\""}}}}));
  EXPECT_EQ(out.str().find('\n'), out.str().size() - 1) << "one line";
}

TEST_F(Rpc, AnUpgradeThatFailsIsToldByAMessageBox) {
  EXPECT_EQ(folder_.Run({"sql", "Drop Table Settings"}).code, 0);
  EXPECT_EQ(folder_.Run({"sql", "Create Table Settings (Odd Long)"}).code, 0);
  EXPECT_EQ(folder_.Run({"sql", "Alter Table Members Drop Column Notes"}).code, 0);
  // The table's lifetime of columns is used up, so that the missing one cannot be added.
  std::string statements;
  for (int i = 0; i < 255; ++i) {
    statements += "Alter Table Members Add Column Z Long; Alter Table Members Drop Column Z;\n";
  }
  EXPECT_NE(folder_.Run({"sql"}, statements).code, 0);
  const auto replies = Lines({Request("get_ClubName")});
  ASSERT_GE(replies.size(), 2U);
  EXPECT_EQ(replies[0].at("method"), "MessageBox");
  EXPECT_FALSE(replies[0].at("params").at("text").Text().empty());
}

TEST_F(Rpc, EnormousTextsAndControlCharactersAreTaken) {
  const std::string big(1 << 20, 'x');
  const auto replies = Lines({Request("FindMember", {big}), Request("FindMember", {std::string("a\0b\n", 4)}),
                              Request("GetMemberName", {{"MemberNo", 5}, {"NameFormat", 0}, {"DefaultName", big}})});
  ASSERT_EQ(replies.size(), 3U);
  EXPECT_EQ(replies[2].at("result").at("return"), big);
}

TEST_F(Rpc, DeeplyNestedRequestsAreRefused) {
  const std::string deep(200000, '[');
  const std::string closed = deep + std::string(deep.size(), ']');
  const auto replies = Lines({R"({"jsonrpc":"2.0","id":1,"method":"GetHandicap","params":)" + closed + "}", deep,
                              closed, Request("get_ClubName")});
  ASSERT_EQ(replies.size(), 4U);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(replies[static_cast<std::size_t>(i)].at("error").at("code"), kInvalidRequest);
  EXPECT_EQ(replies[3].at("result").at("return"), "Acol");
}

TEST_F(Rpc, LinesThatWereGarbledAtRandomAreAnsweredAndTheSessionGoesOn) {
  const std::vector<std::string> seeds = {
      Request("AddNewMember", {"Anna", "", "Smith", 47.5}),
      Request("GetMemberName", {{"MemberNo", 1}, {"NameFormat", 4}, {"DefaultName", "?"}}),
      Request("put_HandicalcOptions", {{"value", {{"MaxWeeks", 26}, {"Disabled", true}}}}),
      "[" + Request("EndGet") + "," + Request("FindNearestMatches", {"Smith"}) + "]",
      Request("CalculateHandicaps", {1, 2, "x", "2026-01-05", false})};
  std::mt19937 random(20);
  const auto pick = [&](std::size_t below) { return static_cast<std::size_t>(random()) % below; };
  std::vector<std::string> lines;
  for (int i = 0; i < 1500; ++i) {
    std::string line = seeds[pick(seeds.size())];
    for (std::size_t change = pick(4) + 1; change > 0; --change) {
      const std::size_t place = pick(line.size());
      const char byte = pick(3) == 0 ? static_cast<char>(random()) : "{}[]\",:0-9e.tfn\\u"[pick(17)];
      if (pick(3) == 0)
        line.erase(place, pick(5));
      else if (pick(2) == 0)
        line.insert(place, 1, byte);
      else
        line[place] = byte;
      if (line.empty()) line = "x";
    }
    for (char& byte : line) byte = byte == '\n' ? ' ' : byte;
    lines.push_back(line);
  }
  lines.push_back(R"({"jsonrpc":"2.0","id":"last","method":"get_DatabaseExists"})");
  const auto replies = Lines(lines);
  EXPECT_GT(replies.size(), lines.size() / 2);
  EXPECT_EQ(replies.back().at("id"), "last");
}

/// The memory that this process holds, in kilobytes; 0 where the system does not tell.
long ResidentKilobytes() {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with("VmRSS:")) return std::stol(line.substr(6));
  }
  return 0;
}

TEST_F(Rpc, ManyRequestsDoNotMakeItGrow) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  GTEST_SKIP() << "sanitizers keep freed memory";
#endif
#ifdef _WIN32
  GTEST_SKIP() << "the figures at hand are those of the emulator, if there are any";
#endif
  if (ResidentKilobytes() == 0) GTEST_SKIP() << "this system does not tell how much memory a process holds";
  constexpr int kRounds = 2500;
  constexpr long kMayGrow = 4096;
  EXPECT_EQ(Result("AddNewMember", {"Anna", "", "Smith"}).at("return"), 1);
  std::string round;
  for (const std::string& line :
       {Request("GetMemberName", {1, 0}), Request("GetHandicap", {1}), Request("IsValidMemberID", {7}),
        Request("get_HandicalcOptions"), Request("SetHandicap", {1, 50.5}), Request("GetHandicap", {"x"}),
        "[" + Request("Nothing") + "," + Request("get_ClubName") + "]", std::string("no JSON")}) {
    round += line + "\n";
  }
  // The first rounds fill what is kept on purpose: open pages and planned statements.
  auto platform = MakePlatform({Date::FromCivil(2026, 1, 15)});
  Session session([&] {
    auto club = std::make_unique<MembershipDatabase>(platform);
    club->SetDatabaseFolder(folder_.Club());
    return club;
  });
  long before = 0;
  for (int i = 0; i < kRounds; ++i) {
    std::istringstream in(round);
    std::ostringstream out;
    Server(session, out).Serve(in);
    const std::string replies = out.str();
    ASSERT_EQ(std::count(replies.begin(), replies.end(), '\n'), 8);
    if (i == kRounds / 5) before = ResidentKilobytes();
  }
  EXPECT_LT(ResidentKilobytes() - before, kMayGrow);
}

TEST_F(Rpc, OperationsAreListedWithTheirArgumentsTypesAndResults) {
  const Json listed = Result("operations").at("return");
  EXPECT_EQ(listed.size(), AllOperations().size());
  const auto operation = [&](const std::string& name) {
    for (const Json& entry : listed) {
      if (entry.at("name") == name) return entry;
    }
    return Json();
  };
  EXPECT_EQ(operation("GetNameAndEBUNumber"), Json::Parse(R"({"name": "GetNameAndEBUNumber", "arguments": [
                {"name": "MemberNo", "type": "32-bit"},
                {"name": "NameFormat", "type": "16-bit"},
                {"name": "EBUNumber", "type": "text", "passedBack": true, "optional": true},
                {"name": "DefaultName", "type": "text", "optional": true}], "returns": "text"})"));
  EXPECT_EQ(operation("put_DatabaseFolder"),
            Json::Parse(R"({"name": "put_DatabaseFolder", "arguments": [{"name": "folder", "type": "text"}],
                "returns": "nothing"})"));
  EXPECT_EQ(operation("FindNearestMatches").at("returns"), "list of 32-bit");
  EXPECT_EQ(operation("SearchEBUList").at("returns"), "list of EBUMembershipDetails");
  EXPECT_EQ(operation("HandiCalcSettings.AdjustRegularPair"),
            Json::Parse(R"({"name": "HandiCalcSettings.AdjustRegularPair", "arguments": [
                {"name": "settings", "type": "HandiCalcSettings"},
                {"name": "GrossHandicap", "type": "double"}], "returns": "double"})"));
  EXPECT_EQ(
      operation("HandiCalcSettings.SetDefaults"),
      Json::Parse(R"({"name": "HandiCalcSettings.SetDefaults", "arguments": [], "returns": "HandiCalcSettings"})"));
  EXPECT_TRUE(operation("HandiCalcSettings.get_MaxWeeks").IsNull()) << "it is a member of the settings' object";
}

}  // namespace
}  // namespace tavi::host
