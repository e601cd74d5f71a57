# SPDX-License-Identifier: Apache-2.0
# Run by CPack after it has packed. CPack gives a package with libraries scripts that call ldconfig; dpkg wants the
# trigger alone, which the package has, too.
foreach(package IN LISTS CPACK_PACKAGE_FILES)
  if(NOT package MATCHES "/libqavplatform[0-9]+_[^/]*\\.deb$")
    continue()
  endif()
  set(contents "${package}.contents")
  execute_process(COMMAND dpkg-deb -R "${package}" "${contents}" COMMAND_ERROR_IS_FATAL ANY)
  file(REMOVE "${contents}/DEBIAN/postinst" "${contents}/DEBIAN/postrm")
  execute_process(COMMAND dpkg-deb --root-owner-group -Zxz -b "${contents}" "${package}" OUTPUT_QUIET
    COMMAND_ERROR_IS_FATAL ANY)
  file(REMOVE_RECURSE "${contents}")
endforeach()
