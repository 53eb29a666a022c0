# Read by CPack before each kind of package.
if(CPACK_GENERATOR STREQUAL "NSIS")
  set(CPACK_PACKAGE_FILE_NAME Tarvelin-${CPACK_PACKAGE_VERSION}-Setup)
endif()
