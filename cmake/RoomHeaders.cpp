// Nothing but a place for the headers that the rooms have in common (see CMakeLists.txt).
