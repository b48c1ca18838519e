#include "jobs/Jobs.h"
#include "jobs/SqlJob.h"

namespace tavi::bench {

void AddScanJobs(Jobs& jobs, Data& data, const Scale& scale) {
  const int rows = scale.rows;
  const MakeFiles files = [&data, rows] { return data.Plain(rows); };
  const auto query = [&](const std::string& name, const Texts& texts) { jobs.push_back(Query(name, files, texts)); };
  query("scan with filter", "Select ID, Price From Items Where Price > 22000 And Town <> 'Corby'");
  query("scan with sum", "Select Sum(Price) From Items");
  query("scan with Like",
        {"Select Count(*) From Items Where Name Like '*an*'", "Select Count(*) From Items Where Name Like '%an%'"});
  query("all columns read", "Select * From Items");

  const auto change = [&](const std::string& name, const Texts& texts, const Texts& check) {
    jobs.push_back(Change(name, data, files, texts, "Select Sum(Price) From Items", check));
  };
  const Texts sums = "Select Count(*), Sum(Price), Sum(Num) From Items";
  change("update of every row", "Update Items Set Price = Price + 1", sums);
  change("delete of a tenth", {"Delete From Items Where ID Mod 10 = 3", "Delete From Items Where ID % 10 = 3"}, sums);
  change("create index: number", "Create Index ItemsPrice On Items (Price)",
         "Select Count(*) From Items Where Price = 1000.25");
  change("create index: text", "Create Index ItemsName On Items (Name)",
         "Select Count(*) From Items Where Name = 'Bo Ba'");

  query("Count(*)", "Select Count(*) From Items");
  query("Min of an indexed number", "Select Min(Num) From Items");
  query("Max of an indexed date", "Select Max(Day) From Items");
  query("Min and Max of an indexed date", "Select Min(Day), Max(Day) From Items");
  query("Distinct of an indexed number", "Select Distinct Num From Items");
  query("In over an indexed number", "Select Count(*) From Sales Where Item In (Select Num From Items)");
  query("Not In over an indexed number", "Select Count(*) From Sales Where Item Not In (Select Num From Items)");
}

}  // namespace tavi::bench
