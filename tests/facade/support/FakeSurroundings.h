#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "platform/Platform.h"
#include "platform/values/Error.h"
#include "util/Paths.h"

namespace tavi::testing {

/// Special folders by number; asking for the rest fails.
class FakeFolders : public ShellFolders {
 public:
  [[nodiscard]] std::optional<std::string> FolderPath(std::int32_t folderNumber) const override {
    const auto found = folders.find(folderNumber);
    return found == folders.end() ? std::nullopt : std::optional<std::string>(found->second);
  }
  [[nodiscard]] std::optional<Location> FolderLocation(std::int32_t /*folderNumber*/) const override {
    return std::nullopt;
  }
  std::map<std::int32_t, std::string> folders;
};

/// The folders of a user: documents and settings.
inline std::shared_ptr<FakeFolders> FoldersOfUser(const std::string& documents, const std::string& settings) {
  constexpr std::int32_t kCreate = 0x8000;
  auto shell = std::make_shared<FakeFolders>();
  shell->folders[kPersonalFolder] = documents;
  shell->folders[kCommonApplicationDataFolder | kCreate] = settings;
  return shell;
}

/// A registry of the values that a test puts in, under any key; roots that are out of order raise an error.
class FakeRegistryValues : public Registry {
 public:
  [[nodiscard]] std::optional<std::string> ReadText(RegistryRoot root, std::string_view /*keyPath*/,
                                                    std::string_view valueName) const override {
    if (failing == root) throw Error(ErrorNumber::InvalidArgument, "registry", "The registry is out of order.");
    const auto found = values.find({root, std::string(valueName)});
    return found == values.end() ? std::nullopt : std::optional<std::string>(found->second);
  }
  std::map<std::pair<RegistryRoot, std::string>, std::string> values;
  std::optional<RegistryRoot> failing;
};

/// There is no settings file, and none can be made.
class NoSettingsDocuments : public SettingsDocuments {
 public:
  [[nodiscard]] std::unique_ptr<SettingsDocument> Load(const std::string& path) const override {
    throw Error(ErrorNumber::InvalidArgument, "settings", "No settings file can be loaded from " + path + ".");
  }
};

/// A settings file in memory, shared by all who load it.
class MemorySettings : public SettingsDocuments {
 public:
  [[nodiscard]] std::unique_ptr<SettingsDocument> Load(const std::string& /*path*/) const override {
    class Document : public SettingsDocument {
     public:
      explicit Document(std::shared_ptr<std::map<std::vector<std::string>, std::string>> texts)
          : texts_(std::move(texts)) {}
      [[nodiscard]] std::optional<std::string> Text(const std::vector<std::string>& path) const override {
        const auto found = texts_->find(path);
        return found == texts_->end() ? std::nullopt : std::optional<std::string>(found->second);
      }
      void SetText(const std::vector<std::string>& path, std::string_view text) override {
        (*texts_)[path] = std::string(text);
      }
      void Save() override {}

     private:
      std::shared_ptr<std::map<std::vector<std::string>, std::string>> texts_;
    };
    return std::make_unique<Document>(texts_);
  }

 private:
  std::shared_ptr<std::map<std::vector<std::string>, std::string>> texts_ =
      std::make_shared<std::map<std::vector<std::string>, std::string>>();
};

/// A clock that stands still.
class StoppedClock : public Clock {
 public:
  explicit StoppedClock(Date now) : now_(now) {}
  [[nodiscard]] Date Now() const override { return now_; }

 private:
  Date now_;
};

}  // namespace tavi::testing
