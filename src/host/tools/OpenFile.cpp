#include "host/tools/OpenFile.h"

#include <ostream>

#include "util/Paths.h"

namespace tavi::host {

std::unique_ptr<access::Database> OpenToRead(const Context& context, const std::string& file) {
  access::PagerOptions options;
  options.readOnly = true;
  options.report = [&context](const std::string& note) { context.error << "tavi: " << PrintableLines(note) << '\n'; };
  return std::make_unique<access::Database>(access::Pager::Open(access::NativeFileSystem(), NativePath(file), options));
}

}  // namespace tavi::host
