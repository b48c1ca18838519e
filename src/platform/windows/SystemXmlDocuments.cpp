#include "platform/windows/SystemServices.h"

#include "platform/windows/Com.h"

// Behind the headers that it needs.
#include <msxml2.h>

namespace tavi {
namespace {

using windows::AutomationText;
using windows::ComPointer;

// The service in its version 6.0, and in version 3.0 for systems that lack it.
constexpr GUID kNewestDocument = {0x88D96A05, 0xF192, 0x11D4, {0xA6, 0x5F, 0x00, 0x40, 0x96, 0x32, 0x51, 0xE5}};
constexpr GUID kOldestDocument = {0xF5078F32, 0xC551, 0x11D3, {0x89, 0xB9, 0x00, 0x00, 0xF8, 0x1F, 0xE2, 0x21}};

/// A text as the kind of argument that the service takes; the text outlives it.
VARIANT Argument(const AutomationText& text) {
  VARIANT argument{};
  argument.vt = VT_BSTR;
  argument.bstrVal = text.Get();
  return argument;
}

/// A document of the service. Every call may fail, and each failure names the file: Check adds what was being done, in
/// the words that end the sentence "The settings file ... cannot be ...". Elements are compared by name, as they are
/// written, and not by a path of the service's own language, in which a name could mean something else.
class SystemXmlDocument : public SettingsDocument {
 public:
  explicit SystemXmlDocument(const std::string& path) : path_(path) {
    Create();
    // Loaded when the call returns; without checking against a document type; without fetching what the file refers to,
    // which may be on another machine.
    Check(document_->put_async(VARIANT_FALSE), "loaded");
    Check(document_->put_validateOnParse(VARIANT_FALSE), "loaded");
    Check(document_->put_resolveExternals(VARIANT_FALSE), "loaded");
    const AutomationText name(path_);
    VARIANT_BOOL isLoaded = VARIANT_FALSE;
    const HRESULT result = document_->load(Argument(name), &isLoaded);
    // A file that is no XML is no failure of the call: only the second answer tells.
    if (FAILED(result) || isLoaded == VARIANT_FALSE) RaiseParseError(result);
  }

  [[nodiscard]] std::optional<std::string> Text(const std::vector<std::string>& path) const override {
    ComPointer<IXMLDOMNode> node = Document();
    for (const std::string& name : path) {
      node = Child(node, name);
      if (!node) return std::nullopt;
    }
    AutomationText text;
    Check(node->get_text(text.Receive()), "read");
    return text.ToUtf8();
  }

  void SetText(const std::vector<std::string>& path, std::string_view text) override {
    ComPointer<IXMLDOMNode> node = Document();
    for (const std::string& name : path) {
      ComPointer<IXMLDOMNode> child = Child(node, name);
      node = child ? std::move(child) : NewChild(node, name);
    }
    Check(node->put_text(AutomationText(text).Get()), "changed");
  }

  void Save() override {
    const AutomationText name(path_);
    Check(document_->save(Argument(name)), "written");
  }

 private:
  /// The newest service that this machine has.
  void Create() {
    HRESULT result = E_FAIL;
    for (const GUID& service : {kNewestDocument, kOldestDocument}) {
      result =
          ::CoCreateInstance(service, nullptr, CLSCTX_INPROC_SERVER, IID_IXMLDOMDocument, document_.ReceiveUntyped());
      if (SUCCEEDED(result)) return;
    }
    Check(result, "loaded, because the XML document service is missing");
  }

  /// The document as a node, where every path begins.
  [[nodiscard]] ComPointer<IXMLDOMNode> Document() const {
    ComPointer<IXMLDOMNode> node;
    Check(document_->QueryInterface(IID_IXMLDOMNode, node.ReceiveUntyped()), "read");
    return node;
  }

  /// The first child element of this name; none when there is none.
  [[nodiscard]] ComPointer<IXMLDOMNode> Child(const ComPointer<IXMLDOMNode>& parent, const std::string& name) const {
    ComPointer<IXMLDOMNode> child;
    Check(parent->get_firstChild(child.Receive()), "read");
    while (child) {
      DOMNodeType type = NODE_INVALID;
      AutomationText childName;
      Check(child->get_nodeType(&type), "read");
      Check(child->get_nodeName(childName.Receive()), "read");
      if (type == NODE_ELEMENT && childName.ToUtf8() == name) return child;
      // Received into a pointer of its own: receiving gives the old reference back first, and the call is one of that
      // object.
      ComPointer<IXMLDOMNode> next;
      Check(child->get_nextSibling(next.Receive()), "read");
      child = std::move(next);
    }
    return {};
  }

  ComPointer<IXMLDOMNode> NewChild(const ComPointer<IXMLDOMNode>& parent, const std::string& name) {
    ComPointer<IXMLDOMElement> element;
    Check(document_->createElement(AutomationText(name).Get(), element.Receive()), "given an element \"" + name + "\"");
    ComPointer<IXMLDOMNode> child;
    Check(parent->appendChild(element.Get(), child.Receive()), "given an element \"" + name + "\"");
    return child;
  }

  void Check(HRESULT result, const std::string& action) const {
    if (SUCCEEDED(result)) return;
    windows::Require(result, "The settings file " + path_ + " cannot be " + action);
  }

  /// Why a file was not loaded, as the service tells it: a number, a line and a reason. A missing file is told in this
  /// way too. The number is a failure even where the service gives none, because 0 would be taken for success.
  [[noreturn]] void RaiseParseError(HRESULT result) const {
    ComPointer<IXMLDOMParseError> parseError;
    AutomationText reason;
    long line = 0;
    long code = result;
    if (SUCCEEDED(document_->get_parseError(parseError.Receive())) && parseError) {
      static_cast<void>(parseError->get_errorCode(&code));
      static_cast<void>(parseError->get_line(&line));
      static_cast<void>(parseError->get_reason(reason.Receive()));
    }
    throw Error(
        code < 0 ? code : static_cast<long>(E_FAIL), "TaviMembership",
        "The settings file " + path_ + " cannot be loaded (line " + std::to_string(line) + "): " + reason.ToUtf8());
  }

  // First, so that it outlives the document.
  windows::ComApartment apartment_;
  std::string path_;
  ComPointer<IXMLDOMDocument> document_;
};

}  // namespace

std::unique_ptr<SettingsDocument> SystemXmlDocuments::Load(const std::string& path) const {
  return std::make_unique<SystemXmlDocument>(path);
}

}  // namespace tavi
