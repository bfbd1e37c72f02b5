# Builds for a 64-bit Arm Mac on Linux: zig's C++ compiler and linker, and the SDK of tests/cross/sdk.
# The program that comes out is whole and signed ad hoc, but nothing here can run it.
set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_PROCESSOR arm64)
set(CMAKE_SYSTEM_VERSION 22.0)

get_filename_component(QM_ROOT "${CMAKE_CURRENT_LIST_DIR}/.." ABSOLUTE)
set(QM_CROSS "${QM_ROOT}/build/cross" CACHE PATH "Where the cross compiler and the typings are kept")
set(QM_MACSDK "${QM_ROOT}/tests/cross/sdk")

# The checks of the compiler read this file anew, with a build folder of their own.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES QM_CROSS QM_ZIGBIN)
if(NOT QM_ZIGBIN)
  execute_process(COMMAND "${QM_ROOT}/tests/cross/fetch.sh" "${QM_CROSS}" COMMAND_ERROR_IS_FATAL ANY)
  set(QM_ZIGBIN "${CMAKE_BINARY_DIR}/zigbin")
  foreach(tool "cc:cc -target aarch64-macos.13.0" "c++:c++ -target aarch64-macos.13.0" ar ranlib)
    string(REGEX REPLACE ":.*" "" name "${tool}")
    string(REGEX REPLACE ".*:" "" command "${tool}")
    file(CONFIGURE OUTPUT "${QM_ZIGBIN}/${name}" @ONLY CONTENT [[
#!/bin/sh
export ZIG_GLOBAL_CACHE_DIR='@QM_CROSS@/cache' ZIG_LOCAL_CACHE_DIR='@QM_CROSS@/cache'
exec '@QM_CROSS@/zig/zig' @command@ "$@"
]])
    file(CHMOD "${QM_ZIGBIN}/${name}" PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)
  endforeach()
endif()

foreach(language C OBJC)
  set(CMAKE_${language}_COMPILER "${QM_ZIGBIN}/cc")
endforeach()
foreach(language CXX OBJCXX)
  set(CMAKE_${language}_COMPILER "${QM_ZIGBIN}/c++")
endforeach()
set(CMAKE_AR "${QM_ZIGBIN}/ar" CACHE FILEPATH "")
set(CMAKE_RANLIB "${QM_ZIGBIN}/ranlib" CACHE FILEPATH "")
# Asked for, but never run: it would break the signature.
set(CMAKE_INSTALL_NAME_TOOL /bin/false CACHE FILEPATH "")
# A program linked without optimisation would have the C++ library compiled once more, for minutes.
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)

# The compiler carries the C headers and libSystem, and takes the system's version from -target.
set(CMAKE_OSX_SYSROOT "" CACHE STRING "")
set(CMAKE_OSX_DEPLOYMENT_TARGET "" CACHE STRING "")
set(CMAKE_CXX_FLAGS_INIT "-F${QM_MACSDK}/System/Library/Frameworks")
set(CMAKE_OBJCXX_FLAGS_INIT "${CMAKE_CXX_FLAGS_INIT} -fblocks -Wno-unused-command-line-argument")
# Unstripped, a program would hold the paths and times of its objects and differ from build to build.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-L${QM_MACSDK}/usr/lib -s")
set(CMAKE_SKIP_RPATH ON)

# Nothing of this machine's own libraries fits; what is built from source is found by name.
set(CMAKE_FIND_ROOT_PATH "${QM_MACSDK}")
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
list(APPEND CMAKE_MODULE_PATH "${CMAKE_CURRENT_LIST_DIR}/cross")
