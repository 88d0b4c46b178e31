# The Python module where the system's Python looks for it, and the program "zmhost". Python's folder depends on
# the prefix: /usr is the distribution's own, everything else has the version in its name.
set(ZM_PYTHON_DIR lib/python${Python_VERSION_MAJOR}.${Python_VERSION_MINOR}/dist-packages
    CACHE STRING "Folder of Python modules below the prefix (lib/python3/dist-packages for /usr)"
)
file(RELATIVE_PATH library_directory /prefix/${ZM_PYTHON_DIR}/zmhost /prefix/${CMAKE_INSTALL_LIBDIR})
file(RELATIVE_PATH python_directory /prefix/${CMAKE_INSTALL_BINDIR} /prefix/${ZM_PYTHON_DIR})
set(library_file libzm_hmi_foundation.so.${PROJECT_VERSION_MAJOR})
configure_file(${PROJECT_SOURCE_DIR}/python/_location.py.in ${PROJECT_BINARY_DIR}/package/_location.py @ONLY)
configure_file(${PROJECT_SOURCE_DIR}/python/zmhost.in ${PROJECT_BINARY_DIR}/package/zmhost @ONLY)

set_target_properties(zm_python PROPERTIES INSTALL_RPATH "$ORIGIN/${library_directory}")
install(TARGETS zm_python LIBRARY DESTINATION ${ZM_PYTHON_DIR}/zmhost COMPONENT tools)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/python/zmhost/ DESTINATION ${ZM_PYTHON_DIR}/zmhost COMPONENT tools
    FILES_MATCHING PATTERN "*.py" PATTERN "*.pyi" PATTERN "py.typed" PATTERN "__pycache__" EXCLUDE
)
install(FILES ${PROJECT_BINARY_DIR}/python/zmhost/_help.json DESTINATION ${ZM_PYTHON_DIR}/zmhost COMPONENT tools)
install(FILES ${PROJECT_BINARY_DIR}/package/_location.py DESTINATION ${ZM_PYTHON_DIR}/zmhost COMPONENT tools)
install(PROGRAMS ${PROJECT_BINARY_DIR}/package/zmhost TYPE BIN COMPONENT tools)

# The web page of live values, with what ./dev live has brought from npm.
install(DIRECTORY ${PROJECT_SOURCE_DIR}/live/page/ DESTINATION ${ZM_PYTHON_DIR}/zmhost/page COMPONENT tools
    FILES_MATCHING PATTERN *.html PATTERN *.js PATTERN *.css PATTERN *.svg
)
install(FILES ${PROJECT_BINARY_DIR}/python/zmhost/page/uPlot.iife.min.js
    ${PROJECT_BINARY_DIR}/python/zmhost/page/uPlot.min.css
    DESTINATION ${ZM_PYTHON_DIR}/zmhost/page COMPONENT tools OPTIONAL
)
