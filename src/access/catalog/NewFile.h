#pragma once

#include <array>
#include <vector>

#include "access/file/Page.h"
#include "platform/values/Date.h"

namespace tavi::access {

/// What a header says of the making of a file. The security ids in the system tables are masked with bytes that depend
/// on the date in a way that is not known; date and masked administrator are only good together.
struct NewFileStamp {
  std::uint64_t creationDate;               ///< the bits of the date (a double, days since 30 December 1899)
  std::array<std::uint8_t, 2> maskedAdmin;  ///< the administrator's security id as masked under that date
  std::uint16_t build;                      ///< build number of the engine that made the file
};

/// Stamps of files that database engines made.
inline constexpr NewFileStamp kStampOf2015{0x40E4AB3E3BD3853E, {0x64, 0x8B}, 9756};
inline constexpr NewFileStamp kStampOf2017{0x40E4EC4F6BD4AF81, {0x07, 0xE8}, 9756};
inline constexpr NewFileStamp kStampOf2004{0x40E29EF7B32F9559, {0xE5, 0xA3}, 9756};

/// Writes the map of free pages (page 1) of a file that has only the pages with fixed places: all others are free.
void FormatGlobalMap(Page& page);

/// The pages of a new, empty Jet 4 file: header, free-page map, the four system tables with their maps and indexes, and
/// the rows that every file has. `now` is the creation time in these rows.
std::vector<Page> MakeNewFile(Date now, const NewFileStamp& stamp = kStampOf2015);

}  // namespace tavi::access
