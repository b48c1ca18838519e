#pragma once

#include <string>
#include <vector>

#include "host/commands/Context.h"
#include "host/scoring/EveningScorer.h"

namespace tavi::host {

/// What became of one result file.
struct ScoredFile {
  std::string path;
  std::vector<ScoredEvent> events;
  bool begun = false;   ///< whether storing has begun
  bool stored = false;  ///< whether its events are in the club's file, or in the log beside it
  std::string error;    ///< why they are not, or why the file could not be closed; else empty
};

/// Reads, checks and stores result files, each completely or not at all, with a progress bar on a terminal.
std::vector<ScoredFile> ScoreFiles(const Context& context, MembershipDatabase& club,
                                   const std::vector<std::string>& paths);
/// Writes a ranking with actual and net scores, handicaps before and after, and master points.
void WriteRanking(const Context& context, const ScoredEvent& scored);

/// `tavi score FILE...`: one file shows its ranking, several a line each. Fails when any file was refused, or the
/// club's file not closed; the good ones are stored all the same.
int Score(const Context& context, const std::vector<std::string>& paths);

}  // namespace tavi::host
