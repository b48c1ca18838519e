// A result file of a scoring program.
#include <stdexcept>
#include <string>

#include "fuzz/Target.h"
#include "host/results/UsebioReader.h"
#include "platform/values/Error.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(data, data + size);
  try {
    for (const tavi::host::Event& event : tavi::host::ReadUsebio(text, "week.xml")) {
      static_cast<void>(event.HasPercentages());
    }
  } catch (const tavi::Error& error) {
    if (error.Description().empty()) throw std::logic_error("an error without a description");
  }
  return 0;
}
