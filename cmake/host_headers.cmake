# Header-only libraries of the system that builds, for another one. The directory where
# Debian keeps them holds the headers of its own C library too, which must stay unseen.
find_path(host_headers CLI/CLI.hpp PATHS /usr/include NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH
                                         REQUIRED)
set(linked_headers ${PROJECT_BINARY_DIR}/host_headers)
file(MAKE_DIRECTORY ${linked_headers})
file(CREATE_LINK ${host_headers}/CLI ${linked_headers}/CLI SYMBOLIC)
add_library(CLI11::CLI11 INTERFACE IMPORTED)
target_include_directories(CLI11::CLI11 SYSTEM INTERFACE ${linked_headers})
