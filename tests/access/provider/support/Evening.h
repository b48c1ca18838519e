#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "access/file/support/Random.h"
#include "platform/ado/Provider.h"

namespace tavi::access::test {

/// One step of an evening.
struct EveningStep {
  enum class Kind {
    Statement,  ///< `text` is run
    AddRow,     ///< a row with the name `text` is added to Members through a record set
    EditRow,    ///< the first row of Members gets the notes `text` through a record set
    Reopen,     ///< the connection is closed and opened again
  };
  Kind kind = Kind::Statement;
  std::string text;
};

/// A long and varied evening at the club, always the same for a seed: tables are made, altered and dropped, rows come
/// with texts of all lengths, grow, move and go, indexes split and shrink. Texts are made so that few rows fill many
/// pages. Some statements fail, as some do on every evening.
[[nodiscard]] std::vector<EveningStep> MakeEvening(std::uint32_t seed, std::size_t steps);

/// Runs a step that is no Reopen. True when it succeeded, false when the provider refused it.
bool RunStep(ado::Connection& connection, const EveningStep& step);

}  // namespace tavi::access::test
