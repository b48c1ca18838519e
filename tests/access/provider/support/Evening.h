#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "access/file/support/MemoryFileSystem.h"
#include "platform/ConnectionTo.h"
#include "platform/Platform.h"
#include "platform/ado/Provider.h"

namespace tavi::access::test {

/// One step of an evening.
struct EveningStep {
  enum class Kind {
    Statement,    ///< `text` is run
    AddRow,       ///< a row with the name `text` is added to Members through a record set
    EditRow,      ///< the first row of Members gets the notes `text` through a record set
    Duplicate,    ///< `text` is run in a transaction, which goes on when a unique index has refused it in the middle
    Transaction,  ///< `parts` are done as one: all when `isKept`, or none; none also when one of them is refused
    Reopen,       ///< the connection is closed and opened again
  };
  Kind kind = Kind::Statement;
  std::string text;
  std::vector<EveningStep> parts = {};
  bool isKept = true;
};

/// A long and varied evening at the club, always the same for a seed: tables are made, altered and dropped, rows come
/// with texts of all lengths, grow, move and go, indexes split and shrink, several things are done as one. Texts are
/// made so that few rows fill many pages. Some statements fail, as some do on every evening.
[[nodiscard]] std::vector<EveningStep> MakeEvening(std::uint32_t seed, std::size_t steps);

/// Runs a step that is no Reopen. True when it succeeded, false when it was rolled back or the provider refused it;
/// `refusal` then becomes the error's description.
bool RunStep(ado::Connection& connection, const EveningStep& step, std::string* refusal = nullptr);

/// The clock of the evenings: it always stands at noon.
class EveningClock final : public Clock {
 public:
  [[nodiscard]] Date Now() const override { return Date{45000.5}; }
};

/// A checksum of all that can be seen in the file (DigestOf) after each number of steps, from none on.
[[nodiscard]] std::vector<std::uint64_t> RehearseEvening(const std::vector<EveningStep>& steps);

/// A new file system in memory with an empty database under the path kEveningPath.
[[nodiscard]] std::shared_ptr<MemoryFileSystem> NewEveningFile();
inline constexpr char kEveningPath[] = "club.mdb";
inline const std::string kEveningSource = ConnectionTo("club.mdb");

}  // namespace tavi::access::test
