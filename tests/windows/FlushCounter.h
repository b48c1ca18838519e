#pragma once

namespace tavi::test {

/// How often this program has had the system flush a file's buffers. All calls go by the counter.
[[nodiscard]] int CountFlushes();

}  // namespace tavi::test
