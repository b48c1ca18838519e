#pragma once

#include <string>

#include "host/commands/Context.h"

namespace tavi::host {

/// `tavi sample --from FOLDER`: makes a sample club in a new folder (sample-club, sample-club-2, ... in the current
/// one, unless --db names one), brings in the members.csv and pairs.csv of FOLDER, scores all result files of its
/// folder evenings in the order of their names, and shows the last evening's ranking and where the file is.
int MakeSample(Context context, const std::string& from);

}  // namespace tavi::host
