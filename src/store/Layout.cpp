#include "store/LayoutCheck.h"
#include "store/cDatabase.h"

namespace tavi {

void cDatabase::CheckLayout() {
  LayoutCheck(*this, fieldLimitMessageShown_).Run();
}

std::unique_ptr<ado::Recordset> cDatabase::OpenSettingsRow() {
  auto settings = OpenRecordset("Settings", ado::CursorType::Dynamic, true);
  if (!settings->AtEnd()) return settings;
  settings->AddNew();
  settings->Set("MasterPointMethod", std::int16_t{0});
  settings->Set("LastMPCertificate", std::int32_t{0});
  settings->Set("LastMPUploadNo", std::int32_t{0});
  settings->Set("MPCertificatePrefix", std::string());
  settings->Set("CountyList", std::string());
  settings->Update();
  return settings;
}

}  // namespace tavi
