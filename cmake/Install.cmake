# What an integrator builds against: the library, host/, the reference host where the library is linked to it,
# a CMake package (find_package(zm_hmi CONFIG)), a pkg-config file, and the contract kit's sources. Headers
# include each other from the root (-I .../include/zm_hmi_foundation). Components: runtime, development, tools.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/zm_hmi)
set(include_dir ${CMAKE_INSTALL_INCLUDEDIR}/zm_hmi_foundation)

set(public_headers
    hmi/HMIEngineUtils.hpp
    hmi/InstrumentedSignals.hpp
    hmi/ModelObservers.hpp
    hmi/SignalClient.hpp
    hmi/SignalSpecification.hpp
    hmi/StreamingClients.hpp
    hmi_foundation/Export.hpp
    hmi_foundation/Initialization.hpp
    hmi_foundation/ModelPath.hpp
    streamout/FileRecordingContext.hpp
    streamout/StreamOutBlockContext.hpp
    streamout/StreamOutBlockRegistry.hpp
    streamout/WksRecordingContext.hpp
)
# With them, what they include.
set(headers_to_read ${public_headers})
while(headers_to_read)
    list(POP_FRONT headers_to_read header)
    file(STRINGS ${PROJECT_SOURCE_DIR}/${header} includes REGEX "^#include \"(hmi|hmi_foundation|streamout)/")
    foreach(include IN LISTS includes)
        string(REGEX REPLACE "^#include \"(.*)\".*" "\\1" included ${include})
        if(NOT included IN_LIST public_headers)
            list(APPEND public_headers ${included})
            list(APPEND headers_to_read ${included})
        endif()
    endforeach()
endwhile()
file(GLOB host_headers CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/host/*.hpp)
foreach(header IN LISTS host_headers public_headers)
    get_filename_component(folder ${header} DIRECTORY)
    install(FILES ${header} DESTINATION ${include_dir}/${folder} COMPONENT development)
endforeach()

set(installed_targets zm_host zm_hmi_foundation)
if(ZM_HAS_REFERENCE_HOST)
    list(APPEND installed_targets zm_reference_host)
    # Beside host/: what programs and tests need to look inside and to add functions by name.
    install(DIRECTORY ${PROJECT_SOURCE_DIR}/reference_host DESTINATION ${include_dir} COMPONENT development
        FILES_MATCHING PATTERN "*.hpp"
    )
endif()
set_target_properties(zm_host PROPERTIES EXPORT_NAME host)
set_target_properties(zm_hmi_foundation PROPERTIES EXPORT_NAME library)
if(ZM_HAS_REFERENCE_HOST)
    set_target_properties(zm_reference_host PROPERTIES EXPORT_NAME reference_host)
endif()
install(TARGETS ${installed_targets} EXPORT zm_hmi
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development
    INCLUDES DESTINATION ${include_dir}
)
install(EXPORT zm_hmi NAMESPACE zm_hmi:: FILE zm_hmi-targets.cmake DESTINATION ${package_dir} COMPONENT development)
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/zm_hmi-config.cmake.in
    ${PROJECT_BINARY_DIR}/package/zm_hmi-config.cmake
    INSTALL_DESTINATION ${package_dir} PATH_VARS CMAKE_INSTALL_DATADIR
)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/package/zm_hmi-config-version.cmake
    COMPATIBILITY SameMinorVersion
)
install(FILES ${PROJECT_BINARY_DIR}/package/zm_hmi-config.cmake
    ${PROJECT_BINARY_DIR}/package/zm_hmi-config-version.cmake
    DESTINATION ${package_dir} COMPONENT development
)
file(RELATIVE_PATH pc_to_prefix /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
if(ZM_HAS_REFERENCE_HOST)
    set(pc_host_library " -lzm_reference_host")
else()
    set(pc_host_library "")
endif()
configure_file(${PROJECT_SOURCE_DIR}/cmake/zm_hmi.pc.in ${PROJECT_BINARY_DIR}/package/zm_hmi.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/package/zm_hmi.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
    COMPONENT development
)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/contract DESTINATION ${CMAKE_INSTALL_DATADIR}/zm_hmi COMPONENT development
    FILES_MATCHING PATTERN "*.[chi]pp" PATTERN "*.inc" PATTERN "ReferenceHostSetUp.cpp" EXCLUDE
)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples/skeleton_host
    DESTINATION ${CMAKE_INSTALL_DATADIR}/zm_hmi COMPONENT development
)

if(ZM_HAS_REFERENCE_HOST)
    set_target_properties(zm_hmi_foundation zm_reference_host PROPERTIES INSTALL_RPATH "$ORIGIN")
    file(RELATIVE_PATH bin_to_lib /prefix/${CMAKE_INSTALL_BINDIR} /prefix/${CMAKE_INSTALL_LIBDIR})
    set_target_properties(zm-host-contract PROPERTIES INSTALL_RPATH "$ORIGIN/${bin_to_lib}")
    install(TARGETS zm-host-contract RUNTIME COMPONENT tools)
    include(${PROJECT_SOURCE_DIR}/cmake/InstallPython.cmake)
endif()
if(ZM_HAS_REFERENCE_HOST AND PROJECT_IS_TOP_LEVEL)
    include(${PROJECT_SOURCE_DIR}/cmake/Packages.cmake)
endif()
