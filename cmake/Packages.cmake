# Debian packages: cpack -G DEB in the build folder. Three of them: the library with the reference host, what is
# built against it, and the programs with the Python module.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME zm-hmi)
set(CPACK_PACKAGE_VENDOR "zm_hmi")
set(CPACK_PACKAGE_CONTACT "zm_hmi maintainers <maintainers@zm-hmi.invalid>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL runtime development tools)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS OFF)

set(runtime_package libzm-hmi${PROJECT_VERSION_MAJOR})
set(exactly "(= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${runtime_package})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "instrumented signals and streaming clients of a modelling host
The library that a block-diagram modelling host loads, and the reference host
that it is built, scripted and tested with.")
file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/package/triggers CONTENT "activate-noawait ldconfig\n")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${PROJECT_BINARY_DIR}/package/triggers)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libzm-hmi-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${runtime_package} ${exactly}, libboost-dev | libboost1.81-dev")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "instrumented signals and streaming clients (development files)
Headers, CMake package, pkg-config file, the contract kit's sources and a
skeleton of a host.")
set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME python3-zmhost)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION python)
math(EXPR next_minor "${Python_VERSION_MINOR} + 1")
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "${runtime_package} ${exactly}, python3 (>= ${Python_VERSION_MAJOR}.${Python_VERSION_MINOR}), python3 (<< ${Python_VERSION_MAJOR}.${next_minor}), graphviz")
set(CPACK_DEBIAN_TOOLS_DESCRIPTION "scripts and checks for modelling hosts (Python module and programs)
The Python module zmhost, the program of that name, and zm-host-contract,
which checks what an implementation of the host interface promises.")

# What Debian expects in each package beside its files.
find_program(GZIP gzip)
set(runtime_documents ${runtime_package})
set(development_documents libzm-hmi-dev)
set(tools_documents python3-zmhost)
string(TIMESTAMP debian_date "%a, %d %b %Y %H:%M:%S +0000" UTC)
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    set(package ${${component}_documents})
    set(folder ${PROJECT_BINARY_DIR}/package/${package})
    file(CONFIGURE OUTPUT ${folder}/changelog CONTENT
"zm-hmi (${PROJECT_VERSION}) unstable; urgency=medium

  * See CHANGELOG.md of the sources.

 -- zm_hmi maintainers <maintainers@zm-hmi.invalid>  ${debian_date}
")
    file(CONFIGURE OUTPUT ${folder}/copyright CONTENT
"The files of this package were built from the sources of zm_hmi ${PROJECT_VERSION}.
Copyright (C) 2026 the authors of zm_hmi. The terms are those under which you received
the sources.
")
    if(GZIP)
        execute_process(COMMAND ${GZIP} -9nf changelog WORKING_DIRECTORY ${folder})
        # Only in packages: elsewhere it would lie beside other software's documents.
        install(FILES ${folder}/changelog.gz ${folder}/copyright
            DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package} COMPONENT ${component}
        )
    endif()
endforeach()

# In the system's folders, libraries are found without a search path of their own, and Python modules are in a
# folder without the version in its name.
set(python_below_usr ${ZM_PYTHON_DIR})
file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/package/prepare.cmake @ONLY CONTENT [[
set(root ${CPACK_TEMPORARY_DIRECTORY})
file(GLOB_RECURSE files "${root}/*.so*" "${root}/*/usr/bin/zm-host-contract")
foreach(file IN LISTS files)
    if(NOT IS_SYMLINK "${file}")
        file(RPATH_REMOVE FILE "${file}")
    endif()
endforeach()
set(tools "${root}/tools/usr")
if(EXISTS "${tools}/@python_below_usr@")
    file(MAKE_DIRECTORY "${tools}/lib/python3")
    file(RENAME "${tools}/@python_below_usr@" "${tools}/lib/python3/dist-packages")
    get_filename_component(emptied "${tools}/@python_below_usr@" DIRECTORY)
    file(REMOVE_RECURSE "${emptied}")
    file(READ "${tools}/bin/zmhost" program)
    string(REPLACE "@python_below_usr@" "lib/python3/dist-packages" program "${program}")
    file(WRITE "${tools}/bin/zmhost" "${program}")
endif()
]])
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_BINARY_DIR}/package/prepare.cmake)
include(CPack)
