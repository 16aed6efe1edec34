# libsodium comes without a description for CMake. Finds sodium::sodium.
find_path(SODIUM_HEADERS sodium.h)
find_library(SODIUM_LIBRARY sodium)
include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(sodium REQUIRED_VARS SODIUM_LIBRARY SODIUM_HEADERS)
mark_as_advanced(SODIUM_HEADERS SODIUM_LIBRARY)
if(sodium_FOUND AND NOT TARGET sodium::sodium)
  add_library(sodium::sodium UNKNOWN IMPORTED)
  set_target_properties(sodium::sodium PROPERTIES IMPORTED_LOCATION ${SODIUM_LIBRARY}
                                                  INTERFACE_INCLUDE_DIRECTORIES ${SODIUM_HEADERS})
endif()
