#include <fstream>

#include "facade/MembershipDatabase.h"
#include "harness/Process.h"
#include "jobs/Jobs.h"
#include "jobs/SqlJob.h"

namespace tavi::bench {
namespace {

constexpr int kOpenings = 50;
constexpr int kProcesses = 10;

std::unique_ptr<MembershipDatabase> ClubIn(const FilePair& files) {
  auto club = std::make_unique<MembershipDatabase>(BenchPlatform());
  club->SetDatabaseFolder(files.ours.parent_path().string());
  return club;
}

/// Opens, asks for a member's handicap, closes, again and again. The checks of a first opening have been made before.
Job OpenLookUpClose(Data& data, const ClubSize& size, const std::string& journal) {
  Job job{"open, look-up, close; SQLite with journal " + journal};
  job.ours = [&data, size](Timer& timer) {
    const auto club = ClubIn(data.ClubFiles(size));
    club->OpenDatabase();
    club->CloseDatabase();
    Answer answer;
    timer.Section([&] {
      for (int i = 1; i <= kOpenings; ++i) {
        timer.Call([&] {
          club->OpenDatabase();
          answer.AddRow(club->GetHandicap(i));
          club->CloseDatabase();
        });
      }
    });
    return answer;
  };
  job.other = [&data, size, journal](Timer& timer) {
    const std::string path = data.Copy(data.ClubFiles(size)).sqlite.string();
    SqliteFile(path, journal).Close();
    Answer answer;
    timer.Section([&] {
      for (int i = 1; i <= kOpenings; ++i) {
        timer.Call([&] {
          SqliteFile file(path, journal);
          SqliteStatement find(file.Handle(), "Select Handicap From Members Where MembershipNumber = ?");
          find.Bind(1, std::int64_t{i}).AddRows(answer);
        });
      }
    });
    return answer;
  };
  return job;
}

/// A new object each time, so that the layout is checked.
Job FirstOpen(Data& data, const ClubSize& size) {
  Job job{"first open (layout, flags, keys): " + std::to_string(kProcesses) + " times"};
  job.ours = [&data, size](Timer& timer) {
    const FilePair files = data.ClubFiles(size);
    timer.Section([&] {
      for (int i = 0; i < kProcesses; ++i) {
        timer.Call([&] {
          const auto club = ClubIn(files);
          club->OpenDatabase();
          club->CloseDatabase();
        });
      }
    });
    return Answer();
  };
  return job;
}

Job FirstNearestMatches(Data& data, const ClubSize& size) {
  Job job{"FindNearestMatches, first call after the open: " + std::to_string(kProcesses) + " times"};
  job.ours = [&data, size](Timer& timer) {
    const FilePair files = data.ClubFiles(size);
    Answer answer;
    for (int i = 0; i < kProcesses; ++i) {
      const auto club = ClubIn(files);
      club->OpenDatabase();
      timer.Section([&] {
        timer.Call(
            [&] { answer.AddRow(static_cast<double>(club->FindNearestMatches("Jaems Ashtone").Numbers.size())); });
      });
      club->CloseDatabase();
    }
    return answer;
  };
  return job;
}

/// A command of the shell, by the processor time of its processes.
Side Command(const std::function<std::string()>& command, int times) {
  return [=](Timer& timer) {
    const std::string text = command();
    for (int i = 0; i < times; ++i) timer.Call([&] { timer.AddProcessor(RunProcess(text)); });
    return Answer();
  };
}

void WriteMembersFile(const std::filesystem::path& path, int members) {
  std::ofstream file(path);
  file << "ebu_number,first,last,email\n";
  for (int number = 1; number <= members; ++number) {
    file << 700'000 + number << ',' << Club::FirstName(number) << number << ',' << Club::LastName(number) << ",m"
         << number << "@example.org\n";
  }
}

Job Import(Data& data, int members) {
  Job job{"tavi members import, " + std::to_string(members) + " members"};
  job.ours = Command(
      [&data, members] {
        const std::filesystem::path folder = data.Folder() / "import";
        std::filesystem::remove_all(folder);
        std::filesystem::create_directories(folder);
        WriteMembersFile(folder / "members.csv", members);
        const std::string tavi = BuiltProgram("tavi") + " --db " + Quoted(folder.string());
        RunProcess(tavi + " new >/dev/null");
        return tavi + " members import " + Quoted((folder / "members.csv").string()) + " >/dev/null";
      },
      1);
  return job;
}

}  // namespace

void AddFileJobs(Jobs& jobs, Data& data, const Scale& scale) {
  const ClubSize club = scale.club;
  const int rows = scale.rows;
  jobs.push_back(OpenLookUpClose(data, club, "WAL"));
  jobs.push_back(OpenLookUpClose(data, club, "DELETE"));
  jobs.push_back(FirstOpen(data, club));
  jobs.push_back(FirstNearestMatches(data, club));

  Job members{"tavi members, whole process: " + std::to_string(kProcesses) + " times"};
  members.ours = Command(
      [&data, club] {
        return BuiltProgram("tavi") + " --db " + Quoted(data.ClubFiles(club).ours.string()) + " members >/dev/null";
      },
      kProcesses);
  jobs.push_back(std::move(members));

  Job table{"table as text: tavi sql; mdb-export"};
  table.ours = Command(
      [&data, rows] {
        return BuiltProgram("tavi") + " --csv sql --file " + Quoted(data.Plain(rows).ours.string()) +
               " 'Select * From Items' >/dev/null";
      },
      1);
  table.other = Command(
      [&data, rows] { return "mdb-export " + Quoted(data.Plain(rows).ours.string()) + " Items >/dev/null"; }, 1);
  jobs.push_back(std::move(table));

  Job compact{"tavi compact; VACUUM"};
  compact.ours = Command(
      [&data, rows] {
        return BuiltProgram("tavi") + " compact " + Quoted(data.Copy(data.Plain(rows)).ours.string()) + " >/dev/null";
      },
      1);
  compact.other = Command(
      [&data, rows] { return "sqlite3 " + Quoted(data.Copy(data.Plain(rows)).sqlite.string()) + " VACUUM"; }, 1);
  jobs.push_back(std::move(compact));
  jobs.push_back(Import(data, rows / 2));
}

}  // namespace tavi::bench
