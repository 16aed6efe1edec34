# Homebrew keeps ICU out of the folders that are searched, because macOS has one of its own without headers.
if(CMAKE_HOST_APPLE AND NOT ICU_ROOT)
  execute_process(COMMAND brew --prefix icu4c OUTPUT_VARIABLE ICU_ROOT OUTPUT_STRIP_TRAILING_WHITESPACE)
endif()
