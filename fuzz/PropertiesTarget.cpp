// The properties of a table as its catalogue row holds them: what is read is written back as it was, and can be
// changed.
#include <stdexcept>

#include "access/catalog/PropertyBlob.h"
#include "fuzz/Target.h"
#include "platform/values/Error.h"

namespace {

using tavi::access::PropertyBlob;

void Require(bool holds, const char* what) {
  if (!holds) throw std::logic_error(what);
}

void Use(PropertyBlob blob) {
  // The input may have said the same in more words.
  const auto written = blob.Serialize();
  Require(PropertyBlob::Parse(written).Serialize() == written, "it is written in another way");
  blob.SetColumnText("Name", tavi::access::property_name::kDefaultValue, "'Ann'");
  blob.SetColumnFlag("Name", tavi::access::property_name::kRequired, true);
  const PropertyBlob again = PropertyBlob::Parse(blob.Serialize());
  Require(again.ColumnFlag("name", tavi::access::property_name::kRequired) == true, "a flag is lost");
  Require(again.ColumnText("name", tavi::access::property_name::kDefaultValue) == "'Ann'", "a text is lost");
  blob.RemoveColumn("NAME");
  Require(!blob.ColumnFlag("Name", tavi::access::property_name::kRequired), "a column is still there");
  static_cast<void>(PropertyBlob::Parse(blob.Serialize()));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    Use(PropertyBlob::Parse({data, size}));
  } catch (const tavi::Error& error) {
    Require(!error.Description().empty(), "an error without a description");
  }
  return 0;
}
