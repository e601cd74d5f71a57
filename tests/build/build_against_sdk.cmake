# SPDX-License-Identifier: Apache-2.0
# Installs the SDK into a fresh folder, builds the plug-in against it and checks that library and manifest are there.
function(run)
  execute_process(COMMAND ${ARGN} COMMAND_ECHO STDOUT COMMAND_ERROR_IS_FATAL ANY)
endfunction()

file(REMOVE_RECURSE "${WORK_DIR}")
set(prefix "${WORK_DIR}/prefix")
run("${CMAKE_COMMAND}" --install "${BUILD_DIR}" --prefix "${prefix}" --component runtime)
run("${CMAKE_COMMAND}" --install "${BUILD_DIR}" --prefix "${prefix}" --component sdk)

# Only the four folders of the plug-in, so that nothing else of the tree can be found by accident.
foreach(folder panel editor risk exempt)
  if(EXISTS "${SOURCE_DIR}/${folder}")
    file(COPY "${SOURCE_DIR}/${folder}" DESTINATION "${WORK_DIR}/source")
  endif()
endforeach()

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
  set(ENV{CMAKE_CXX_COMPILER_LAUNCHER} "${CCACHE_PROGRAM}")
endif()
run("${CMAKE_COMMAND}" -S "${WORK_DIR}/source/panel" -B "${WORK_DIR}/build" -G "${GENERATOR}"
  "-DCMAKE_PREFIX_PATH=${prefix}" "-DCMAKE_CXX_FLAGS=${CXX_FLAGS}" -DCMAKE_UNITY_BUILD=ON)
run("${CMAKE_COMMAND}" --build "${WORK_DIR}/build")

foreach(file libQavAccountGroupRisk.so QavAccountGroupRisk.plugin.json)
  if(NOT EXISTS "${WORK_DIR}/build/${file}")
    message(FATAL_ERROR "The build against the installed SDK left no ${file}")
  endif()
endforeach()
