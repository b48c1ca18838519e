#pragma once

namespace tavi::access {

/// When a finished statement is flushed to the device: a flush begins within 100 ms after the statement returned, in
/// the background; or the statement returns when the flush is over.
enum class FlushTime { Soon, EachStatement };

}  // namespace tavi::access
