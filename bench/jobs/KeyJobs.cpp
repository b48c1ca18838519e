#include "jobs/Jobs.h"
#include "jobs/SqlJob.h"

namespace tavi::bench {
namespace {

constexpr int kLookUps = 3000;
constexpr int kChanges = 1000;

/// A key that is there; neighbours in turn lie far from each other.
int KeyOf(int call, int rows) {
  return 1 + static_cast<int>(std::int64_t{call} * 7919 % rows);
}

std::string LookUpText(int key) {
  return "Select Name, Price From Items Where ID = " + std::to_string(key);
}

std::string InsertText(int key) {
  return "Insert Into Items (ID, Num, Day, Name, Town, Price, Remark) Values (" + std::to_string(key) + ", " +
         std::to_string(key % 1000) + ", 45000, 'A New Name', 'Aldham', 12.25, 'added by the bench')";
}

std::string UpdateText(int key) {
  return "Update Items Set Price = " + std::to_string(key % 500) + ".25 Where ID = " + std::to_string(key);
}

std::string DeleteText(int key) {
  return "Delete From Items Where ID = " + std::to_string(key);
}

const Texts kCheck = "Select Count(*), Sum(Price), Sum(Num) From Items";

/// So many statements, each on its own, on a fresh copy.
template <typename File>
Answer RunEach(File& file, Timer& timer, int rows, const std::function<std::string(int)>& text) {
  file.Rows(LookUpText(1));
  timer.Section([&] {
    for (int i = 0; i < kChanges; ++i) {
      const std::string statement = text(KeyOf(i, rows));
      timer.Call([&] { file.Run(statement); });
    }
  });
  Answer answer = file.Rows(kCheck.ours);
  file.Close();
  return answer;
}

Job ChangeEach(const std::string& name, Data& data, const MakeFiles& files, int rows,
               const std::function<std::string(int)>& text) {
  Job job{name};
  job.ours = [=, &data](Timer& timer) {
    OurFile file(data.Copy(files()).ours.string());
    return RunEach(file, timer, rows, text);
  };
  job.other = [=, &data](Timer& timer) {
    SqliteFile file(data.Copy(files()).sqlite.string());
    return RunEach(file, timer, rows, text);
  };
  return job;
}

/// As ChangeEach with inserts, but SQLite binds values to one statement.
Job InsertEachPrepared(Data& data, const MakeFiles& files, int rows) {
  Job job = ChangeEach("single insert, each a statement: prepared", data, files, rows,
                       [rows](int key) { return InsertText(rows + key); });
  job.other = [=, &data](Timer& timer) {
    SqliteFile file(data.Copy(files()).sqlite.string());
    file.Rows(LookUpText(1));
    {
      SqliteStatement insert(file.Handle(),
                             "Insert Into Items (ID, Num, Day, Name, Town, Price, Remark) Values (?, ?, 45000, ?, ?, "
                             "12.25, ?)");
      timer.Section([&] {
        for (int i = 0; i < kChanges; ++i) {
          const int key = rows + KeyOf(i, rows);
          timer.Call([&] {
            insert.Bind(1, std::int64_t{key}).Bind(2, std::int64_t{key % 1000}).Bind(3, std::string("A New Name"));
            insert.Bind(4, std::string("Aldham")).Bind(5, std::string("added by the bench")).Run();
          });
        }
      });
    }
    return file.Rows(kCheck.sqlite);
  };
  return job;
}

Job LookUps(const MakeFiles& files, int rows, bool prepared) {
  Job job{prepared ? "look-up by key: prepared" : "look-up by key: other text each time"};
  job.ours = [files, rows, open = std::shared_ptr<OurFile>()](Timer& timer) mutable {
    if (!open) open = std::make_shared<OurFile>(files().ours.string());
    Answer answer;
    timer.Section([&] {
      for (int i = 0; i < kLookUps; ++i) {
        const std::string text = LookUpText(KeyOf(i, rows));
        timer.Call([&] {
          const auto found = open->Connection().OpenRecordset(text, ado::CursorType::ForwardOnly,
                                                              ado::LockType::ReadOnly, ado::SourceKind::CommandText);
          answer.Add(found->Get("Name"));
          answer.Add(found->Get("Price"));
        });
        answer.EndRow();
      }
    });
    return answer;
  };
  job.other = [files, rows, prepared, open = std::shared_ptr<SqliteFile>()](Timer& timer) mutable {
    if (!open) open = std::make_shared<SqliteFile>(files().sqlite.string());
    SqliteStatement kept(open->Handle(), "Select Name, Price From Items Where ID = ?");
    Answer answer;
    timer.Section([&] {
      for (int i = 0; i < kLookUps; ++i) {
        const int key = KeyOf(i, rows);
        const std::string text = LookUpText(key);
        timer.Call([&] {
          if (prepared) {
            kept.Bind(1, std::int64_t{key}).AddRows(answer);
          } else {
            SqliteStatement(open->Handle(), text).AddRows(answer);
          }
        });
      }
    });
    return answer;
  };
  return job;
}

}  // namespace

void AddKeyJobs(Jobs& jobs, Data& data, const Scale& scale) {
  const int rows = scale.rows;
  const MakeFiles files = [&data, rows] { return data.Plain(rows); };
  jobs.push_back(LookUps(files, rows, false));
  jobs.push_back(LookUps(files, rows, true));
  jobs.push_back(ChangeEach("single insert, each a statement: text", data, files, rows,
                            [rows](int key) { return InsertText(rows + key); }));
  jobs.push_back(InsertEachPrepared(data, files, rows));
  jobs.push_back(ChangeEach("update by key", data, files, rows, UpdateText));
  jobs.push_back(ChangeEach("delete by key", data, files, rows, DeleteText));
}

}  // namespace tavi::bench
