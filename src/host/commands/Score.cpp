#include "host/commands/Score.h"

#include <algorithm>
#include <iostream>
#include <numeric>

#include "host/input/FilePatterns.h"
#include "host/json/Json.h"
#include "host/results/UsebioReader.h"
#include "host/text/Terminal.h"
#include "platform/values/Error.h"

// `tavi score`: each result file is read, checked and matched with the members as a whole, then stored as a whole. A
// file that is refused does not keep the others from being stored. The club's file is closed after each, so that an
// evening is in the file itself, and not only in its log, before the next one is begun.
namespace tavi::host {
namespace {

constexpr int kPercentagePlaces = 2;

/// Handicaps and master points have two decimals as well.
Cell Percentage(const std::optional<double>& value) {
  return value ? Cell(Decimals{*value, kPercentagePlaces}) : Cell();
}

double TotalAwards(const Contestant& contestant) {
  return std::accumulate(contestant.awards.begin(), contestant.awards.end(), 0.0,
                         [](double sum, const Award& award) { return sum + award.points; });
}

/// The columns depend on the event: sessions and directions where there are several, scores where there are no
/// percentages, handicaps where the event counts for them.
Table RankingTable(const ScoredEvent& scored) {
  const Event& event = scored.event;
  std::vector<std::string> columns = {"Place", "Number"};
  if (event.sessions > 1) columns.insert(columns.begin(), "Session");
  if (event.winners == 2) columns.emplace_back("Direction");
  const bool percentages = event.HasPercentages();
  for (const char* name : {"Players", percentages ? "Actual" : "Score"}) columns.emplace_back(name);
  if (scored.countsForHandicaps) {
    for (const char* name : {"Net", "Handicap before", "Handicap after"}) columns.emplace_back(name);
  }
  columns.emplace_back("Master points");
  Table table(columns);
  for (const ScoredContestant& entry : scored.contestants) {
    const Contestant& contestant = entry.contestant;
    std::vector<Cell> row;
    if (event.sessions > 1) row.emplace_back(std::int64_t{contestant.session});
    row.push_back(contestant.place ? Cell(std::to_string(*contestant.place) + (contestant.tied ? "=" : "")) : Cell());
    // "B7": the number with its section, as tables in a club have it.
    row.emplace_back((contestant.section.empty() ? "" : contestant.section) + contestant.number);
    if (event.winners == 2) row.emplace_back(contestant.direction);
    row.emplace_back(entry.name);
    row.push_back(Percentage(percentages ? contestant.actualPercentage : contestant.total));
    if (scored.countsForHandicaps) {
      row.push_back(Percentage(entry.net));
      row.push_back(Percentage(entry.handicapBefore));
      row.push_back(Percentage(entry.handicapAfter));
    }
    const double awards = TotalAwards(contestant);
    row.push_back(awards > 0.0 ? Percentage(awards) : Cell());
    table.Add(std::move(row));
  }
  return table;
}

/// Everything of a file is prepared before anything of it is stored: an event that is refused refuses them all. What
/// was reached is left in `file`, also when an error passes on.
void ScoreOne(MembershipDatabase& club, MemberDirectory& directory, ScoredFile& file) {
  EveningScorer scorer(club, directory);
  std::vector<ScoredEvent> prepared;
  for (Event& event : ReadUsebioFile(file.path)) prepared.push_back(scorer.Prepare(std::move(event), file.path));
  file.begun = true;
  scorer.Store(prepared);
  file.stored = true;
  file.events = std::move(prepared);
}

/// Closes the club's file after a result file, which writes what its log holds.
/// An evening whose file could not be closed is stored all the same, in the log; both have to be said, or somebody
/// would look for the full disk too late, or enter the evening twice.
void CloseAfter(MembershipDatabase& club, ScoredFile& file) {
  try {
    club.CloseDatabase();
  } catch (const Error& error) {
    if (!file.error.empty()) return;  // the first error is the one to report
    file.error = file.path + (file.stored ? ": it was stored, but the club's file could not be closed: " : ": ") +
                 error.Description();
  }
}

void WriteRemarks(const Context& context, const ScoredEvent& scored) {
  for (const std::string& remark : scored.event.remarks) context.error << "note: " << Printable(remark) << '\n';
  if (!scored.event.HasPercentages()) {
    // A result is a percentage in the club's file; see EveningScorer.
    context.error << "note: " << Printable(scored.event.name)
                  << " has no percentages: its master points are stored, its results are not\n";
  }
}

/// Several files: a line for each event, and one for each file that was refused.
void WriteSummary(const Context& context, const std::vector<ScoredFile>& files) {
  Table table({"File", "Date", "Event", "Contestants", "Stored"});
  for (const ScoredFile& file : files) {
    for (const ScoredEvent& scored : file.events) {
      table.Add({file.path, scored.event.date.Iso(), scored.event.name,
                 static_cast<std::int64_t>(scored.contestants.size()), true});
    }
    if (!file.stored) table.Add({file.path, Cell(), Cell(), Cell(), false});
  }
  context.Write(table);
}

void WriteJson(const Context& context, const std::vector<ScoredFile>& files) {
  Json document = Json::Array();
  for (const ScoredFile& file : files) {
    Json entry = {{"file", file.path}, {"stored", file.stored}};
    if (!file.error.empty()) entry["error"] = file.error;
    // Of a file that was refused there are none.
    entry["events"] = Json::Array();
    for (const ScoredEvent& scored : file.events) {
      entry["events"].Add({{"competition", scored.competition},
                           {"name", scored.event.name},
                           {"date", scored.event.date.Iso()},
                           {"ranking", Json::Parse(RankingTable(scored).Json())},
                           {"notes", scored.event.remarks}});
    }
    document.Add(std::move(entry));
  }
  context.out << PrintableJson(document.Indented()) << '\n';
}

}  // namespace

std::vector<ScoredFile> ScoreFiles(const Context& context, MembershipDatabase& club,
                                   const std::vector<std::string>& paths) {
  // One for all files: the members are walked once.
  MemberDirectory directory(club);
  ProgressBar progress(context.error, context.showProgress && paths.size() > 1, paths.size());
  std::vector<ScoredFile> files;
  for (const std::string& path : paths) {
    // Shown before the work on a file, as that is what one waits for.
    progress.Show(files.size(), path);
    // Filled as far as the work comes; an error leaves in it what it has reached.
    ScoredFile file;
    file.path = path;
    try {
      ScoreOne(club, directory, file);
    } catch (const Error& error) {
      file.error = file.begun ? file.path + ": nothing of it was stored: " + error.Description() : error.Description();
    }
    CloseAfter(club, file);
    files.push_back(std::move(file));
  }
  return files;
}

void WriteRanking(const Context& context, const ScoredEvent& scored) {
  if (context.format == OutputFormat::Table) {
    context.out << Printable(scored.event.name) << ", " << scored.event.date.DayMonthYear() << "\n\n";
  }
  context.Write(RankingTable(scored));
}

int Score(const Context& context, const std::vector<std::string>& paths) {
  const std::unique_ptr<MembershipDatabase> club = context.OpenClub();
  const std::vector<ScoredFile> files = ScoreFiles(context, *club, FilesNamed(paths));
  for (const ScoredFile& file : files) {
    for (const ScoredEvent& scored : file.events) WriteRemarks(context, scored);
  }
  if (context.format == OutputFormat::JsonText) {
    WriteJson(context, files);
  } else if (files.size() == 1) {
    for (const ScoredEvent& scored : files.front().events) WriteRanking(context, scored);
  } else {
    WriteSummary(context, files);
  }
  int exitCode = kSucceeded;
  for (const ScoredFile& file : files) {
    // One file that was refused makes the command fail, though the others are stored.
    if (file.error.empty()) continue;
    context.error << "tavi: " << PrintableLines(file.error) << '\n';
    exitCode = kFailed;
  }
  const auto refused = std::ranges::count(files, false, &ScoredFile::stored);
  if (refused > 0) {
    context.error << "tavi: not stored: " << refused << " of " << files.size()
                  << (files.size() == 1 ? " file\n" : " files\n");
  }
  return exitCode;
}

}  // namespace tavi::host
