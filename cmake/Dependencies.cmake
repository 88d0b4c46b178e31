# Boost's headers, of any release whose behaviour the library relies on: the hash of strings settles which key
# texts have the key 0, and so are not entered in a port map, and which share a key; the random generator names
# its device and its failures. Tried with a program instead of comparing version numbers.
find_path(ZM_BOOST_INCLUDE_DIR boost/version.hpp)
if(NOT ZM_BOOST_INCLUDE_DIR)
    message(FATAL_ERROR "Boost's headers are missing: install libboost1.81-dev, or name their folder "
        "with -DZM_BOOST_INCLUDE_DIR=...")
endif()
option(ZM_ACCEPT_OTHER_BOOST "Use a Boost that hashes strings or reads random numbers in another way" OFF)
if(NOT ZM_BOOST_CHECKED STREQUAL ZM_BOOST_INCLUDE_DIR AND NOT CMAKE_CROSSCOMPILING)
    try_run(boost_differences boost_compiles ${PROJECT_BINARY_DIR}/boost
        ${PROJECT_SOURCE_DIR}/cmake/BoostBehaviour.cpp
        CMAKE_FLAGS "-DINCLUDE_DIRECTORIES=${ZM_BOOST_INCLUDE_DIR};${PROJECT_SOURCE_DIR}"
        COMPILE_DEFINITIONS -DBOOST_UUID_RANDOM_PROVIDER_FORCE_POSIX
        CXX_STANDARD 20 CXX_STANDARD_REQUIRED ON
        COMPILE_OUTPUT_VARIABLE boost_compiler_output RUN_OUTPUT_VARIABLE boost_output
    )
    if(boost_compiles AND boost_differences EQUAL 0)
        set(ZM_BOOST_CHECKED ${ZM_BOOST_INCLUDE_DIR} CACHE INTERNAL "Boost headers that behave as expected")
    elseif(NOT ZM_ACCEPT_OTHER_BOOST)
        message(FATAL_ERROR "The Boost in ${ZM_BOOST_INCLUDE_DIR} does not do what the library relies on:\n"
            "${boost_output}${boost_compiler_output}\n"
            "Either install Boost 1.81 (libboost1.81-dev; -DZM_BOOST_INCLUDE_DIR=... names its folder), or accept "
            "this one with -DZM_ACCEPT_OTHER_BOOST=ON: the library works, but other texts have the key 0 or share "
            "a key, and the tests that name such texts fail.")
    endif()
endif()
add_library(zm_boost INTERFACE)
target_include_directories(zm_boost SYSTEM INTERFACE ${ZM_BOOST_INCLUDE_DIR})

if(BUILD_TESTING)
    find_package(GTest REQUIRED)
    find_path(RAPIDCHECK_INCLUDE_DIR rapidcheck.h REQUIRED)
    find_library(RAPIDCHECK_LIBRARY rapidcheck REQUIRED)
    add_library(zm_rapidcheck INTERFACE)
    target_include_directories(zm_rapidcheck SYSTEM INTERFACE ${RAPIDCHECK_INCLUDE_DIR})
    target_link_libraries(zm_rapidcheck INTERFACE ${RAPIDCHECK_LIBRARY})
endif()

# All that follows is the reference host's, and what is built on it.
if(NOT ZM_HAS_REFERENCE_HOST)
    return()
endif()

find_package(LibXml2 REQUIRED)
find_path(ZIP_INCLUDE_DIR zip.h REQUIRED)
find_library(ZIP_LIBRARY zip REQUIRED)
add_library(zm_zip INTERFACE)
target_include_directories(zm_zip SYSTEM INTERFACE ${ZIP_INCLUDE_DIR})
target_link_libraries(zm_zip INTERFACE ${ZIP_LIBRARY})
find_path(JSON_INCLUDE_DIR nlohmann/json.hpp REQUIRED)
add_library(zm_json INTERFACE)
target_include_directories(zm_json SYSTEM INTERFACE ${JSON_INCLUDE_DIR})
find_package(OpenSSL REQUIRED)
find_package(Threads REQUIRED)
find_path(MOSQUITTO_INCLUDE_DIR mosquitto.h REQUIRED)
find_library(MOSQUITTO_LIBRARY mosquitto REQUIRED)
add_library(zm_mosquitto INTERFACE)
target_include_directories(zm_mosquitto SYSTEM INTERFACE ${MOSQUITTO_INCLUDE_DIR})
target_link_libraries(zm_mosquitto INTERFACE ${MOSQUITTO_LIBRARY})
find_package(benchmark REQUIRED)
if(BUILD_TESTING)
    find_path(PUGIXML_INCLUDE_DIR pugixml.hpp REQUIRED)
    find_library(PUGIXML_LIBRARY pugixml REQUIRED)
    add_library(zm_pugixml INTERFACE)
    target_include_directories(zm_pugixml SYSTEM INTERFACE ${PUGIXML_INCLUDE_DIR})
    target_link_libraries(zm_pugixml INTERFACE ${PUGIXML_LIBRARY})
endif()

# The system's own Python, unless a virtual environment or an explicit choice says otherwise.
if(NOT DEFINED Python_EXECUTABLE AND NOT DEFINED ENV{VIRTUAL_ENV} AND EXISTS /usr/bin/python3)
    set(Python_EXECUTABLE /usr/bin/python3)
endif()
find_package(Python REQUIRED COMPONENTS Interpreter Development.Module)
find_package(pybind11 REQUIRED)
