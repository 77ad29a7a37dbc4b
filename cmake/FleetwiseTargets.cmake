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

# For builds that begin from nothing, as those of the sanitizers mostly do: the libraries' headers
# are read once for all folders without Qt, once for each with it, and once for all tests.
option(FLEETWISE_PRECOMPILE "Precompile the headers of the libraries" OFF)
set(plainHeaders
    <algorithm> <chrono> <functional> <map> <memory> <mutex> <optional> <set> <string> <string_view>
    <unordered_map> <utility> <vector> <date/tz.h> <fmt/format.h> <tl/expected.hpp>)
set(qtHeaders <QObject> <QString> <QTimer>)
set(widgetHeaders <QApplication> <QPainter> <QWidget>)

# fleetwise_precompile(TARGET WIDGETS|QT|PLAIN OWNER headers…): precompiles the libraries' headers
# and these for TARGET. Without Qt it shares those of OWNER, another such target or itself.
function(fleetwise_precompile target kind owner)
    if(NOT FLEETWISE_PRECOMPILE)
        return()
    endif()
    if(kind STREQUAL WIDGETS)
        target_precompile_headers(${target} PRIVATE ${plainHeaders} ${qtHeaders} ${widgetHeaders}
                                                    ${ARGN})
    elseif(kind STREQUAL QT)
        target_precompile_headers(${target} PRIVATE ${plainHeaders} ${qtHeaders} ${ARGN})
    elseif(target STREQUAL owner)
        target_precompile_headers(${target} PRIVATE ${plainHeaders} ${ARGN})
    else()
        target_precompile_headers(${target} REUSE_FROM ${owner})
    endif()
endfunction()

# With precompiled headers: compiles ten files of TARGET at once. What else they would take is mostly
# the headers of Qt and of the folders below. Names that they keep to themselves must differ.
function(fleetwise_unite target)
    if(FLEETWISE_PRECOMPILE)
        set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 10)
    endif()
endfunction()

# How much of Qt the folder `name` uses, as fleetwise_precompile wants it.
function(fleetwise_kind variable name)
    set(${variable} PLAIN PARENT_SCOPE)
    if(name MATCHES "^(ui|app)$")
        set(${variable} WIDGETS PARENT_SCOPE)
    elseif(name STREQUAL platform)
        set(${variable} QT PARENT_SCOPE)
    endif()
endfunction()

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

# fleetwise_layer(NAME [libraries…]): the static library fleetwise_NAME of the folder src/NAME and
# the rooms in it, linked to the layers that cmake/layers.txt allows it and to the given libraries.
function(fleetwise_layer name)
    fleetwise_sources(files ${CMAKE_CURRENT_SOURCE_DIR})
    file(GLOB rooms CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*/*.cpp
         ${CMAKE_CURRENT_SOURCE_DIR}/*/*.h)
    list(APPEND files ${rooms})
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
    fleetwise_kind(kind ${name})
    fleetwise_precompile(fleetwise_${name} ${kind} fleetwise_foundation)
    if(name MATCHES "^(monitor|platform|ui|app)$")
        fleetwise_unite(fleetwise_${name})
    endif()
endfunction()

# fleetwise_tests(NAME [libraries…]): the tests of the folder tests/NAME as one program.
function(fleetwise_tests name)
    fleetwise_sources(files ${CMAKE_CURRENT_SOURCE_DIR})
    add_executable(${name}_tests ${files})
    target_link_libraries(${name}_tests PRIVATE fleetwise_flags fleetwise_test_support ${ARGN})
    # Tests are compiled far more often than they are run.
    target_compile_options(${name}_tests PRIVATE -O0)
    fleetwise_kind(kind ${name})
    fleetwise_precompile(${name}_tests ${kind} fleetwise_test_support <gmock/gmock.h>
                         <gtest/gtest.h>)
    if(name MATCHES "^(cost|monitor|ui|app)$")
        fleetwise_unite(${name}_tests)
    endif()
    gtest_discover_tests(${name}_tests TEST_PREFIX ${name}. PROPERTIES TIMEOUT 300
                         DISCOVERY_TIMEOUT 60)
endfunction()
