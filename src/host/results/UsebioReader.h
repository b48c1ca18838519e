#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/results/Event.h"

namespace tavi::host {

/// Reads a USEBIO result file (any version, by what is in it) completely before anything is stored. Raises
/// InvalidArgument with a message "FILE:LINE: what was found and what was expected" for a file that is malformed,
/// contradicts itself (numbers twice, travellers of pairs that are not listed, some percentages missing) or holds
/// values out of range. No document type, entity or address in the file is followed.
std::vector<Event> ReadUsebioFile(const std::string& path);

/// The same for bytes already read; `fileName` is for messages.
std::vector<Event> ReadUsebio(std::string_view bytes, const std::string& fileName);

}  // namespace tavi::host
