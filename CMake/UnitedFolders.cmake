# Where CMAKE_UNITY_BUILD is set, the sources of a folder are compiled in one go: nearly all of the compiler's time goes to
# the headers that they share. What is local to a file has a name of its own in its folder, therefore.
#   unite_folders(TARGET)
function(unite_folders TARGET)
  get_target_property(SOURCES ${TARGET} SOURCES)
  foreach(SOURCE ${SOURCES})
    cmake_path(RELATIVE_PATH SOURCE BASE_DIRECTORY ${PROJECT_SOURCE_DIR} OUTPUT_VARIABLE GROUP)
    cmake_path(GET GROUP PARENT_PATH GROUP)
    string(REPLACE "/" "-" GROUP "${GROUP}")
    set_property(SOURCE ${SOURCE} PROPERTY UNITY_GROUP "${GROUP}")
  endforeach()
  set_target_properties(${TARGET} PROPERTIES UNITY_BUILD_MODE GROUP)
endfunction()
