// Where a club's file is found when nobody says: below the documents folder, unless a setting names a folder, of the
// machine or of the user, which comes last and wins. An object can be made on any machine, so nothing here fails.
#include "facade/ThreadStore.h"

#include <exception>
#include <string>

#include "names/NameColumns.h"
#include "util/Diagnostics.h"
#include "util/Paths.h"
#include "util/SettingsStore.h"

namespace tavi {
namespace {

constexpr const char* kFolderBelowDocuments = "Bridge\\Database";
constexpr const char* kFolderOfLastResort = "C:\\My Documents\\Bridge\\Database";

/// Takes one step; an error is written to the log behind `introduction`.
template <typename Step>
void Attempt(const std::string& introduction, Step step) {
  try {
    step();
  } catch (const std::exception& error) {
    WriteDiagnostic(introduction + ": " + error.what());
  }
}

std::string DocumentsFolder(const ShellFolders& shell) {
  std::string folder;
  const auto ask = [&](std::int32_t number, const std::string& name) {
    Attempt("TaviMembership initialisation error getting " + name,
            [&] { folder = SpecialFolderPath(shell, number, false); });
  };
  ask(kCommonDocumentsFolder, "CSIDL_COMMON_DOCUMENTS");
  if (folder.empty()) ask(kPersonalFolder, "CSIDL_PERSONAL");
  return folder;
}

// A store has a connection, which one thread uses: so there is one store for each.
std::shared_ptr<cDatabase>& Slot() {
  thread_local std::shared_ptr<cDatabase> slot;
  return slot;
}

}  // namespace

// Here the store learns of names, which is a room above it.
std::unique_ptr<cDatabase> MakeStore(std::shared_ptr<const Platform> platform) {
  return std::make_unique<cDatabase>(std::move(platform), NameSteps());
}

// Each step may fail alone: a machine without a documents folder can still have the setting, and the other way round.
void FindDatabaseFolder(cDatabase& store) {
  const Platform& platform = store.GetPlatform();
  const std::string documents = DocumentsFolder(*platform.shellFolders);

  const auto attempt = [](auto step) { Attempt("Unexpected exception in TaviMembership initialisation", step); };
  // The user's setting comes last and wins over the machine's, which wins over the documents folder.
  std::string folder = kFolderOfLastResort;
  attempt([&] {
    if (!documents.empty()) folder = PathJoin(documents, kFolderBelowDocuments);
  });
  for (const RegistryRoot root : {RegistryRoot::LocalMachine, RegistryRoot::CurrentUser}) {
    attempt([&] { folder = GetSetting(platform, root, kSettingsKey, kDatabaseFolderSetting, folder); });
  }
  attempt([&] { store.SetDatabaseFolder(folder); });
}

// A slot that is filled again gives up its store, and with it the file of the club before, unless an operation still
// holds it.
void SetThreadStore(std::shared_ptr<cDatabase> store) {
  Slot() = std::move(store);
}

// A copy, by which the caller keeps the store alive while he uses it.
std::shared_ptr<cDatabase> ThreadStore() {
  if (!Slot()) {
    throw Error(ErrorNumber::NoObject, "TaviMembership",
                "Object variable not set: this thread has no membership store; use a MembershipDatabase only on the "
                "thread that created it.");
  }
  return Slot();
}

}  // namespace tavi
