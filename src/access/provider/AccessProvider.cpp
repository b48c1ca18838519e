#include "access/provider/AccessProvider.h"

#include "access/file/StatementLock.h"
#include "access/provider/AccessConnection.h"
#include "access/provider/ConnectionString.h"
#include "access/provider/ProviderError.h"

namespace tavi::access {

namespace {

class AccessProvider final : public ado::Provider {
 public:
  AccessProvider(std::shared_ptr<FileSystem> fileSystem, std::shared_ptr<const Clock> clock, ProviderOptions options)
      : fileSystem_(std::move(fileSystem)), clock_(std::move(clock)), options_(std::move(options)) {
    if (!options_.pager.writingThreads) options_.pager.writingThreads = std::make_shared<WritingThreads>();
  }

  [[nodiscard]] std::unique_ptr<ado::Connection> Open(std::string_view connectionString) const override {
    return AsProvider([&]() -> std::unique_ptr<ado::Connection> {
      const ConnectionString wanted = ParseConnectionString(connectionString);
      PagerOptions pagerOptions = options_.pager;
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
