#pragma once

#include <string>

#include "platform/windows/Com.h"

namespace tavi::automation {

/// The path of this library's file.
std::wstring ModulePath();

/// The type library that this library carries. Raises the system's error when it cannot be read.
windows::ComPointer<ITypeLib> LoadOwnTypeLibrary();

/// The description of one of its interfaces.
windows::ComPointer<ITypeInfo> TypeInformationOf(const IID& interfaceIdentifier);

}  // namespace tavi::automation
