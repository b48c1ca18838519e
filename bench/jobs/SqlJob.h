#pragma once

#include <functional>
#include <memory>
#include <string>

#include "data/Data.h"
#include "harness/Engines.h"
#include "harness/Job.h"

namespace tavi::bench {

/// The same statement in both languages.
struct Texts {
  std::string ours;
  std::string sqlite;

  Texts(const char* both) : ours(both), sqlite(both) {}  // NOLINT: the same in both
  Texts(std::string our, std::string other) : ours(std::move(our)), sqlite(std::move(other)) {}
};

using MakeFiles = std::function<FilePair()>;

/// A SELECT whose rows are all read, on open files that nobody changes.
inline Job Query(const std::string& name, const MakeFiles& files, const Texts& texts, bool inOrder = false) {
  Job job{name};
  job.inOrder = inOrder;
  job.ours = [files, text = texts.ours, open = std::shared_ptr<OurFile>()](Timer& timer) mutable {
    if (!open) open = std::make_shared<OurFile>(files().ours.string());
    Answer answer;
    timer.Section([&] { answer = open->Rows(text); });
    return answer;
  };
  job.other = [files, text = texts.sqlite, open = std::shared_ptr<SqliteFile>()](Timer& timer) mutable {
    if (!open) open = std::make_shared<SqliteFile>(files().sqlite.string());
    Answer answer;
    timer.Section([&] { answer = open->Rows(text); });
    return answer;
  };
  return job;
}

/// A statement that changes a fresh copy of the files; `check` is a SELECT over what it left, not measured. The files
/// have been read before, and are closed outside of what is measured.
inline Job Change(const std::string& name, Data& data, const MakeFiles& files, const Texts& texts, const Texts& warmUp,
                  const Texts& check) {
  const auto run = [](auto& file, Timer& timer, const std::string& text, const std::string& warm,
                      const std::string& after) {
    file.Rows(warm);
    timer.Section([&] { file.Run(text); });
    Answer answer = file.Rows(after);
    file.Close();
    return answer;
  };
  Job job{name};
  job.ours = [=, &data](Timer& timer) {
    OurFile file(data.Copy(files()).ours.string());
    return run(file, timer, texts.ours, warmUp.ours, check.ours);
  };
  job.other = [=, &data](Timer& timer) {
    SqliteFile file(data.Copy(files()).sqlite.string());
    return run(file, timer, texts.sqlite, warmUp.sqlite, check.sqlite);
  };
  return job;
}

}  // namespace tavi::bench
