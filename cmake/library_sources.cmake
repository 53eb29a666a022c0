# zlib and minizip from their sources, which scripts/library-sources.sh fetches, and the headers of
# toml++, which are the same for every system.
enable_language(C)
set(sources ${PROJECT_SOURCE_DIR}/build/sources)
if(NOT EXISTS ${sources}/complete)
  message(FATAL_ERROR "Fetch the sources of zlib and minizip first: scripts/library-sources.sh")
endif()

file(GLOB zlib_sources ${sources}/zlib/*.c)
list(FILTER zlib_sources EXCLUDE REGEX "/gz[a-z]+[.]c$") # compressed files, which nothing here opens
add_library(zlib_static STATIC ${zlib_sources})
target_include_directories(zlib_static SYSTEM PUBLIC ${sources}/zlib)
add_library(ZLIB::ZLIB ALIAS zlib_static)

set(MINIZIP_INCLUDE ${sources}/minizip)
add_library(minizip_static STATIC ${MINIZIP_INCLUDE}/unzip.c ${MINIZIP_INCLUDE}/zip.c
                                  ${MINIZIP_INCLUDE}/ioapi.c)
target_compile_definitions(minizip_static PUBLIC NOCRYPT NOUNCRYPT)
target_compile_options(minizip_static PRIVATE -w)
target_include_directories(minizip_static SYSTEM PUBLIC ${MINIZIP_INCLUDE})
target_link_libraries(minizip_static PUBLIC zlib_static)
# Their sources have names in common.
set_target_properties(zlib_static minizip_static PROPERTIES UNITY_BUILD OFF)
set(MINIZIP_LIBRARY minizip_static)

find_path(TOML_INCLUDE toml++/toml.h PATHS /usr/include NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH REQUIRED)
file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/include/toml)
file(CREATE_LINK ${TOML_INCLUDE}/toml++ ${PROJECT_BINARY_DIR}/include/toml/toml++ SYMBOLIC)
add_library(toml_headers INTERFACE)
target_include_directories(toml_headers SYSTEM INTERFACE ${PROJECT_BINARY_DIR}/include/toml)
