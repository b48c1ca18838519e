#pragma once

#include <iosfwd>
#include <memory>
#include <string>

#include "facade/MembershipDatabase.h"
#include "host/text/Table.h"
#include "platform/Platform.h"

namespace tavi::host {

/// What every subcommand is given: where to read and write, how, which club, and the outside world.
struct Context {
  std::istream& in;
  std::ostream& out;
  std::ostream& error;
  OutputFormat format = OutputFormat::Table;
  bool inputIsTerminal = false;
  bool showProgress = false;
  std::string folder{};  ///< the club's folder or its file; empty: the one that the component finds
  std::shared_ptr<const Platform> platform{};

  /// Writes a result, and says when texts in it had to be kept from being formulas.
  void Write(const Table& table) const;

  /// A component object on the club's folder.
  [[nodiscard]] std::unique_ptr<MembershipDatabase> OpenClub() const;
  /// The folder in use, absolute.
  [[nodiscard]] std::string ClubFolder() const;
  /// The club's file in use.
  [[nodiscard]] std::string ClubFile() const;
  /// The file that `folder` names, be it a club's or not; else the club's.
  [[nodiscard]] std::string AccessFile() const;
};

/// Exit codes of the command.
inline constexpr int kSucceeded = 0;
inline constexpr int kFailed = 1;
inline constexpr int kWrongUse = 2;
/// What shells show for a program that was ended by SIGPIPE (128 and 13).
inline constexpr int kReaderHasEnded = 141;

}  // namespace tavi::host
