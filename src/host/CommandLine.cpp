#include "host/CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <functional>
#include <new>
#include <optional>
#include <ostream>

#include "composition/Composition.h"
#include "host/commands/Commands.h"
#include "host/commands/Context.h"
#include "host/commands/Score.h"
#include "host/commands/WorkFolder.h"
#include "host/rpc/Server.h"
#include "host/sql/Shell.h"
#include "platform/portable/PortableServices.h"
#include "platform/values/Error.h"
#include "util/Paths.h"

// The words of the command. Each subcommand is added by a function of its own, which names its options and stores what
// is to be done as an action; nothing is done while arguments are read, so that a wrong one at the end of a line leaves
// everything as it was. Afterwards, in this order: the streams and the outside world are put into a Context, what a
// stopped command left is cleared, the action runs, and the output is seen to its end, whose failure is the command's.
//
// The library for command lines is included here and nowhere else, because compiling it takes long.
namespace tavi::host {
namespace {

using Action = std::function<int(const Context&)>;

/// What was read from the arguments, of whatever subcommand, and what is to be done. The library keeps references to
/// the members, and actions too: it stays where it is until the end.
struct Choices {
  std::string folder;
  std::string today;
  bool json = false;
  bool csv = false;
  std::string file;
  std::vector<std::string> files;
  std::string name;
  std::string number;
  SqlRequest sql;
  RecoverRequest recover;
  std::string from;
  std::string outputFolder;
  CheckRequest check;
  ImportRequest import;
  bool all = false;
  bool recalculate = false;
  Action action;
};

// The subcommands. Their callbacks run when all arguments have been read and checked.
void AddNew(CLI::App& app, Choices& choices) {
  CLI::App* command = app.add_subcommand("new", "Make a club's empty file ClubMembers.mdb in the folder");
  CLI::Option* name = command->add_option("--name", choices.name, "The club's name");
  command->add_option("--ebu", choices.number, "The club's number at its governing body, kept with its name")
      ->needs(name);
  command->callback([&choices] {
    choices.action = [&choices](const Context& context) { return NewClub(context, {choices.name, choices.number}); };
  });
}

/// `members import` and `pairs import` differ only in what is imported. Returns the subcommand for further options.
CLI::App* AddImport(CLI::App& parent, Choices& choices, const char* what,
                    int (*import)(const Context&, const ImportRequest&)) {
  CLI::App* command = parent.add_subcommand("import", std::string("Bring in ") + what + " from a comma-separated file");
  command->add_option("FILE", choices.import.file, "The file; its first line names the columns")->required();
  command->add_flag("--dry-run", choices.import.dryRun, "Show each change, and change nothing");
  command->add_flag("--ignore-unknown", choices.import.ignoreUnknown, "Pass over columns that are not known");
  command->callback([&choices, import] {
    choices.action = [&choices, import](const Context& context) { return import(context, choices.import); };
  });
  return command;
}

/// Without a subcommand of its own `members` lists; with one its callback is called as well, and must not replace the
/// action that is there already.
void AddMembers(CLI::App& app, Choices& choices) {
  CLI::App* command = app.add_subcommand("members", "List the members, or bring them in");
  command->add_flag("--all", choices.all, "Retired members too");
  AddImport(*command, choices, "members", ImportMembers)
      ->add_flag("--allow-namesakes", choices.import.allowNamesakes, "Add second members of one name");
  command->callback([&choices, command] {
    if (!command->get_subcommands().empty()) return;
    choices.action = [&choices](const Context& context) { return ListMembers(context, choices.all); };
  });
}

void AddPairs(CLI::App& app, Choices& choices) {
  CLI::App* command = app.add_subcommand("pairs", "List the regular partnerships, or bring them in");
  command->add_flag("--all", choices.all, "Inactive ones too");
  AddImport(*command, choices, "regular partnerships", ImportPairs);
  command->callback([&choices, command] {
    if (!command->get_subcommands().empty()) return;
    choices.action = [&choices](const Context& context) { return ListPairs(context, choices.all); };
  });
}

void AddScore(CLI::App& app, Choices& choices) {
  CLI::App* command = app.add_subcommand("score", "Store the results of USEBIO files and show the ranking");
  command->add_option("FILE", choices.files, "Result files; each is stored completely or not at all")->required();
  command->callback(
      [&choices] { choices.action = [&choices](const Context& context) { return Score(context, choices.files); }; });
}

void AddFind(CLI::App& app, Choices& choices) {
  // A name may stand there in several words, without quotes.
  CLI::App* command = app.add_subcommand("find", "Find members by an exact or misspelt name");
  command->add_option("NAME", choices.files, "The name, in one argument or several")->required();
  command->callback([&choices] {
    choices.action = [&choices](const Context& context) {
      return FindByName(context, CLI::detail::join(choices.files, " "));
    };
  });
}

// Reads from standard input, so that the keys of a whole list cost one start of the program.
void AddKeys(CLI::App& app, Choices& choices) {
  app.add_subcommand("keys", "Write the sound-alike keys of names: lines \"first\" or \"last\", a tab and a name")
      ->callback([&choices] { choices.action = [](const Context& context) { return WriteKeys(context); }; });
}

void AddHandicaps(CLI::App& app, Choices& choices) {
  CLI::App* command = app.add_subcommand("handicaps", "List the stored handicaps of members and partnerships");
  command->add_flag("--recalculate", choices.recalculate, "Calculate all of them anew first");
  command->callback([&choices] {
    choices.action = [&choices](const Context& context) { return ListHandicaps(context, choices.recalculate); };
  });
}

void AddSql(CLI::App& app, Choices& choices) {
  CLI::App* command = app.add_subcommand("sql", "Run SQL statements on the file: one, or those typed or piped in");
  command->add_option("STATEMENT", choices.sql.statement,
                      "The statement, as Access understands it; without it a shell");
  command->add_option("--file", choices.sql.file, "Another Access file than the club's")->type_name("FILE");
  command->add_flag("--explain", choices.sql.explain, "Show how the statement would be run (which index, which scan)");
  command->callback(
      [&choices] { choices.action = [&choices](const Context& context) { return RunSql(context, choices.sql); }; });
}

void AddRpc(CLI::App& app, Choices& choices) {
  app.add_subcommand("rpc", "Serve scoring programs: JSON-RPC 2.0, a line each, on standard input and output")
      ->callback([&choices] { choices.action = [](const Context& context) { return RunRpc(context); }; });
}

void AddRecover(CLI::App& app, Choices& choices) {
  CLI::App* command =
      app.add_subcommand("recover", "Save what can be read of an old or damaged club file into the club's file");
  command->add_option("OLDFILE", choices.recover.oldFile, "The old file; it is only read")->required();
  command->add_flag("--replace", choices.recover.replace, "Empty the club's file first, though it holds data");
  command->callback([&choices] {
    choices.action = [&choices](const Context& context) { return Recover(context, choices.recover); };
  });
}

void AddInfo(CLI::App& app, Choices& choices) {
  app.add_subcommand("info", "Tell where the club's file is and what is in it")->callback([&choices] {
    choices.action = [](const Context& context) { return ShowInfo(context); };
  });
}

void AddSample(CLI::App& app, Choices& choices) {
  CLI::App* command = app.add_subcommand("sample", "Make a sample club in a new folder and score its season");
  command->add_option("--from", choices.from, "Folder with members.csv, pairs.csv and evenings/*.xml")->required();
  command->callback([&choices] {
    choices.action = [&choices](const Context& context) { return MakeSample(context, choices.from); };
  });
}

void AddDump(CLI::App& app, Choices& choices) {
  CLI::App* command = app.add_subcommand("dump", "Write the contents of an Access file as text files, to compare");
  command->add_option("FILE", choices.file, "The Access file; it is only read")->required();
  command->add_option("OUTDIR", choices.outputFolder, "A new or empty folder for the text files")->required();
  command->callback([&choices] {
    choices.action = [&choices](const Context& context) { return Dump(context, choices.file, choices.outputFolder); };
  });
}

void AddCheck(CLI::App& app, Choices& choices) {
  CLI::App* command = app.add_subcommand(
      "check", "Look through an Access file for damage; exit 0 sound, 1 damaged, 2 cannot be opened");
  command->add_option("FILE", choices.check.file, "The Access file (else the club's); it is only read");
  command->add_flag("--strict", choices.check.strict, "Also what other programs leave behind without harm");
  command->callback(
      [&choices] { choices.action = [&choices](const Context& context) { return Check(context, choices.check); }; });
}

void AddCompact(CLI::App& app, Choices& choices) {
  CLI::App* command =
      app.add_subcommand("compact", "Lay an Access file out anew, without what was deleted; the old file is kept");
  command->add_option("FILE", choices.file, "The Access file (else the club's); nobody else may have it open");
  command->callback(
      [&choices] { choices.action = [&choices](const Context& context) { return Compact(context, choices.file); }; });
}

/// An error of use, not of work: it is found out after parsing only because the library knows no dates.
std::optional<Date> TodayOf(const Choices& choices) {
  if (choices.today.empty()) return std::nullopt;
  const std::optional<Date> today = Date::FromIso(choices.today);
  if (!today) throw CLI::ValidationError("--today", "\"" + choices.today + "\" is no date; expected yyyy-mm-dd");
  return today;
}

/// Copies of members' data that a stopped command left go with the next one that uses the club, whichever it is.
void ClearLeftBehind(const CLI::App& app, const Context& context) {
  // Those that make a club's file clear it themselves, under their own lock; the others are about any file, or none.
  constexpr std::array kUsers{"members", "pairs", "score", "find", "handicaps", "info", "rpc", "sql"};
  if (std::ranges::none_of(kUsers, [&](const char* name) { return app.got_subcommand(name); })) return;
  try {
    WorkFolder::ClearLeftBehind(NativePath(context.ClubFile()));
  } catch (const Error&) {
    // There is no club's folder; who needs one says so.
    return;
  }
}

/// Reads the arguments and carries them out. Every error of a command ends here as one message on standard error, which
/// begins with the command's name and has what a file's text may hold made printable.
int Run(std::vector<std::string> arguments, const Terminal& terminal) {
  std::ostream& error = terminal.error;
  Choices choices;
  CLI::App app("Keeps a bridge club's members, results, master points and handicaps in its file ClubMembers.mdb.",
               "tavi");
  // A slash begins a path on every system.
  app.allow_windows_style_options(false);
  // Exactly one; and options of the command itself may also stand behind it, where people add them.
  app.require_subcommand(1);
  app.fallthrough();
  app.add_option("--db", choices.folder, "The club's folder or file (else the one set for this machine)")
      ->type_name("FOLDER");
  app.add_option("--today", choices.today, "Take this day for today")->type_name("DATE");
  CLI::Option* json = app.add_flag("--json", choices.json, "Write JSON");
  app.add_flag("--csv", choices.csv, "Write comma-separated lines, which spreadsheets open")->excludes(json);
  for (const auto add : {
           AddNew,
           AddMembers,
           AddPairs,
           AddScore,
           AddFind,
           AddKeys,
           AddHandicaps,
           AddSql,
           AddRpc,
           AddInfo,
           AddRecover,
           AddSample,
           AddCheck,
           AddCompact,
           AddDump,
       }) {
    add(app, choices);
  }
  try {
    // The library takes its arguments from the end of the list.
    std::reverse(arguments.begin(), arguments.end());
    app.parse(arguments);
    Context context{terminal.in, terminal.out, error};
    context.inputIsTerminal = terminal.inputIsTerminal;
    // What was asked for; else tables for people and lines for programs.
    context.format = choices.json                ? OutputFormat::JsonText
                     : choices.csv               ? OutputFormat::Csv
                     : terminal.outputIsTerminal ? OutputFormat::Table
                                                 : OutputFormat::Tabs;
    // Bars go to standard error, so that they never mix with results in a pipe.
    context.showProgress = terminal.errorIsTerminal;
    context.folder = choices.folder;
    PlatformOptions options{TodayOf(choices), std::make_shared<ConsoleMessageBoxes>(error)};
    options.isCancelled = CancelKey::IsPressed;
    context.platform = MakePlatform(options);
    ClearLeftBehind(app, context);
    return choices.action(context);
  } catch (const CLI::ParseError& problem) {
    // Help is such an "error" with the code 0; the library's other codes mean the same to a caller.
    return app.exit(problem, terminal.out, error) == 0 ? kSucceeded : kWrongUse;
  } catch (const Error& problem) {
    error << "tavi: " << PrintableLines(problem.Description()) << '\n';
  } catch (const std::bad_alloc&) {
    error << "tavi: there is not enough memory for that\n";
  } catch (const std::exception& problem) {
    error << "tavi: " << PrintableLines(problem.what()) << '\n';
  }
  return kFailed;
}

/// The exit code of a run that would end with `code`, once all output is where it belongs.
int FinishOutput(const Terminal& terminal, int code) {
  // What is buffered has not been written yet, and only now it shows whether it can be.
  terminal.out.flush();
  if (terminal.out) return code;
  const std::error_code reason = terminal.outputFailure ? terminal.outputFailure() : std::error_code();
  // Quietly, as other programs die of it: the reader has seen enough (`tavi members | head`).
  if (reason == std::errc::broken_pipe) return kReaderHasEnded;
  terminal.error << "tavi: the output could not be written" << (reason ? ": " + reason.message() : "")
                 << "; what there is of it is not complete\n";
  // A code that says more, such as that of a damaged file, stays.
  return code == kSucceeded ? kFailed : code;
}

}  // namespace

int RunCommandLine(std::vector<std::string> arguments, const Terminal& terminal) {
  return FinishOutput(terminal, Run(std::move(arguments), terminal));
}

}  // namespace tavi::host
