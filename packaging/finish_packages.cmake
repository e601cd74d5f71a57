# SPDX-License-Identifier: Apache-2.0
# Run by CPack after it has packed. It gives a package with libraries scripts that call ldconfig; dpkg wants the trigger
# alone, which the package has, too. And its debug symbols have the modes that the umask allows.
foreach(package IN LISTS CPACK_PACKAGE_FILES)
  if(package MATCHES "/libqavplatform(-core)?[0-9]+_[^/]*\\.deb$")
    set(mend "rm -f DEBIAN/postinst DEBIAN/postrm")
  elseif(package MATCHES "\\.ddeb$")
    set(mend "find usr -type d -exec chmod 755 {} + && find usr -type f -exec chmod 644 {} +")
  else()
    continue()
  endif()
  set(contents "${package}.contents")
  execute_process(COMMAND dpkg-deb -R "${package}" "${contents}" COMMAND_ERROR_IS_FATAL ANY)
  execute_process(COMMAND sh -c "${mend}" WORKING_DIRECTORY "${contents}" COMMAND_ERROR_IS_FATAL ANY)
  execute_process(COMMAND dpkg-deb --root-owner-group -Zxz -b "${contents}" "${package}" OUTPUT_QUIET
    COMMAND_ERROR_IS_FATAL ANY)
  file(REMOVE_RECURSE "${contents}")
endforeach()
