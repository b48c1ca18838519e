#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "host/results/XmlElement.h"

namespace tavi::host {

/// How deep elements may lie inside one another; real files reach 8.
inline constexpr std::size_t kMaximumElementDepth = 64;
/// How many elements a document may have; those of the largest events have some ten thousand.
inline constexpr std::size_t kMaximumElements = 1'000'000;

/// Reads an XML document as result files need it, the same on every system, and gives its root element. Entities of
/// characters are resolved; an ampersand that begins none stays, because club programs forget to escape it. Comments,
/// processing instructions and document types are passed over, and nothing outside of the text is ever opened.
///
/// `text` is UTF-8; `fileName` is for messages. Raises InvalidArgument ("FILE:LINE: ...") for a text that is not
/// well-formed or holds control characters, elements that are too many or lie too deep, and a document type that
/// defines entities.
XmlElement ParseXml(std::string_view text, const std::string& fileName);

/// The number of the line (from 1) in which a byte lies.
std::size_t LineOf(std::string_view text, std::size_t offset);

}  // namespace tavi::host
