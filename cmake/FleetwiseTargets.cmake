# The flags every target of ours is built with.
add_library(fleetwise_flags INTERFACE)
target_compile_features(fleetwise_flags INTERFACE cxx_std_20)
target_compile_options(
    fleetwise_flags
    INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Wold-style-cast -Woverloaded-virtual
              -Wnon-virtual-dtor -Wcast-qual -Werror)
# A designated initialiser leaves members out on purpose. GCC 12 takes an empty std::optional for an
# uninitialised value, and a concatenation of strings for one that overlaps itself.
target_compile_options(
    fleetwise_flags INTERFACE -Wno-missing-field-initializers
                              $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>
                              $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
target_include_directories(fleetwise_flags INTERFACE ${CMAKE_SOURCE_DIR}/src)

set(FLEETWISE_SANITIZE "" CACHE STRING "Sanitizers to build with, e.g. address,undefined")
if(FLEETWISE_SANITIZE)
    set(sanitize -fsanitize=${FLEETWISE_SANITIZE} -fno-omit-frame-pointer)
    if(FLEETWISE_SANITIZE MATCHES undefined)
        list(APPEND sanitize -fno-sanitize-recover=undefined)
    endif()
    target_compile_options(fleetwise_flags INTERFACE ${sanitize})
    target_link_options(fleetwise_flags INTERFACE ${sanitize})
endif()

# Sources of the folder `directory`; a file named *_linux.cpp or *_macos.cpp is built only there.
function(fleetwise_sources variable directory)
    file(GLOB files CONFIGURE_DEPENDS ${directory}/*.cpp ${directory}/*.h)
    if(APPLE)
        list(FILTER files EXCLUDE REGEX "_linux\\.cpp$")
    else()
        list(FILTER files EXCLUDE REGEX "_macos\\.cpp$")
    endif()
    set(${variable} ${files} PARENT_SCOPE)
endfunction()

# fleetwise_layer(NAME [libraries…]): the static library fleetwise_NAME of the folder src/NAME,
# linked to the layers that cmake/layers.txt allows it and to the given libraries.
function(fleetwise_layer name)
    fleetwise_sources(files ${CMAKE_CURRENT_SOURCE_DIR})
    add_library(fleetwise_${name} STATIC ${files})
    file(STRINGS ${CMAKE_SOURCE_DIR}/cmake/layers.txt rows REGEX "^${name}:")
    if(NOT rows)
        message(FATAL_ERROR "cmake/layers.txt has no row for ${name}")
    endif()
    string(REGEX REPLACE "^${name}: *" "" below "${rows}")
    separate_arguments(below)
    foreach(layer IN LISTS below)
        if(EXISTS ${CMAKE_SOURCE_DIR}/src/${layer}/CMakeLists.txt)
            target_link_libraries(fleetwise_${name} PUBLIC fleetwise_${layer})
        endif()
    endforeach()
    target_link_libraries(fleetwise_${name} PUBLIC ${ARGN} PRIVATE fleetwise_flags)
    target_include_directories(fleetwise_${name} PUBLIC ${CMAKE_SOURCE_DIR}/src)
endfunction()

# fleetwise_tests(NAME [libraries…]): the tests of the folder tests/NAME as one program.
function(fleetwise_tests name)
    fleetwise_sources(files ${CMAKE_CURRENT_SOURCE_DIR})
    add_executable(${name}_tests ${files})
    target_link_libraries(${name}_tests PRIVATE fleetwise_flags fleetwise_test_support ${ARGN})
    # Tests are compiled far more often than they are run.
    target_compile_options(${name}_tests PRIVATE -O0)
    gtest_discover_tests(${name}_tests TEST_PREFIX ${name}. PROPERTIES TIMEOUT 300
                         DISCOVERY_TIMEOUT 60)
endfunction()
