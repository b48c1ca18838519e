#pragma once

#include <functional>
#include <iosfwd>
#include <mutex>

#include "platform/Platform.h"

namespace tavi {

/// The machine's local time.
class SystemClock : public Clock {
 public:
  [[nodiscard]] Date Now() const override;
};

/// A clock that stands still at one moment.
class FixedClock : public Clock {
 public:
  explicit FixedClock(Date moment) : moment_(moment) {}
  [[nodiscard]] Date Now() const override { return moment_; }

 private:
  Date moment_;
};

/// Writes messages to a stream, for machines and programs without windows: the title with its kind, then the text.
/// Control characters other than line ends are left out, because the texts quote what files hold. Safe on any thread.
class ConsoleMessageBoxes : public MessageBoxes {
 public:
  /// The stream outlives this object.
  explicit ConsoleMessageBoxes(std::ostream& stream) : stream_(stream) {}
  void Show(MessageBoxIcon icon, const std::string& title, const std::string& text) const override;

 private:
  std::ostream& stream_;
  mutable std::mutex mutex_;
};

/// The registry of a system that has none: no value is ever there.
class EmptyRegistry : public Registry {
 public:
  [[nodiscard]] std::optional<std::string> ReadText(RegistryRoot /*root*/, std::string_view /*keyPath*/,
                                                    std::string_view /*valueName*/) const override {
    return std::nullopt;
  }
};

/// The special folders of a desktop that follows the XDG base directories: 5 is the user's documents folder (as
/// user-dirs.dirs names it, else ~/Documents), 35 the configuration folder (XDG_CONFIG_HOME, else ~/.config). Every
/// other number, 46 among them, has no folder. Paths are absolute, with slashes; a folder need not exist. With the bit
/// 0x8000 the folder is created, and there is no answer when that fails.
class XdgShellFolders : public ShellFolders {
 public:
  /// Looks up an environment variable; nothing when it is not set.
  using Environment = std::function<std::optional<std::string>(const std::string& name)>;

  /// Uses the environment of the process.
  XdgShellFolders();
  explicit XdgShellFolders(Environment environment) : environment_(std::move(environment)) {}

  [[nodiscard]] std::optional<std::string> FolderPath(std::int32_t folderNumber) const override;
  /// There is no second way of asking here: never an answer.
  [[nodiscard]] std::optional<Location> FolderLocation(std::int32_t folderNumber) const override;

 private:
  [[nodiscard]] std::optional<std::string> AbsolutePathOf(const std::string& variable) const;
  [[nodiscard]] std::optional<std::string> ConfigurationFolder() const;
  [[nodiscard]] std::optional<std::string> DocumentsFolder() const;

  Environment environment_;
};

/// XML settings documents for systems without an XML service of their own. Files are at most 4 MB and 100 levels deep;
/// document type definitions are kept but not acted on. White space around a text is no part of it. Errors have the
/// number InvalidArgument and the source "TaviMembership", and name the file and what is wrong with it. Saving replaces
/// the file as a whole, so that a failure leaves the old one. A document is used by one thread at a time.
class XmlSettingsDocuments : public SettingsDocuments {
 public:
  /// Turns a path with backslashes into one of this system.
  using PathMapping = std::function<std::string(const std::string&)>;

  explicit XmlSettingsDocuments(PathMapping nativePath) : nativePath_(std::move(nativePath)) {}
  [[nodiscard]] std::unique_ptr<SettingsDocument> Load(const std::string& path) const override;

 private:
  PathMapping nativePath_;
};

}  // namespace tavi
