#include "host/input/PairFile.h"

#include "host/input/Cells.h"
#include "host/input/KnownColumns.h"

namespace tavi::host {
namespace {

/// Known because other programs write it; a club's file has no place for it.
constexpr const char* kSince = "since";

const std::vector<std::string>& PairColumns() {
  static const std::vector<std::string> names = {"club_number_1", "club_number_2", "ebu_number_1",
                                                 "ebu_number_2",  "player_1",      "player_2",
                                                 "known_as",      "active",        kSince};
  return names;
}

PairPlayer PlayerOf(const CsvFile& file, const CsvFile::Row& row, const std::string& place) {
  PairPlayer player;
  player.number = NumberInCell(file, row, "club_number_" + place);
  player.nationalNumber = NationalNumberInCell(file, row, "ebu_number_" + place);
  player.name = file.Field(row, "player_" + place);
  if (!player.number && player.nationalNumber.empty()) {
    file.Refuse(row, "player " + place + " of the pair has no number; expected club_number_" + place + ", ebu_number_" +
                         place + " or both");
  }
  return player;
}

}  // namespace

PairFile ReadPairFile(const std::string& path, bool passOverUnknown) {
  const CsvFile file = CsvFile::Read(path);
  PairFile read;
  read.name = path;
  read.passedOver = UnknownColumns(file, PairColumns(), passOverUnknown);
  if (file.HasColumn(kSince)) read.passedOver.emplace_back(kSince);
  for (const std::string place : {"1", "2"}) {
    if (file.HasColumn("club_number_" + place) || file.HasColumn("ebu_number_" + place)) continue;
    file.RefuseHeader("the header has neither club_number_" + place + " nor ebu_number_" + place +
                      "; expected one of them, to know the player by");
  }
  for (const CsvFile::Row& row : file.Rows()) {
    PairLine pair;
    pair.line = row.line;
    pair.players = {PlayerOf(file, row, "1"), PlayerOf(file, row, "2")};
    if (file.HasColumn("known_as")) pair.knownAs = file.Field(row, "known_as");
    pair.active = YesOrNoInCell(file, row, "active");
    read.pairs.push_back(std::move(pair));
  }
  return read;
}

}  // namespace tavi::host
