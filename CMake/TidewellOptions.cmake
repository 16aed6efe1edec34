# One interface target carries the language level, the warnings and the sanitizer of the whole house.
add_library(TidewellOptions INTERFACE)
target_compile_features(TidewellOptions INTERFACE cxx_std_20)
target_compile_options(TidewellOptions INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor
                                                 -Woverloaded-virtual -fno-omit-frame-pointer)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # Coroutine frames make GCC 12 report members of moved-from temporaries that nothing reads.
  target_compile_options(TidewellOptions INTERFACE -fcoroutines -Wno-maybe-uninitialized -Wno-mismatched-new-delete)
  if(CMAKE_UNITY_BUILD)
    # GCC takes sources that are compiled together for headers, in which no coroutine may use what is local to a file.
    target_compile_options(TidewellOptions INTERFACE -Wno-subobject-linkage)
  endif()
elseif(CMAKE_UNITY_BUILD)
  # A local name may be that of something in another file of its folder; GCC does not mind.
  target_compile_options(TidewellOptions INTERFACE -Wno-shadow)
endif()
target_compile_definitions(TidewellOptions INTERFACE QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_KEYWORDS
                                                     QT_NO_FOREACH QT_DISABLE_DEPRECATED_BEFORE=0x060400)
if(TIDEWELL_WARNINGS_ARE_ERRORS)
  target_compile_options(TidewellOptions INTERFACE -Werror)
endif()
if(TIDEWELL_SANITIZER MATCHES "address|fuzzer")
  target_compile_options(TidewellOptions INTERFACE -fsanitize=address,undefined -fno-sanitize-recover=all)
  # Qt and QCoro are not built with the sanitizers, so what is told of calls through their pointers would mean nothing.
  target_compile_options(TidewellOptions INTERFACE "$<$<CXX_COMPILER_ID:Clang,AppleClang>:-fno-sanitize=vptr,function>")
  # By this name of GCC's, tests ask for it.
  target_compile_definitions(TidewellOptions INTERFACE "$<$<CXX_COMPILER_ID:Clang,AppleClang>:__SANITIZE_ADDRESS__>")
  target_link_options(TidewellOptions INTERFACE -fsanitize=address,undefined)
  if(TIDEWELL_SANITIZER STREQUAL "fuzzer")
    target_compile_options(TidewellOptions INTERFACE -fsanitize=fuzzer-no-link)
  endif()
elseif(TIDEWELL_SANITIZER STREQUAL "thread")
  target_compile_options(TidewellOptions INTERFACE -fsanitize=thread)
  # As above.
  target_compile_definitions(TidewellOptions INTERFACE "$<$<CXX_COMPILER_ID:Clang,AppleClang>:__SANITIZE_THREAD__>")
  target_link_options(TidewellOptions INTERFACE -fsanitize=thread)
endif()
