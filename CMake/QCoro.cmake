# QCoro comes from the system where it is packaged (Debian, Ubuntu). Homebrew does not package it: there a fixed release
# is fetched, and its hash is checked.
find_package(QCoro6 0.8 QUIET COMPONENTS Core)
if(NOT QCoro6_FOUND)
  include(FetchContent)
  foreach(part EXAMPLES QTDBUS QTNETWORK QTWEBSOCKETS QTQUICK QML QTTEST)
    set(QCORO_WITH_${part} OFF)
  endforeach()
  set(QCORO_BUILD_EXAMPLES OFF)
  set(BUILD_TESTING OFF)
  set(BUILD_SHARED_LIBS OFF)
  set(USE_QT_VERSION 6)
  FetchContent_Declare(
    qcoro URL https://github.com/danvratil/qcoro/archive/refs/tags/v0.10.0.tar.gz
    URL_HASH SHA256=b7c8f00273ad27d85814bf4ec93eb6922c75656800a61d11854d36355a4a1aec
    DOWNLOAD_EXTRACT_TIMESTAMP OFF)
  FetchContent_MakeAvailable(qcoro)
  unset(BUILD_TESTING)
endif()
