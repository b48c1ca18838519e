// The program that the tests start as another process. Tasks:
//
//   evening PATH SEED STEPS FIRST    runs the steps FIRST, FIRST + 1, ... of an evening; prints the number of finished
//                                    steps after each
//   cramped PATH SEED STEPS FIRST    the same while files may not grow (not on Windows): prints "error TEXT" for a step
//   that met the
//                                    limit, gets a little more room, and runs it again
//   count PATH ROUNDS NUMBER         adds to counters and inserts rows, see SharingTest.cpp; prints "begun" and "done"
//   lock PATH OFFSET LENGTH          locks bytes of a file, as other programs do, until its input ends; prints "ready"
//   hold PATH                        opens the file and stays in a write statement until its input ends; prints "ready"
#include <iostream>
#include <string>

#include "access/file/Pager.h"
#include "access/provider/support/Counters.h"
#include "access/provider/support/EveningWorker.h"
#include "access/provider/support/WorkerTasks.h"

namespace tavi::access::test {

void WaitForEndOfInput() {
  std::cout << "ready" << std::endl;
  std::string line;
  while (std::getline(std::cin, line)) {
  }
}

namespace {

using Arguments = std::vector<std::string>;

int Hold(const Arguments& arguments) {
  const auto pager = Pager::Open(NativeFileSystem(), arguments.at(1), {});
  const WriteStatement statement(*pager);
  WaitForEndOfInput();
  return 0;
}

int Run(const Arguments& arguments) {
  const std::string& task = arguments.at(0);
  if (task == "hold") return Hold(arguments);
  if (task == "evening") {
    EveningWorker(arguments).Run();
  } else if (task == "count") {
    std::cout << "begun" << std::endl;
    Count(arguments.at(1), std::stoul(arguments.at(2)), std::stoi(arguments.at(3)));
    std::cout << "done" << std::endl;
  } else {
    return RunSystemTask(arguments);
  }
  return 0;
}

}  // namespace
}  // namespace tavi::access::test

int main(int count, char** values) {
  try {
    return tavi::access::test::Run({values + 1, values + count});
  } catch (const std::exception& exception) {
    std::cout << "failed " << exception.what() << std::endl;
    return 1;
  }
}
