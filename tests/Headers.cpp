// Nothing but a place for the headers that the tests have in common (see CMakeLists.txt).
