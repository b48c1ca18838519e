#pragma once

#include <windows.h>

#include <unknwn.h>

#include <vector>

namespace tavi::automation {

/// A class that programs can create: its identifier, its name behind "TaviMembership.", and how a new object is made.
struct CreatableClass {
  CLSID identifier;
  const wchar_t* name;
  const wchar_t* description;
  /// The interface of its own; its objects have the usual ones besides.
  IID interfaceIdentifier;
  /// A new object with one reference; may throw.
  IUnknown* (*create)();
};

/// The classes of the server.
const std::vector<CreatableClass>& CreatableClasses();

/// A new class object for a class identifier, or null when the class is not one of the server's.
IClassFactory* MakeClassFactory(REFCLSID identifier);

}  // namespace tavi::automation
