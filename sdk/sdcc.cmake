# Toolchain file of CMake: C programs for the Colour Genie, by sdcc.
#
#   cmake -S PROGRAM -B build -DCMAKE_TOOLCHAIN_FILE=.../sdk/sdcc.cmake
#
# There project(NAME C) and add_executable(NAME SOURCE...) make NAME.cmd, a load module, and NAME.cas,
# a cassette. The library of this folder is compiled with the program.
set(CMAKE_SYSTEM_NAME Generic)
set(CMAKE_SYSTEM_PROCESSOR z80)
find_program(CMAKE_C_COMPILER sdcc REQUIRED)
find_program(SDCC_ASSEMBLER sdasz80 REQUIRED)
find_program(SDCC_OBJCOPY sdobjcopy REQUIRED)
# CMake's tests of the compiler take neither start-up code nor library.
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
get_property(trying GLOBAL PROPERTY IN_TRY_COMPILE)
# --debug makes the .cdb file.
set(CMAKE_C_FLAGS_INIT "-mz80 --std-c11 --debug")
if(NOT trying)
  set(CMAKE_PROJECT_INCLUDE ${CMAKE_CURRENT_LIST_DIR}/library.cmake)
endif()
