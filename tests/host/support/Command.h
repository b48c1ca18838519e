#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace tavi::host {

/// What one run of the command gave.
struct Outcome {
  int code = -1;
  std::string out;
  std::string error;
};

/// The bytes of a file.
[[nodiscard]] std::string ReadFile(const std::filesystem::path& path);

/// Where tests of commands have their files: in memory where the system keeps a folder there with enough room and
/// TMPDIR names no other, because most of what a command does to a disk is to wait for it.
[[nodiscard]] std::filesystem::path FolderOfTests();

/// A folder of one test, gone afterwards, and the command run in it.
class CommandFolder {
 public:
  CommandFolder();
  ~CommandFolder();
  CommandFolder(const CommandFolder&) = delete;
  CommandFolder& operator=(const CommandFolder&) = delete;

  [[nodiscard]] std::string Path(const std::string& name = "") const;
  /// Where the club lies.
  [[nodiscard]] std::string Club() const { return Path("club"); }
  [[nodiscard]] std::string ClubFile() const { return Path("club/ClubMembers.mdb"); }
  /// Writes a file into the folder and gives its path.
  std::string Write(const std::string& name, const std::string& content) const;
  /// Runs the command on the club with `input` on its standard input, as if its output went into a file.
  [[nodiscard]] Outcome Run(std::vector<std::string> arguments, const std::string& input = "") const;
  /// The same on another club, named by its folder or file.
  [[nodiscard]] Outcome RunIn(const std::string& club, std::vector<std::string> arguments,
                              const std::string& input = "") const;
  /// The tab-separated rows of a statement, without the header.
  [[nodiscard]] std::vector<std::string> Query(const std::string& statement) const;

 private:
  std::filesystem::path folder_;
};

/// A value as a cell of tab-separated output.
[[nodiscard]] std::string InCell(const std::string& value);

/// The standard output of a program, and whether it could be run and succeeded.
struct ProgramOutput {
  bool succeeded = false;
  std::string text;
};
ProgramOutput RunProgram(const std::string& commandLine);

}  // namespace tavi::host
