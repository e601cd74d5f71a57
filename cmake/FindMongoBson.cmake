# SPDX-License-Identifier: Apache-2.0
# The BSON classes of the legacy MongoDB C++ driver (Debian: libmongoclient-dev), which ships no CMake package.
# Only <mongo/bson/bson.h> is used.
find_path(MongoBson_INCLUDE_DIR mongo/bson/bson.h)
find_library(MongoBson_LIBRARY mongoclient)
include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(MongoBson REQUIRED_VARS MongoBson_LIBRARY MongoBson_INCLUDE_DIR)
if(MongoBson_FOUND AND NOT TARGET MongoBson::MongoBson)
  add_library(MongoBson::MongoBson UNKNOWN IMPORTED)
  set_target_properties(MongoBson::MongoBson PROPERTIES
    IMPORTED_LOCATION "${MongoBson_LIBRARY}"
    INTERFACE_INCLUDE_DIRECTORIES "${MongoBson_INCLUDE_DIR}")
endif()
mark_as_advanced(MongoBson_INCLUDE_DIR MongoBson_LIBRARY)
