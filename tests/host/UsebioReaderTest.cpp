#include "host/results/UsebioReader.h"

#include <gtest/gtest.h>

#include "platform/Matchers.h"
#include "platform/values/Error.h"

namespace tavi::host {
namespace {

using testing::HasSubstr;

std::string PlayerElement(const std::string& name, const std::string& more = "") {
  return "<PLAYER><PLAYER_NAME>" + name + "</PLAYER_NAME>" + more + "</PLAYER>\n";
}

std::string PairElement(const std::string& number, const std::string& result, const std::string& players) {
  return "<PAIR><PAIR_NUMBER>" + number + "</PAIR_NUMBER>\n" + result + "\n" + players + "</PAIR>\n";
}

std::string File(const std::string& inside, const std::string& type = "PAIRS", const std::string& date = "03/09/2024") {
  return "<USEBIO Version=\"1.2\">\n<EVENT EVENT_TYPE=\"" + type +
         "\">\n<EVENT_DESCRIPTION>Tuesday</EVENT_DESCRIPTION>\n<DATE>" + date + "</DATE>\n" + inside +
         "</EVENT>\n</USEBIO>\n";
}

const std::string kFirst = PairElement("1", "<PERCENTAGE>55.5</PERCENTAGE><PLACE>1</PLACE>",
                                       PlayerElement("Ann Lee") + PlayerElement("Bob Ray"));
const std::string kSecond = PairElement("2", "<PERCENTAGE>44.5</PERCENTAGE><PLACE>2</PLACE>",
                                        PlayerElement("Cat Fox") + PlayerElement("Dan Orr"));

std::string Participants(const std::string& inside) {
  return "<PARTICIPANTS>\n" + inside + "</PARTICIPANTS>\n";
}

std::string UsebioRefusal(const std::string& text) {
  try {
    ReadUsebio(text, "week.xml");
  } catch (const Error& error) {
    return error.Description();
  }
  return "it was read";
}

TEST(UsebioReader, ReadsNameDateAndResultsOfAPairsEvent) {
  const std::vector<Event> events = ReadUsebio(File(Participants(kFirst + kSecond)), "week.xml");
  ASSERT_EQ(events.size(), 1U);
  EXPECT_EQ(events[0].name, "Tuesday");
  EXPECT_EQ(events[0].date.Iso(), "2024-09-03");
  EXPECT_EQ(events[0].kind, Event::Kind::Pairs);
  ASSERT_EQ(events[0].contestants.size(), 2U);
  EXPECT_DOUBLE_EQ(*events[0].contestants[0].actualPercentage, 55.5);
  EXPECT_EQ(events[0].contestants[0].players[1].name, "Bob Ray");
  EXPECT_TRUE(events[0].HasPercentages());
  EXPECT_EQ(events[0].remarks, std::vector<std::string>());
}

TEST(UsebioReader, TakesTheEqualsSignOffAPlaceAndKeepsThatItWasATie) {
  const std::string tied = PairElement("1", "<PERCENTAGE>50</PERCENTAGE><PLACE>3=</PLACE>",
                                       PlayerElement("Ann Lee") + PlayerElement("Bob Ray"));
  const Contestant contestant = ReadUsebio(File(Participants(tied)), "week.xml")[0].contestants[0];
  EXPECT_EQ(contestant.place, 3);
  EXPECT_TRUE(contestant.tied);
}

TEST(UsebioReader, CountsMasterPointsInHundredths) {
  const std::string award =
      "<PERCENTAGE>50</PERCENTAGE><MASTER_POINTS><MASTER_POINTS_AWARDED>24</MASTER_POINTS_AWARDED>"
      "<MASTER_POINT_TYPE>Green</MASTER_POINT_TYPE></MASTER_POINTS>";
  const Contestant contestant =
      ReadUsebio(File(Participants(PairElement("1", award, PlayerElement("Ann Lee") + PlayerElement("Bob Ray")))),
                 "week.xml")[0]
          .contestants[0];
  ASSERT_EQ(contestant.awards.size(), 1U);
  EXPECT_DOUBLE_EQ(contestant.awards[0].points, 0.24);
  EXPECT_EQ(contestant.awards[0].colour, ColourCode("GREEN"));
}

TEST(UsebioReader, RefusesMasterPointsThatAreNoWholeNumber) {
  for (const char* written : {"0.24", "-24", "many", "24000000000"}) {
    const std::string award = "<PERCENTAGE>50</PERCENTAGE><MASTER_POINTS><MASTER_POINTS_AWARDED>" +
                              std::string(written) + "</MASTER_POINTS_AWARDED></MASTER_POINTS>";
    EXPECT_THAT(
        UsebioRefusal(File(Participants(PairElement("1", award, PlayerElement("Ann Lee") + PlayerElement("Bob Ray"))))),
        HasSubstr("MASTER_POINTS_AWARDED is \"" + std::string(written) + "\"; expected a whole number"));
  }
}

TEST(UsebioReader, DropsLeadingZerosAndFigureNumbersThatMeanNone) {
  const std::string numbers = PlayerElement("Ann Lee", "<NATIONAL_ID_NUMBER>00990183</NATIONAL_ID_NUMBER>") +
                              PlayerElement("Bob Ray", "<NATIONAL_ID_NUMBER>88888888</NATIONAL_ID_NUMBER>");
  const Contestant contestant =
      ReadUsebio(File(Participants(PairElement("1", "<PERCENTAGE>50</PERCENTAGE>", numbers))), "week.xml")[0]
          .contestants[0];
  EXPECT_EQ(contestant.players[0].nationalNumber, "990183");
  EXPECT_EQ(contestant.players[1].nationalNumber, "");
}

TEST(UsebioReader, ReadsIsoDates) {
  EXPECT_EQ(ReadUsebio(File(Participants(kFirst), "PAIRS", "2025-01-07"), "week.xml")[0].date.Iso(), "2025-01-07");
}

TEST(UsebioReader, ReadsLatinTextThatCallsItselfIso8859) {
  const std::string text =
      "<?xml version=\"1.0\" encoding=\"iso-8859-1\"?>\n" +
      File(Participants(PairElement("1", "<PERCENTAGE>50</PERCENTAGE>",
                                    PlayerElement("Zo\xEB O\x92Hara") + PlayerElement("Bob Ray"))));
  EXPECT_EQ(ReadUsebio(text, "week.xml")[0].contestants[0].players[0].name, "Zoë O’Hara");
}

TEST(UsebioReader, TakesAddedHandicapsOutAgainWhenTheTravellersTellThatTheyAreIn) {
  const std::string players = PlayerElement("Ann Lee") + PlayerElement("Bob Ray");
  const std::string others = PlayerElement("Cat Fox") + PlayerElement("Dan Orr");
  const std::string line =
      "<BOARD><BOARD_NUMBER>1</BOARD_NUMBER><TRAVELLER_LINE><NS_PAIR_NUMBER>1</NS_PAIR_NUMBER><EW_PAIR_NUMBER>2</"
      "EW_PAIR_NUMBER>"
      "<NS_MATCH_POINTS>6</NS_MATCH_POINTS><EW_MATCH_POINTS>4</EW_MATCH_POINTS></TRAVELLER_LINE></BOARD>";
  const std::string inside =
      Participants(PairElement("1", "<PERCENTAGE>57</PERCENTAGE><HANDICAP>-3</HANDICAP>", players) +
                   PairElement("2", "<PERCENTAGE>43</PERCENTAGE><HANDICAP>3</HANDICAP>", others)) +
      line;
  const Event event = ReadUsebio(File(inside), "week.xml")[0];
  EXPECT_DOUBLE_EQ(*event.contestants[0].actualPercentage, 60.0);
  EXPECT_DOUBLE_EQ(*event.contestants[1].actualPercentage, 40.0);
  EXPECT_FALSE(event.remarks.empty());
}

TEST(UsebioReader, TellsTwoEventsOfOneNameAndDayApart) {
  std::string text = File(Participants(kFirst));
  const std::string event = text.substr(text.find("<EVENT "), text.find("</EVENT>") + 9 - text.find("<EVENT "));
  text.insert(text.find("</USEBIO>"), event);
  const std::vector<Event> events = ReadUsebio(text, "week.xml");
  ASSERT_EQ(events.size(), 2U);
  EXPECT_EQ(events[1].name, "Tuesday (2)");
}

TEST(UsebioReader, StoresTheResultOfAPairOfThreeForTheFirstTwoAndSaysSo) {
  const std::string three = PlayerElement("Ann Lee") + PlayerElement("Bob Ray") + PlayerElement("Cat Fox");
  const Event event =
      ReadUsebio(File(Participants(PairElement("1", "<PERCENTAGE>50</PERCENTAGE>", three))), "week.xml")[0];
  ASSERT_EQ(event.remarks.size(), 1U);
  EXPECT_THAT(event.remarks[0], HasSubstr("first two, Ann Lee and Bob Ray"));
}

TEST(UsebioReader, RefusesAFileInPlainWordsThatNameTheLine) {
  const std::string noPercentage =
      PairElement("3", "<PLACE>3</PLACE>", PlayerElement("Eve Poe") + PlayerElement("Fay Ash"));
  const std::string tooMuch =
      PairElement("3", "<PERCENTAGE>140.00</PERCENTAGE>", PlayerElement("Eve Poe") + PlayerElement("Fay Ash"));
  const std::string comma =
      PairElement("3", "<PERCENTAGE>52,38</PERCENTAGE>", PlayerElement("Eve Poe") + PlayerElement("Fay Ash"));
  EXPECT_THAT(UsebioRefusal(File(Participants(kFirst + noPercentage))),
              HasSubstr("week.xml:11: number 3 has no PERCENTAGE"));
  EXPECT_THAT(UsebioRefusal(File(Participants(kFirst + tooMuch))),
              HasSubstr("week.xml:12: PERCENTAGE is 140.00; expected 0 to 100"));
  EXPECT_THAT(UsebioRefusal(File(Participants(kFirst + comma))),
              HasSubstr("PERCENTAGE is \"52,38\"; expected a number"));
  EXPECT_THAT(UsebioRefusal(File(Participants(kFirst + kFirst))), HasSubstr("number 1 is given to two contestants"));
  EXPECT_THAT(UsebioRefusal(File(Participants(kFirst), "PAIRS", "2024-13-40")), HasSubstr("DATE is \"2024-13-40\""));
  EXPECT_THAT(UsebioRefusal(File("")), HasSubstr("lists nobody"));
  EXPECT_THAT(UsebioRefusal("<RESULTS/>"), HasSubstr("the root element is RESULTS; expected USEBIO"));
  EXPECT_THAT(UsebioRefusal(""), HasSubstr("week.xml:1: the file is empty"));
  EXPECT_THAT(UsebioRefusal(File(Participants(kFirst)).substr(0, 120)), HasSubstr("week.xml:"));
}

TEST(UsebioReader, RefusesTravellersOfPairsThatAreNotListed) {
  const std::string line =
      "<BOARD><TRAVELLER_LINE><NS_PAIR_NUMBER>1</NS_PAIR_NUMBER><EW_PAIR_NUMBER>7</EW_PAIR_NUMBER></TRAVELLER_LINE></"
      "BOARD>";
  EXPECT_THAT(UsebioRefusal(File(Participants(kFirst + kSecond) + line)), HasSubstr("names pair 7 sitting EW"));
}

TEST(UsebioReader, RefusesBytesThatAreNotInTheDeclaredEncoding) {
  const std::string text =
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n" + File(Participants(kFirst + "<!-- \xEB -->"));
  EXPECT_THAT(UsebioRefusal(text), HasSubstr("says that it is UTF-8"));
}

TEST(UsebioReader, TakesTheFirstAndLastCharactersOfEachLengthAndRefusesWhatIsNone) {
  const std::string declaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
  for (const char* character : {"\xC2\xA0", "\xDF\xBF", "\xE0\xA0\x80", "\xED\x9F\xBF", "\xEE\x80\x80",
                                "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF"}) {
    const std::string text = declaration + File(Participants(kFirst + "<!-- " + character + " -->"));
    EXPECT_EQ(ReadUsebio(text, "week.xml").size(), 1U);
  }
  // Longer than need be, halves of a pair of UTF-16, beyond the last character, cut off.
  for (const char* bytes : {"\xC0\xAF", "\xC1\xBF", "\xE0\x9F\xBF", "\xED\xA0\x80", "\xED\xBF\xBF", "\xF0\x8F\xBF\xBF",
                            "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xE2\x82", "\x80"}) {
    const std::string text = declaration + File(Participants(kFirst + "<!-- " + bytes + " -->"));
    EXPECT_THAT(UsebioRefusal(text), HasSubstr("says that it is UTF-8"));
  }
}

TEST(UsebioReader, SaysWhichEncodingIsClaimedAndWhatTheBytesAreInstead) {
  const std::string file = File(Participants(kFirst));
  const auto declared = [&](const std::string& name) {
    return UsebioRefusal("<?xml version=\"1.0\" encoding=\"" + name + "\"?>\n" + file);
  };
  EXPECT_THAT(declared("utf-16"),
              HasSubstr("week.xml:1: the file says that it is UTF-16, but its characters are of one"));
  EXPECT_THAT(declared("UTF-16LE"), HasSubstr("the file says that it is UTF-16LE"));
  EXPECT_THAT(declared("koi8-r"), HasSubstr("the encoding \"koi8-r\" is not read here"));
  EXPECT_THAT(UsebioRefusal("<?xml version=\"1.0\" encoding=\"us-ascii\"?>\n<!-- \xEB -->" + file),
              HasSubstr("week.xml:2: the file says that it is US-ASCII, but a byte here is not"));
  EXPECT_THAT(UsebioRefusal("\xEF\xBB\xBF<!-- \xEB -->" + file),
              HasSubstr("says by its byte-order mark that it is UTF-8"));
  EXPECT_THAT(UsebioRefusal(std::string("\xFF\xFE\0\0<\0\0\0", 8)), HasSubstr("the file is UTF-32"));
  EXPECT_THAT(UsebioRefusal("\xFF\xFE<"), HasSubstr("ends in the middle of a character"));
}

TEST(UsebioReader, ReadsUtf16WithoutAByteOrderMark) {
  const std::string text = "<?xml version=\"1.0\" encoding=\"utf-16\"?>\n" + File(Participants(kFirst));
  std::string little;
  std::string big;
  for (const char c : text) {
    little += {c, '\0'};
    big += {'\0', c};
  }
  EXPECT_EQ(ReadUsebio(little, "week.xml")[0].name, "Tuesday");
  EXPECT_EQ(ReadUsebio(big, "week.xml")[0].name, "Tuesday");
}

TEST(UsebioReader, TakesPercentagesOfAnyLength) {
  const std::string players = PlayerElement("Ann Lee") + PlayerElement("Bob Ray");
  const auto percentage = [&](const std::string& written) {
    return *ReadUsebio(File(Participants(PairElement("1", "<PERCENTAGE>" + written + "</PERCENTAGE>", players))),
                       "week.xml")[0]
                .contestants[0]
                .actualPercentage;
  };
  EXPECT_DOUBLE_EQ(percentage("52.380952380952380952380952"), 52.380952380952381);
  EXPECT_DOUBLE_EQ(percentage("33." + std::string(500, '3')), 100.0 / 3.0);
  EXPECT_DOUBLE_EQ(percentage(std::string(400, '0') + "50"), 50.0);
  EXPECT_THAT(UsebioRefusal(File(
                  Participants(PairElement("1", "<PERCENTAGE>" + std::string(400, '9') + "</PERCENTAGE>", players)))),
              HasSubstr("expected a number"));
}

TEST(UsebioReader, RefusesEventTypesThatItDoesNotKnow) {
  EXPECT_THAT(UsebioRefusal(File(Participants(kFirst), "CHESS")), HasSubstr("EVENT_TYPE is \"CHESS\""));
  EXPECT_THAT(UsebioRefusal(File(Participants(kFirst), "MP_PAIRS_X")), HasSubstr("EVENT_TYPE is \"MP_PAIRS_X\""));
  for (const char* known : {"", "pairs", "MP_PAIRS", "SWISS_PAIRS_CROSS_IMPS", "BUTLER_IMPS", "AGGREGATE"}) {
    EXPECT_EQ(ReadUsebio(File(Participants(kFirst), known), "week.xml")[0].kind, Event::Kind::Pairs) << known;
  }
}

TEST(UsebioReader, RefusesControlCharacters) {
  const auto named = [](const std::string& name) {
    return File(
        Participants(PairElement("1", "<PERCENTAGE>50</PERCENTAGE>", PlayerElement(name) + PlayerElement("Bob Ray"))));
  };
  EXPECT_THAT(UsebioRefusal(named("Ann\x1b[31m Lee")), HasSubstr("the control character 0x1b"));
  EXPECT_THAT(UsebioRefusal(named("Ann &#7;Lee")), HasSubstr("the control character 0x07"));
  EXPECT_THAT(UsebioRefusal(named("Ann\xC2\x9bLee")), HasSubstr("the control character 0x9b"));
  EXPECT_THAT(UsebioRefusal(named("Ann\x7fLee")), HasSubstr("the control character 0x7f"));
  EXPECT_THAT(UsebioRefusal("<USEBIO>\n<EVENT EVENT_TYPE=\"PA&#27;IRS\"/></USEBIO>"),
              HasSubstr("week.xml:2: the control"));
  EXPECT_EQ(ReadUsebio(named("Ann\tLee\r\n"), "week.xml")[0].contestants[0].players[0].name, "Ann Lee");
}

TEST(UsebioReader, RefusesEntitiesWithoutExpandingOrOpeningThem) {
  const std::string text = "<!DOCTYPE USEBIO [<!ENTITY x SYSTEM \"secret.txt\">]>\n" + File(Participants(kFirst));
  EXPECT_THAT(UsebioRefusal(text), HasSubstr("defines entities"));
}

TEST(UsebioReader, RefusesElementsThatLieTooDeep) {
  std::string deep;
  for (int i = 0; i < 100000; ++i) deep += "<a>";
  EXPECT_THAT(UsebioRefusal(File(deep)), HasSubstr("more than 64 deep"));
}

TEST(UsebioReader, AnswersOrRefusesWhateverBytesAreChanged) {
  const std::string sound = File(Participants(kFirst + kSecond));
  for (std::size_t at = 0; at < sound.size(); ++at) {
    for (const char byte : {'<', '>', '&', '\0', '\xFF', '/', '"'}) {
      std::string hurt = sound;
      hurt[at] = byte;
      EXPECT_NO_FATAL_FAILURE(UsebioRefusal(hurt));
    }
    EXPECT_NO_FATAL_FAILURE(UsebioRefusal(sound.substr(0, at)));
  }
}

}  // namespace
}  // namespace tavi::host
