#pragma once

namespace tavi::automation {

/// Enters the classes and the type library of this library's file into the registry; every entry again, when there are
/// some. Raises the system's error where the registry cannot be written; what has been entered is taken out again then.
void Register();

/// Takes out what Register enters; what is not there does not matter. Raises the system's error when something cannot
/// be taken out, after everything else has been.
void Unregister();

}  // namespace tavi::automation
