#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/ado/Provider.h"
#include "platform/values/Date.h"

/// What the component needs from outside, as small interfaces. Implementations are shared between threads and must be
/// callable from any of them.
namespace tavi {

/// Tells the time.
class Clock {
 public:
  virtual ~Clock() = default;
  /// The local date and time of day.
  [[nodiscard]] virtual Date Now() const = 0;
};

/// The icon of a message box.
enum class MessageBoxIcon { Information, Exclamation, Critical };

/// Shows messages to the person at the machine, or hands them to the host.
class MessageBoxes {
 public:
  virtual ~MessageBoxes() = default;
  /// Shows one message and returns when it has been dismissed. Must not throw.
  virtual void Show(MessageBoxIcon icon, const std::string& title, const std::string& text) const = 0;
};

/// Which kind of name a key is made for.
enum class NameKeyMode { Surname, FirstName };

/// The keys of a surname and a first name.
struct NameKeys {
  std::string surname;
  std::string firstName;
};

/// Makes sound-alike keys of names. Two writings that should be taken for the same name have equal keys in their mode;
/// the key of a text never changes, because keys are stored.
class NameKeyService {
 public:
  virtual ~NameKeyService() = default;
  /// The key of a name: at most 50 ASCII characters, empty for the empty name.
  [[nodiscard]] virtual std::string Key(NameKeyMode mode, std::string_view name) const = 0;
  /// The keys of both names of a person, the surname's made first.
  [[nodiscard]] virtual NameKeys Keys(std::string_view surname, std::string_view firstName) const {
    std::string surnameKey = Key(NameKeyMode::Surname, surname);
    return {std::move(surnameKey), Key(NameKeyMode::FirstName, firstName)};
  }
};

/// The roots of the registry.
enum class RegistryRoot : std::uint32_t { CurrentUser = 0x80000001, LocalMachine = 0x80000002 };

/// Reads text values of the system registry.
class Registry {
 public:
  virtual ~Registry() = default;
  /// The text value (cut at its first NUL); nothing when key or value are missing or the value is no text.
  [[nodiscard]] virtual std::optional<std::string> ReadText(RegistryRoot root, std::string_view keyPath,
                                                            std::string_view valueName) const = 0;
};

/// One loaded XML settings document: a tree of elements with text, addressed by a path of element names that starts
/// below the document ({"settings", "hkey_local_machine", ...}).
class SettingsDocument {
 public:
  virtual ~SettingsDocument() = default;
  /// The text of the element at a path; nothing when it is missing.
  [[nodiscard]] virtual std::optional<std::string> Text(const std::vector<std::string>& path) const = 0;
  /// Finds the element at a path, creating what is missing, and sets its text.
  virtual void SetText(const std::vector<std::string>& path, std::string_view text) = 0;
  /// Writes the document back to the file that it was loaded from.
  virtual void Save() = 0;
};

/// Loads XML settings documents.
class SettingsDocuments {
 public:
  virtual ~SettingsDocuments() = default;
  /// Loads a file (a path with backslashes, see util/Paths.h). Raises an error when it cannot be read or is no
  /// XML.
  [[nodiscard]] virtual std::unique_ptr<SettingsDocument> Load(const std::string& path) const = 0;
};

/// The shell's special folders, by the system's two ways of asking for one.
class ShellFolders {
 public:
  virtual ~ShellFolders() = default;
  /// The folder of a number (with the create flag 0x8000 when wanted): the first way. Nothing when it fails.
  [[nodiscard]] virtual std::optional<std::string> FolderPath(std::int32_t folderNumber) const = 0;
  /// The second, older way: nothing when the location is unknown. `nonZeroReturn` tells that the path call returned
  /// nonzero, which the caller takes for failure.
  struct Location {
    std::string path;
    bool nonZeroReturn = false;
  };
  [[nodiscard]] virtual std::optional<Location> FolderLocation(std::int32_t folderNumber) const = 0;
};

/// All of it together, handed down from the composition root. Every member is set.
struct Platform {
  std::shared_ptr<const ado::Provider> databaseProvider;
  std::shared_ptr<const Clock> clock;
  std::shared_ptr<const MessageBoxes> messageBoxes;
  std::shared_ptr<const NameKeyService> nameKeyService;
  std::shared_ptr<const Registry> registry;
  std::shared_ptr<const SettingsDocuments> settingsDocuments;
  std::shared_ptr<const ShellFolders> shellFolders;
};

}  // namespace tavi
