#pragma once

#include <memory>
#include <string>

#include "access/catalog/Database.h"
#include "host/commands/Context.h"
#include "host/commands/WorkFolder.h"

namespace tavi::host {

/// What a new club's file says of the club.
struct ClubIdentity {
  std::string name;
  std::string nationalNumber;  ///< of the club, at the governing body; may be empty
};

/// A club's file while it is made. It lies in the private work folder beside the place that it takes when it is whole:
/// until then, whatever happens, a file in that place is as it was, and where there was none there is none.
class ClubDraft {
 public:
  /// For the club of `context`, which outlives this object. A file that lies in the place is kept from all other users
  /// until the end; raises ProviderFailure when one of them has it open, and what WorkFolder raises.
  explicit ClubDraft(const Context& context);

  [[nodiscard]] const WorkFolder& Folder() const { return folder_; }
  /// The same as the context of the club, but with the draft as the club's file.
  [[nodiscard]] const Context& Inside() const { return inside_; }
  /// True when there was no file in the place.
  [[nodiscard]] bool IsFirst() const { return current_ == nullptr; }
  /// True when the file in the place has rows that a new club's file has not, or it cannot be told.
  [[nodiscard]] bool CurrentHoldsData() const;

  /// Begins with an empty file that has all tables of the current layout.
  void BeginEmpty(const ClubIdentity& identity);
  /// Begins with the contents of the file in the place. False when that one is damaged or has
  /// no members' table; nothing has been begun then.
  [[nodiscard]] bool BeginWithCurrent();

  /// True when the file in the place has the tables and rows of the draft already, in whatever order: who made it was
  /// stopped at the very end, or did the same before.
  [[nodiscard]] bool IsLikeCurrent() const;
  /// Checks the draft, flushes it and gives it its place. Raises ProviderFailure when the draft is not sound.
  void TakePlace();

 private:
  void BeginNumbersAnew() const;
  void RequireSound() const;

  const Context& context_;
  std::shared_ptr<access::FileSystem> fileSystem_;
  std::string place_;
  WorkFolder folder_;
  std::string file_;
  Context inside_;
  std::unique_ptr<access::Database> current_;  // held alone; null: there is none
};

}  // namespace tavi::host
