#include "jobs/Jobs.h"
#include "jobs/SqlJob.h"

namespace tavi::bench {

void AddJoinJobs(Jobs& jobs, Data& data, const Scale& scale) {
  const int rows = scale.rows;
  const MakeFiles files = [&data, rows] { return data.Plain(rows); };
  const auto query = [&](const std::string& name, const Texts& texts, bool inOrder = false) {
    jobs.push_back(Query(name, files, texts, inOrder));
  };
  query("outer join", "Select Items.ID, Sales.Amount From Items Left Join Sales On Items.ID = Sales.Item");
  query("inner join by key", "Select Sales.ID, Items.Price From Sales Inner Join Items On Sales.Item = Items.ID");
  query("hash join",
        "Select Count(*), Sum(Sales.Amount) From Sales Inner Join Items On Sales.Amount = Items.Price Where "
        "Items.ID > 0");
  query("sort by a number", "Select ID, Price From Items Order By Price, ID", true);
  query("sort by a text", "Select ID, Name From Items Order By Name, ID", true);
  query("top 10",
        {"Select Top 10 ID, Price From Items Order By Price Desc, ID",
         "Select ID, Price From Items Order By Price Desc, ID Limit 10"},
        true);
  query("group by a text", "Select Town, Count(*), Sum(Price) From Items Group By Town");
}

}  // namespace tavi::bench
