# What an integrator builds against: the library and its headers, which include each other from the root
# (-I .../include/zm_hmi_foundation). The reference host goes with it where the library is linked to it.
include(GNUInstallDirs)
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
file(GLOB host_headers CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/host/*.hpp)
foreach(header IN LISTS host_headers public_headers)
    get_filename_component(folder ${header} DIRECTORY)
    install(FILES ${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/zm_hmi_foundation/${folder})
endforeach()

set(installed_libraries zm_hmi_foundation)
if(ZM_HAS_REFERENCE_HOST)
    list(APPEND installed_libraries zm_reference_host)
endif()
set_target_properties(${installed_libraries} PROPERTIES INSTALL_RPATH "$ORIGIN")
install(TARGETS ${installed_libraries} LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
