// From a connection string to an open file. Programs write the strings that they wrote for Access:
//
//   Provider=Microsoft.Jet.OLEDB.4.0;Data Source="C:\Club;Files\ClubMembers.mdb";Mode=Read
//
// so a value with semicolons stands in quotes, items that concern other providers' features are passed over, and of an
// item that is there twice the last counts.
#include "access/provider/AccessProvider.h"

#include "access/file/EngineError.h"
#include "access/file/StatementLock.h"
#include "access/provider/AccessConnection.h"
#include "platform/values/Text.h"

namespace tavi::access {

namespace {

// Beginnings of names: versions behind them differ and make no difference here.
constexpr std::string_view kProviders[] = {"Microsoft.Jet.OLEDB", "Microsoft.ACE.OLEDB"};

/// Takes the value at `position`, quoted (a quote in it is doubled) or up to the next semicolon, and moves behind its
/// end.
std::string TakeValue(std::string_view text, std::size_t& position) {
  while (position < text.size() && text[position] == ' ') ++position;
  if (position < text.size() && (text[position] == '"' || text[position] == '\'')) {
    const char quote = text[position++];
    std::string value;
    for (;; ++position) {
      const std::size_t end = text.find(quote, position);
      if (end == std::string_view::npos) RaiseFailure("The connection string has a quote that is not closed.");
      value += text.substr(position, end - position);
      position = end + 1;
      const bool isDoubled = position < text.size() && text[position] == quote;
      if (!isDoubled) break;
      value += quote;
    }
    // What stands between the closing quote and the semicolon is dropped.
    position = std::min(text.find(';', position), text.size());
    return value;
  }
  const std::size_t end = std::min(text.find(';', position), text.size());
  std::string value = Trim(text.substr(position, end - position));
  position = end;
  return value;
}

void CheckProvider(const std::string& name) {
  for (const std::string_view known : kProviders) {
    if (EqualIgnoringCase(FirstCharacters(name, known.size()), known)) return;
  }
  RaiseFailure("The provider '" + name +
               "' of the connection string is not known here; write "
               "Provider=Microsoft.Jet.OLEDB.4.0.");
}

}  // namespace

ConnectionString ParseConnectionString(std::string_view text) {
  ConnectionString result;
  std::size_t position = 0;
  while (position < text.size()) {
    const std::size_t equals = text.find('=', position);
    if (equals == std::string_view::npos) {
      // A semicolon or blanks at the end are no item.
      if (Trim(text.substr(position)).empty()) break;
      RaiseFailure("The connection string has an item without '=': '" + std::string(text.substr(position)) + "'.");
    }
    const std::string name = Trim(text.substr(position, equals - position));
    position = equals + 1;
    std::string value = TakeValue(text, position);
    ++position;
    if (EqualIgnoringCase(name, "Provider")) CheckProvider(value);
    if (EqualIgnoringCase(name, "Data Source")) result.dataSource = value;
    // All other modes open for reading and writing.
    if (EqualIgnoringCase(name, "Mode")) result.readOnly = EqualIgnoringCase(value, "Read");
    if (EqualIgnoringCase(name, "Flush") && EqualIgnoringCase(value, "Each")) result.flush = FlushTime::EachStatement;
  }
  if (result.dataSource.empty()) RaiseFailure("The connection string names no file; write Data Source=PATH.");
  return result;
}

namespace {

/// Opens each connection with a pager of its own. What connections of one provider share is who waits for whom.
class AccessProvider final : public ado::Provider {
 public:
  AccessProvider(std::shared_ptr<FileSystem> fileSystem, std::shared_ptr<const Clock> clock, ProviderOptions options)
      : fileSystem_(std::move(fileSystem)), clock_(std::move(clock)), options_(std::move(options)) {
    // Connections of one provider would otherwise not see that they wait for each other for ever.
    if (!options_.pager.writingThreads) options_.pager.writingThreads = std::make_shared<WritingThreads>();
  }

  [[nodiscard]] std::unique_ptr<ado::Connection> Open(std::string_view connectionString) const override {
    return AsProvider([&]() -> std::unique_ptr<ado::Connection> {
      const ConnectionString wanted = ParseConnectionString(connectionString);
      PagerOptions pagerOptions = options_.pager;
      // The string can ask for less than the options allow, and for more care, never the other way round.
      pagerOptions.readOnly = pagerOptions.readOnly || wanted.readOnly;
      if (wanted.flush == FlushTime::EachStatement) pagerOptions.flush = wanted.flush;
      const std::string path = options_.nativePath ? options_.nativePath(wanted.dataSource) : wanted.dataSource;
      return std::make_unique<AccessConnection>(
          std::make_shared<OpenFile>(Pager::Open(fileSystem_, path, pagerOptions), clock_, options_.isCancelled));
    });
  }

 private:
  std::shared_ptr<FileSystem> fileSystem_;
  std::shared_ptr<const Clock> clock_;
  ProviderOptions options_;
};

}  // namespace

std::shared_ptr<const ado::Provider> MakeAccessProvider(std::shared_ptr<FileSystem> fileSystem,
                                                        std::shared_ptr<const Clock> clock, ProviderOptions options) {
  return std::make_shared<AccessProvider>(std::move(fileSystem), std::move(clock), std::move(options));
}

}  // namespace tavi::access
