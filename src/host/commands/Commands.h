#pragma once

#include <string>

#include "host/commands/ClubDraft.h"
#include "host/commands/Context.h"

namespace tavi::host {

/// Makes the folder and in it an empty file with all tables of the current layout. The file appears when it is whole;
/// on an error, or when the program is stopped, there is none. A file of this very club in which nobody has stored
/// anything is left as it is, so that the command can be repeated wherever it was stopped. Raises InvalidArgument when
/// there is any other file.
void MakeClub(const Context& context, const ClubIdentity& identity);

/// `tavi new`.
int NewClub(const Context& context, const ClubIdentity& identity);

/// `tavi sample --from FOLDER`: makes a sample club in a new folder (sample-club, sample-club-2, ... in the current
/// one, unless --db names one), brings in the members.csv and pairs.csv of FOLDER, scores all result files of its
/// folder evenings in the order of their names, and shows the last evening's ranking and where the file is.
int MakeSample(Context context, const std::string& from);

/// What an import is asked for.
struct ImportRequest {
  std::string file;
  bool dryRun = false;          ///< show what would be changed, and change nothing
  bool ignoreUnknown = false;   ///< pass over columns that are not known
  bool allowNamesakes = false;  ///< members only: a second member of one name may be added
};

/// `tavi members import FILE`: adds the members of a file, and changes of those who are there what the file says. The
/// whole file is checked first, and all of it stored or nothing. Writes how many members were added, changed and left,
/// or each change of a dry run.
int ImportMembers(const Context& context, const ImportRequest& request);

/// `tavi pairs import FILE`: the same for regular pairs. Both players must be members.
int ImportPairs(const Context& context, const ImportRequest& request);

/// `tavi members`: the members, retired ones too when `all`.
int ListMembers(const Context& context, bool all);
/// `tavi pairs`: the regular partnerships.
int ListPairs(const Context& context, bool all);
/// `tavi handicaps`: stored handicaps of members and partnerships; recalculates all of them first when asked to.
int ListHandicaps(const Context& context, bool recalculate);
/// `tavi find NAME`: the member of a name and the members whose names sound like it, best first, with the weight of
/// each match and the reason for it.
int FindByName(const Context& context, const std::string& name);

/// `tavi keys`: reads lines "first<TAB>name" or "last<TAB>name" and writes the key of each name, a line each. The first
/// line of another form ends it with an error that tells its number.
int WriteKeys(const Context& context);

/// What `tavi check` was asked for.
struct CheckRequest {
  std::string file{};   ///< empty: the club's file
  bool strict = false;  ///< also what other programs leave behind without harm
};

/// Exit codes of `tavi check`.
inline constexpr int kSound = 0;
inline constexpr int kDamaged = 1;
inline constexpr int kCannotBeOpened = 2;

/// `tavi check`: walks through an Access file and says what in it does not agree, where, and what to do. Changes
/// nothing.
int Check(const Context& context, const CheckRequest& request);

/// What `tavi recover` is asked for.
struct RecoverRequest {
  std::string oldFile;
  bool replace = false;  ///< the club's file may hold data, which are dropped
};

/// Exit codes of `tavi recover` beside kSucceeded, which means that everything was saved.
inline constexpr int kSomethingLost = 1;
inline constexpr int kNothingRecovered = 2;

/// `tavi recover OLDFILE`: saves what can be read of an old or damaged file into the club's file, which is made when
/// there is none, and tells for each table how many rows were found, saved and lost, and what damage was met. The old
/// file and its folder are not changed.
int Recover(const Context& context, const RecoverRequest& request);

/// `tavi compact`: lays an Access file out anew in its place and keeps the old one beside it (see
/// access/catalog/Compact.h). An empty name means the club's file.
int Compact(const Context& context, const std::string& file);

/// `tavi dump`: writes the contents of an Access file into a folder as text files that can be compared with others (see
/// DatabaseDump.h). The folder is made, or must be empty: a file of an earlier dump would look like a table of
/// this one.
int Dump(const Context& context, const std::string& file, const std::string& folder);

/// `tavi info`: where the file is, its size, what is in it.
int ShowInfo(const Context& context);

}  // namespace tavi::host
