#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "access/file/Page.h"

namespace tavi::access {

/// What page 0 says about the file as a whole.
struct DatabaseHeader {
  /// Access 97: pages of 2048 bytes, only read.
  bool isJet3 = false;
  /// Bytes of a page in the file.
  std::size_t pageSize = kPageSize;
  /// Key of an encoded file, 0 for a plain one.
  std::uint32_t databaseKey = 0;
};

/// Decodes the first bytes of the file as they are stored (masked). `fileSize` is the length of the file in bytes,
/// `path` names it in errors. Raises ProviderFailure "Unrecognized database format 'PATH'. ..." with the reason for
/// what is no Jet 3 or Jet 4 database, and "Not a valid password. ..." for a file with a database password.
[[nodiscard]] DatabaseHeader DecodeHeader(std::span<const std::uint8_t> start, std::uint64_t fileSize,
                                          const std::string& path);

/// Takes the mask off bytes 0x18-0x97 of a Jet 4 page 0, or puts it on: the pager hands out and takes page 0 as it is
/// stored, masked.
void ToggleHeaderMask(Page& page);

/// XORs the bytes with the RC4 key stream of a 4-byte key (little-endian). Doing it twice gives the first bytes back.
/// Encoded files use it for whole pages, with the database key XOR the page number; the header for its masked region.
void ApplyRc4(std::uint32_t key, std::span<std::uint8_t> bytes);

}  // namespace tavi::access
