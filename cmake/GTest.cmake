# GoogleTest and GoogleMock: the installed package natively; built from Debian's googletest
# source package when cross compiling, since the target's libraries are not installed.
if(NOT CMAKE_CROSSCOMPILING)
    find_package(GTest CONFIG REQUIRED)
    return()
endif()

set(TARNIC_GTEST_SOURCE_DIR /usr/src/googletest
    CACHE PATH "GoogleTest sources built for the target when cross compiling")
if(NOT EXISTS ${TARNIC_GTEST_SOURCE_DIR}/CMakeLists.txt)
    message(FATAL_ERROR "No GoogleTest sources in ${TARNIC_GTEST_SOURCE_DIR} (Debian: googletest)")
endif()
set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
# Its targets come with the GTest:: aliases that the package exports.
add_subdirectory(${TARNIC_GTEST_SOURCE_DIR} ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
