#include "host/text/PathText.h"

#ifdef _WIN32
#include "platform/values/WideText.h"
#endif

namespace tavi::host {

std::filesystem::path PathOf(const std::string& text) {
  return {std::u8string(text.begin(), text.end())};
}

std::string TextOf(const std::filesystem::path& path) {
  std::filesystem::path written = path;
  const std::u8string text = written.make_preferred().u8string();
  return {text.begin(), text.end()};
}

std::string ReasonOf(const std::error_code& failure) {
#ifdef _WIN32
  // The standard library's own text is in the code page of the machine.
  if (failure.category() == std::system_category()) {
    return windows::SystemErrorText(static_cast<unsigned long>(failure.value()));
  }
#endif
  return failure.message();
}

}  // namespace tavi::host
