# SPDX-License-Identifier: Apache-2.0
# Run by CPack before it packs: directories are for everybody, whatever the umask of who makes the packages.
execute_process(COMMAND find "${CPACK_TEMPORARY_DIRECTORY}" -type d -exec chmod 755 {} + COMMAND_ERROR_IS_FATAL ANY)
