# Gives Tovalin::tovalin (shared) and Tovalin::tovalin_static.
include(${CMAKE_CURRENT_LIST_DIR}/TovalinTargets.cmake)
