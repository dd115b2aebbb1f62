# Installs the built library into a temporary prefix and builds a small host against it with
# find_package(Core). Run by ctest with SOURCE_DIR, BUILD_DIR, WORK_DIR and GENERATOR.
file(REMOVE_RECURSE "${WORK_DIR}")
set(prefix "${WORK_DIR}/prefix")
execute_process(COMMAND ${CMAKE_COMMAND} --install "${BUILD_DIR}" --prefix "${prefix}"
    RESULT_VARIABLE result OUTPUT_QUIET)
if(result)
    message(FATAL_ERROR "cmake --install failed: ${result}")
endif()
execute_process(COMMAND ${CMAKE_COMMAND} -S "${SOURCE_DIR}/tests/package/host" -B "${WORK_DIR}/host"
        -G "${GENERATOR}" "-DCMAKE_PREFIX_PATH=${prefix}"
    RESULT_VARIABLE result)
if(result)
    message(FATAL_ERROR "configuring the host against the installed package failed")
endif()
execute_process(COMMAND ${CMAKE_COMMAND} --build "${WORK_DIR}/host" RESULT_VARIABLE result)
if(result)
    message(FATAL_ERROR "building the host against the installed package failed")
endif()
execute_process(COMMAND "${WORK_DIR}/host/package_host" RESULT_VARIABLE result
    OUTPUT_VARIABLE output)
if(NOT result EQUAL 0 OR NOT output MATCHES "Registering interfaces: OK")
    message(FATAL_ERROR "the installed host did not start the library: ${result} ${output}")
endif()
