#include "access/file/DatabaseHeader.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <string_view>
#include <utility>

#include "access/file/EngineError.h"
#include "access/file/Format.h"

// Page 0 says what kind of file this is. Its first 24 bytes are plain, the next 128 (in Jet 3: 126) are masked with the
// key stream of a fixed key, everything behind is plain again. So the name of the engine and the version are looked at
// first, which also say how much is masked; then the mask goes, and with it come the page key and the password field.
//
// A password of Access protects nothing, as pages are not changed by it, but whoever set one does not want the file
// opened without it. It is found by the field alone: with no password the field holds its own mask, the whole days of
// the creation date, ten times over (in Jet 3: zeros). Example: 42329 days, 59 A5 00 00 59 A5 00 00 ...

namespace tavi::access {

// Key and stream begin anew with each call, as each page of an encoded file has a key of its own.
void ApplyRc4(std::uint32_t key, std::span<std::uint8_t> bytes) {
  constexpr unsigned kStateSize = 256;
  constexpr unsigned kKeySize = 4;
  std::array<std::uint8_t, kStateSize> state{};
  for (unsigned i = 0; i < kStateSize; ++i) state[i] = static_cast<std::uint8_t>(i);
  std::uint8_t mixed = 0;
  for (unsigned i = 0; i < kStateSize; ++i) {
    const auto keyByte = static_cast<std::uint8_t>(key >> (8U * (i % kKeySize)));
    mixed = static_cast<std::uint8_t>(mixed + state[i] + keyByte);
    std::swap(state[i], state[mixed]);
  }
  std::uint8_t first = 0;
  std::uint8_t second = 0;
  for (std::uint8_t& byte : bytes) {
    first = static_cast<std::uint8_t>(first + 1U);
    second = static_cast<std::uint8_t>(second + state[first]);
    std::swap(state[first], state[second]);
    byte = static_cast<std::uint8_t>(byte ^ state[static_cast<std::uint8_t>(state[first] + state[second])]);
  }
}

namespace {

namespace header = format::header;

constexpr std::size_t kDateMaskSize = 4;

[[noreturn]] void RaiseUnrecognized(const std::string& path, const std::string& reason) {
  RaiseFailure("Unrecognized database format '" + path + "'. " + reason);
}

/// Up to the zero that fills the field.
std::string EngineName(const Page& page) {
  const auto field = page.Slice(header::kEngineNameOffset, header::kEngineNameSize);
  return {field.begin(), std::find(field.begin(), field.end(), std::uint8_t{0})};
}

/// By name before version, so that files of Access 2007 and of Money, which resemble ours, are told what they are.
void CheckEngine(const Page& page, const std::string& path) {
  const std::string name = EngineName(page);
  if (name == header::kEngineNameAce) {
    RaiseUnrecognized(path,
                      "It is a file of Access 2007 or later; save it in the Access 2002-2003 format (.mdb) first.");
  }
  if (name == header::kEngineNameMoney)
    RaiseUnrecognized(path, "It is a Microsoft Money file, not an Access database.");
  const auto magic = page.Slice(header::kMagicOffset, header::kMagic.size());
  if (name != header::kEngineNameJet || !std::equal(magic.begin(), magic.end(), header::kMagic.begin())) {
    RaiseUnrecognized(path, "It is not an Access database.");
  }
  const std::uint8_t version = page.U8(header::kVersionOffset);
  if (version > header::kVersionJet4) {
    RaiseUnrecognized(path, "Its format version is " + std::to_string(version) +
                                "; only Access 97 (0) and Access 2000-2003 (1) are supported. Save it in the Access "
                                "2002-2003 format (.mdb) first.");
  }
}

// The whole days of the creation date; they are the password's mask. Any number of a damaged field is as good as none.
std::uint32_t DateMask(const Page& page) {
  const std::uint64_t low = page.U32(header::kCreationDateOffset);
  const std::uint64_t high = page.U32(header::kCreationDateOffset + 4);
  const auto days = std::bit_cast<double>((high << 32U) | low);
  constexpr double kLimit = 2147483647.0;
  // The conversion to an integer is not defined for these.
  if (!std::isfinite(days) || std::fabs(days) > kLimit) return 0;
  return static_cast<std::uint32_t>(static_cast<std::int32_t>(days));
}

/// In Jet 3 the characters have no mask of their own, so that no password is zeros.
bool HasPassword(const Page& page, bool isJet3) {
  const std::size_t size = isJet3 ? header::kJet3PasswordSize : header::kPasswordSize;
  const std::uint32_t mask = isJet3 ? 0 : DateMask(page);
  for (std::size_t i = 0; i < size; i += kDateMaskSize) {
    if (page.U32(header::kPasswordOffset + i) != mask) return true;
  }
  return false;
}

void ToggleMask(Page& page, std::size_t size) {
  ApplyRc4(header::kMaskKey, page.AllMutable().subspan(header::kMaskOffset, size));
}

}  // namespace

void ToggleHeaderMask(Page& page) {
  ToggleMask(page, header::kMaskSize);
}

DatabaseHeader DecodeHeader(std::span<const std::uint8_t> start, std::uint64_t fileSize, const std::string& path) {
  // The smaller page of the two, as the version is not known yet.
  if (fileSize < format::jet3::kPageSize || start.size() < format::jet3::kPageSize) {
    RaiseUnrecognized(path, "Its " + std::to_string(fileSize) + " bytes are less than a page of an Access database.");
  }
  Page page(format::kHeaderPage);
  // A file of Jet 3 may end behind its first 2,048 bytes; what is not there stays zero.
  page.Put(0, start.first(std::min(start.size(), kPageSize)));
  CheckEngine(page, path);

  DatabaseHeader decoded;
  decoded.isJet3 = page.U8(header::kVersionOffset) == header::kVersionJet3;
  decoded.pageSize = decoded.isJet3 ? format::jet3::kPageSize : kPageSize;
  if (fileSize < decoded.pageSize) {
    RaiseUnrecognized(path, "Its " + std::to_string(fileSize) + " bytes are less than a page of an Access database.");
  }
  ToggleMask(page, decoded.isJet3 ? header::kJet3MaskSize : header::kMaskSize);
  // 0 for plain pages; else the key of all pages but this one.
  decoded.databaseKey = page.U32(header::kDatabaseKeyOffset);
  if (HasPassword(page, decoded.isJet3)) {
    RaiseFailure("Not a valid password. '" + path +
                 "' is protected by a database password; remove the password in Access to use it here.");
  }
  return decoded;
}

}  // namespace tavi::access
