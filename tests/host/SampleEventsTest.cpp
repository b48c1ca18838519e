#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <map>

#include "SourceDirectory.h"
#include "host/input/Csv.h"
#include "host/results/UsebioReader.h"
#include "host/results/Xml.h"
#include "platform/Matchers.h"
#include "platform/values/Error.h"

// Reads every sample event, where there are sample files, and compares with the figures listed for them.
namespace tavi::host {
namespace {

using testing::HasSubstr;

const std::filesystem::path kEvents = std::filesystem::path(TAVI_SAMPLE_FILES) / "events";

std::string Names(const Contestant& contestant) {
  std::string names;
  for (const EventPlayer& player : contestant.players) names += (names.empty() ? "" : " / ") + player.name;
  return names;
}

class SampleEvents : public ::testing::TestWithParam<std::string> {
 protected:
  void SetUp() override {
    if (!std::filesystem::exists(kEvents)) GTEST_SKIP() << "the sample files are not beside this checkout";
  }
};

TEST_P(SampleEvents, AreReadWithTheFiguresListedForThem) {
  const std::filesystem::path folder = kEvents / GetParam();
  const CsvFile list = CsvFile::Read((folder / "expected.csv").string());
  std::map<std::string, std::vector<Event>> read;
  std::map<std::string, std::size_t> used;
  for (const CsvFile::Row& row : list.Rows()) {
    const std::string file = list.Field(row, "file");
    if (!read.contains(file)) read[file] = ReadUsebioFile((folder / file).string());
    std::vector<const Contestant*> all;
    for (const Event& event : read[file]) {
      for (const Contestant& contestant : event.contestants) all.push_back(&contestant);
    }
    ASSERT_LT(used[file], all.size()) << file;
    const std::string names = TidyText(list.Field(row, "names"));
    const auto found = std::find_if(all.begin(), all.end(), [&](const Contestant* c) {
      const auto wanted = list.Field(row, "percentage");
      const bool percentage =
          wanted.empty() ? !c->printedPercentage
                         : c->printedPercentage && std::abs(*c->printedPercentage - std::stod(wanted)) < 0.0051;
      return Names(*c) == names && percentage;
    });
    ASSERT_NE(found, all.end()) << file << ": " << names;
    ++used[file];
    const std::string where = file + ": " + names;
    EXPECT_EQ(std::to_string((*found)->place.value_or(0)), list.Field(row, "place")) << where;
    if ((*found)->total) {
      EXPECT_NEAR(std::stod(list.Field(row, "total")), *(*found)->total, 0.0051) << where;
    }
    const std::string raw = list.Field(row, "raw_percentage");
    if (!raw.empty()) {
      EXPECT_NEAR(std::stod(raw), (*found)->actualPercentage.value_or(-1), 0.0051) << where;
    }
    const std::string points = list.Field(row, "master_points");
    double awarded = 0;
    for (const Award& award : (*found)->awards) awarded += award.points * 100;
    EXPECT_NEAR(points.empty() ? 0 : std::stod(points), awarded, 1e-6) << where;
  }
  for (const auto& [file, events] : read) {
    std::size_t count = 0;
    for (const Event& event : events) count += event.contestants.size();
    EXPECT_EQ(count, used[file]) << file;
  }
}

INSTANTIATE_TEST_SUITE_P(Folders, SampleEvents, ::testing::Values("", "season"), [](const auto& tested) {
  return tested.param.empty() ? std::string("single") : tested.param;
});

TEST(DamagedSampleEvents, AreAllRefusedAndGiveNothingAway) {
  if (!std::filesystem::exists(kEvents)) GTEST_SKIP() << "the sample files are not beside this checkout";
  for (const auto& entry : std::filesystem::directory_iterator(kEvents / "bad")) {
    if (entry.path().extension() != ".xml") continue;
    try {
      ReadUsebioFile(entry.path().string());
      ADD_FAILURE() << entry.path() << " was read";
    } catch (const Error& error) {
      EXPECT_THAT(error.Description(), HasSubstr(entry.path().filename().string() + ":"));
      EXPECT_THAT(error.Description(), HasSubstr("expected")) << entry.path();
      EXPECT_LT(error.Description().size(), 400U);
    }
  }
}

}  // namespace
}  // namespace tavi::host
