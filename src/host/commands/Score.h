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
  bool begun = false;  ///< whether storing has begun
  std::string error;   ///< why it was not stored; empty when it was
};

/// Reads, checks and stores result files, each completely or not at all, with a progress bar on a terminal.
std::vector<ScoredFile> ScoreFiles(const Context& context, MembershipDatabase& club,
                                   const std::vector<std::string>& paths);
/// Writes a ranking with actual and net scores, handicaps before and after, and master points.
void WriteRanking(const Context& context, const ScoredEvent& scored);

/// `tavi score FILE...`: one file shows its ranking, several a line each. Fails when any file was refused; the good
/// ones are stored all the same.
int Score(const Context& context, const std::vector<std::string>& paths);

}  // namespace tavi::host
