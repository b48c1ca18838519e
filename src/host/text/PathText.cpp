#include "host/text/PathText.h"

#include <string_view>

#ifdef _WIN32
#include <windows.h>

#include "platform/values/WideText.h"
#else
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#endif

// Paths as texts. The standard library's paths are used only at the edge, where a file call takes one: under Windows
// they know nothing of the long form ("\\?\C:\..."), and their plain texts are in the code page of the machine. So
// splitting, joining and listing are done here, on UTF-8, in which a separator is never a part of another character.
namespace tavi::host {
namespace {

#ifdef _WIN32
constexpr std::string_view kSeparators = "/\\";
#else
constexpr std::string_view kSeparators = "/";
#endif

}  // namespace

std::filesystem::path PathOf(const std::string& text) {
#ifdef _WIN32
  return windows::ToWidePath(text);
#else
  return text;
#endif
}

/// With the separators of the system, as people know them.
std::string TextOf(const std::filesystem::path& path) {
  std::filesystem::path written = path;
  const std::u8string text = written.make_preferred().u8string();
  return {text.begin(), text.end()};
}

// From the current folder, whether the path is there or not; links are not followed.
std::string AbsolutePath(const std::string& path) {
#ifdef _WIN32
  const std::wstring wide = windows::ToWide(path);
  // Asked for the size first, which has the end of the text in it.
  std::wstring full(::GetFullPathNameW(wide.c_str(), 0, nullptr, nullptr), L'\0');
  full.resize(::GetFullPathNameW(wide.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr));
  return full.empty() ? path : windows::FromWide(full);
#else
  return std::filesystem::absolute(path).lexically_normal().string();
#endif
}

PathParts SplitPath(const std::string& path) {
  const std::size_t separator = path.find_last_of(kSeparators);
  if (separator == std::string::npos) return {"", path};
  const std::string folder = path.substr(0, separator);
  // "/" and "C:\" keep their separator: without it, "C:" would be the current folder of that drive.
  const bool isRoot = folder.empty() || folder.ends_with(':');
  return {isRoot ? path.substr(0, separator + 1) : folder, path.substr(separator + 1)};
}

// A folder that ends in a separator, such as the root, gets no second one.
std::string JoinPath(const std::string& folder, const std::string& name) {
  if (folder.empty() || kSeparators.find(folder.back()) != std::string_view::npos) return folder + name;
  return folder + static_cast<char>(std::filesystem::path::preferred_separator) + name;
}

std::error_code MakeFolders(const std::string& path) {
  std::error_code failure;
  if (std::filesystem::is_directory(PathOf(path), failure)) return {};
  const std::string outer = SplitPath(path).folder;
  // What keeps the outer one from being made also keeps this one from it, and that failure is told.
  if (!outer.empty() && outer != path) static_cast<void>(MakeFolders(outer));
  std::filesystem::create_directory(PathOf(path), failure);
  std::error_code ignored;
  // Another program may have made it in between.
  return std::filesystem::is_directory(PathOf(path), ignored) ? std::error_code() : failure;
}

std::error_code MakePrivateFolder(const std::string& path) {
#ifdef _WIN32
  return MakeFolders(path);
#else
  // With its rights from the beginning: between making and restricting it somebody could have entered.
  if (::mkdir(path.c_str(), S_IRWXU) == 0) return {};
  std::error_code failure(errno, std::generic_category());
  struct stat status {};
  if (failure != std::errc::file_exists || ::lstat(path.c_str(), &status) != 0) return failure;
  // A link is none, as lstat does not follow it.
  if (!S_ISDIR(status.st_mode)) return failure;
  // What another user has made stays theirs to see.
  if (status.st_uid != ::geteuid()) return std::make_error_code(std::errc::operation_not_permitted);
  return ::chmod(path.c_str(), S_IRWXU) == 0 ? std::error_code() : std::error_code(errno, std::generic_category());
#endif
}

// The standard library never comes to the end of a folder whose path is longer than Windows' programs of old could
// name.
std::vector<std::string> NamesIn(const std::string& folder, std::error_code& failure) {
  std::vector<std::string> names;
#ifdef _WIN32
  WIN32_FIND_DATAW entry{};
  const HANDLE search = ::FindFirstFileW(windows::ToWidePath(folder + "\\*").c_str(), &entry);
  failure = search == INVALID_HANDLE_VALUE ? std::error_code(static_cast<int>(::GetLastError()), std::system_category())
                                           : std::error_code();
  if (failure) return names;
  do {
    std::string name = windows::FromWide(entry.cFileName);
    if (name != "." && name != "..") names.push_back(std::move(name));
  } while (::FindNextFileW(search, &entry) != 0);
  ::FindClose(search);
#else
  for (std::filesystem::directory_iterator entry(folder, failure); entry != std::filesystem::directory_iterator();
       entry.increment(failure)) {
    names.push_back(entry->path().filename().string());
  }
#endif
  return names;
}

void RemoveAll(const std::string& path) {
  std::error_code ignored;
  // Of the path itself: what a link leads to belongs to somebody else.
  if (std::filesystem::symlink_status(PathOf(path), ignored).type() == std::filesystem::file_type::directory) {
    for (const std::string& name : NamesIn(path, ignored)) RemoveAll(JoinPath(path, name));
  }
  std::filesystem::remove(PathOf(path), ignored);
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
