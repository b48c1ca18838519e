#include "platform/portable/PortableServices.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <pugixml.hpp>
#include <random>
#include <system_error>

#include "platform/values/Error.h"
#include "platform/values/Text.h"

// A settings file is somebody's only copy: other programs keep their settings in it too. So everything in it that is
// not changed here is kept as it was read, comments, processing instructions and the document type included, and saving
// writes a new file beside it and renames that over the old one, so that a full disk or the end of the program leaves
// one of the two whole.
//
// The file is read once, into memory, and refused when it is larger or deeper than settings are. Document types are not
// acted on: no entity of theirs is expanded, so that a small file cannot become a large one.
namespace tavi {
namespace {

constexpr std::uintmax_t kLargestFile = std::uintmax_t{4} << 20U;
constexpr int kDeepestLevel = 100;
// The parser drops comments, declarations and the like unless it is told to keep them.
constexpr unsigned kParseOptions =
    pugi::parse_default | pugi::parse_comments | pugi::parse_declaration | pugi::parse_pi | pugi::parse_doctype;

/// Every refusal names the file, which people may have to find and mend; `problem` ends the sentence.
[[noreturn]] void Refuse(const std::string& fileName, const std::string& problem) {
  throw Error(ErrorNumber::InvalidArgument, "TaviMembership", "The settings file " + fileName + " " + problem);
}

/// Names are UTF-8 here, whatever the system's own characters are.
std::filesystem::path PathOf(const std::string& name) {
  return std::filesystem::path(std::u8string(name.begin(), name.end()));
}

/// The size is asked for first, so that a file of gigabytes is refused without reading it. One that has become shorter
/// meanwhile counts as unreadable.
std::string ReadWhole(const std::string& fileName) {
  std::error_code failure;
  const std::uintmax_t size = std::filesystem::file_size(PathOf(fileName), failure);
  if (failure) Refuse(fileName, "cannot be read: " + failure.message() + ".");
  if (size > kLargestFile) Refuse(fileName, "is larger than 4 MB, so it holds no settings; remove or repair it.");
  std::ifstream file(PathOf(fileName), std::ios::binary);
  std::string content(static_cast<std::size_t>(size), '\0');
  if (!file.read(content.data(), static_cast<std::streamsize>(size))) Refuse(fileName, "cannot be read.");
  return content;
}

/// Letters, digits, "_", "-" and "." (these two and digits not first), and everything beyond ASCII: a little more than
/// XML allows beyond ASCII, which no reader refuses. Asked here, because the library writes any name unseen.
bool IsElementName(std::string_view name) {
  const auto isLetter = [](char character) {
    return (character >= 'A' && character <= 'Z') || (character >= 'a' && character <= 'z') || character == '_' ||
           character < 0;
  };
  const auto isLater = [&isLetter](char character) {
    return isLetter(character) || (character >= '0' && character <= '9') || character == '-' || character == '.';
  };
  return !name.empty() && isLetter(name.front()) && std::all_of(name.begin(), name.end(), isLater);
}

/// Indentation around a text is how editors lay out a file, and no part of a setting.
std::string TrimmedOfWhiteSpace(std::string_view text) {
  constexpr std::string_view kWhiteSpace = " \t\r\n";
  const std::size_t first = text.find_first_not_of(kWhiteSpace);
  if (first == std::string_view::npos) return {};
  return std::string(text.substr(first, text.find_last_not_of(kWhiteSpace) - first + 1));
}

/// Stops at the first node that lies too deep.
class DepthCheck : public pugi::xml_tree_walker {
 public:
  bool for_each(pugi::xml_node& /*node*/) override { return depth() < kDeepestLevel; }
};

class XmlSettingsDocument : public SettingsDocument {
 public:
  explicit XmlSettingsDocument(std::string fileName) : fileName_(std::move(fileName)) {
    const std::string content = ReadWhole(fileName_);
    const pugi::xml_parse_result parsed = document_.load_buffer(content.data(), content.size(), kParseOptions);
    if (!parsed) {
      Refuse(fileName_, "is no XML: " + std::string(parsed.description()) + " at byte " +
                            std::to_string(parsed.offset) + "; repair or remove it.");
    }
    // Indentation makes a small but deep document a huge file.
    DepthCheck check;
    if (!document_.traverse(check)) Refuse(fileName_, "is nested too deep to hold settings; repair or remove it.");
  }

  [[nodiscard]] std::optional<std::string> Text(const std::vector<std::string>& path) const override {
    pugi::xml_node node = document_.root();
    // A missing element's children are missing too: the walk needs no check on the way.
    for (const std::string& name : path) node = node.child(name.c_str());
    if (!node || path.empty()) return std::nullopt;
    std::string text;
    // An element without any text is there all the same: its text is empty.
    // Comments may divide a text; elements below it have no part in it.
    for (const pugi::xml_node part : node.children()) {
      if (part.type() == pugi::node_pcdata || part.type() == pugi::node_cdata) text += part.value();
    }
    return TrimmedOfWhiteSpace(text);
  }

  void SetText(const std::vector<std::string>& path, std::string_view text) override {
    for (const std::string& name : path) {
      if (!IsElementName(name)) Refuse(fileName_, "can hold no element named \"" + name + "\".");
    }
    // A second root would be no XML any more.
    const pugi::xml_node root = document_.document_element();
    if (path.empty() || (!root.empty() && path.front() != root.name())) {
      Refuse(fileName_, "has the root element \"" + std::string(root.name()) + "\", so it is no settings file.");
    }
    pugi::xml_node node = document_.root();
    for (const std::string& name : path) {
      const pugi::xml_node child = node.child(name.c_str());
      node = !child.empty() ? child : node.append_child(name.c_str());
    }
    // The old text may stand in pieces, between comments; all of it gives way to the new one.
    node.remove_children();
    node.append_child(pugi::node_pcdata).set_value(std::string(text).c_str());
  }

  void Save() override {
    // A name of its own for each attempt: two programs that save at a time must not write into one file.
    std::random_device random;
    const std::string newName = fileName_ + "." + std::to_string(random()) + ".new";
    const unsigned format = pugi::format_indent | pugi::format_no_declaration;
    std::error_code failure;
    if (!document_.save_file(PathOf(newName).c_str(), "  ", format)) {
      // What was written before the disk was full, if anything.
      std::filesystem::remove(PathOf(newName), failure);
      Refuse(fileName_, "cannot be written: its folder takes no new file.");
    }
    std::filesystem::rename(PathOf(newName), PathOf(fileName_), failure);
    if (!failure) return;
    // Read before the removal sets it anew.
    const std::string reason = failure.message();
    std::filesystem::remove(PathOf(newName), failure);
    Refuse(fileName_, "cannot be replaced: " + reason + ".");
  }

 private:
  std::string fileName_;
  pugi::xml_document document_;
};

}  // namespace

std::unique_ptr<SettingsDocument> XmlSettingsDocuments::Load(const std::string& path) const {
  return std::make_unique<XmlSettingsDocument>(nativePath_(path));
}

}  // namespace tavi
