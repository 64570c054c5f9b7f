# Build conventions shared by every component of the tree.

# Our own code builds warning-free; third-party code keeps its own flags.
function(tarnic_warnings target)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Werror)
endfunction()

# The product and the in-house libraries run without exceptions: a container's at() on a
# missing key ends the process.
function(tarnic_no_exceptions target)
    target_compile_options(${target} PRIVATE $<$<COMPILE_LANGUAGE:CXX>:-fno-exceptions>)
endfunction()

# One CTest-registered GoogleTest binary per component.
#   tarnic_add_test(<name> SOURCES <files...> LIBS <targets...>)
function(tarnic_add_test name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LIBS" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    tarnic_warnings(${name})
    target_link_libraries(${name} PRIVATE ${ARG_LIBS} GTest::gmock GTest::gtest_main)
    add_test(NAME ${name} COMMAND ${name})
endfunction()
