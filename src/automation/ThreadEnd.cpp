// What belongs to a thread is destroyed when the thread ends. The compiler's own way keeps the library loaded until
// then, and the end of the last such thread would unload it from inside its own code. The run-time library's way only
// does what is to be done, as far as the library is still there.

extern "C" {

// NOLINTBEGIN(bugprone-reserved-identifier): the names are those of the two.
int __mingw_cxa_thread_atexit(void (*destroy)(void*), void* object, void* library);

/// Called by the compiled code for each variable of a thread that has to be destroyed.
int __cxa_thread_atexit(void (*destroy)(void*), void* object, void* library) {
  return __mingw_cxa_thread_atexit(destroy, object, library);
}
// NOLINTEND(bugprone-reserved-identifier)

}  // extern "C"
