# What project() brings with the toolchain: the start-up code, the library, and how a program is linked.
if(TARGET genie)
  return()
endif()
set(sdk ${CMAKE_CURRENT_LIST_DIR})
set(GENIE_STACK 1024 CACHE STRING "Bytes of the stack")

# What depends on headers: Ninja asks the preprocessor, make looks by itself.
set(CMAKE_DEPFILE_FLAGS_C "-Wp-MMD,<DEP_FILE> -Wp-MT,<DEP_TARGET>")

set(start ${CMAKE_BINARY_DIR}/genie_start)
file(CONFIGURE OUTPUT ${start}.s CONTENT "STACK_SIZE = @GENIE_STACK@\n.include \"@sdk@/crt0.s\"\n" @ONLY)
add_custom_command(OUTPUT ${start}.rel
                   COMMAND ${SDCC_ASSEMBLER} -plosgff ${start}.rel ${start}.s
                   DEPENDS ${start}.s ${sdk}/crt0.s VERBATIM)
add_custom_target(genie_start DEPENDS ${start}.rel)

file(GLOB sources CONFIGURE_DEPENDS ${sdk}/src/*.c)
add_library(genie STATIC ${sources})
target_include_directories(genie PUBLIC ${sdk}/include)
add_dependencies(genie genie_start)
set_property(TARGET genie PROPERTY INTERFACE_LINK_DEPENDS ${start}.rel ${sdk}/modules.cmake)

# The program begins at 5800, where BASIC has its own, and its data follow the code.
set(CMAKE_C_LINK_EXECUTABLE
    "<CMAKE_C_COMPILER> <FLAGS> --no-std-crt0 --code-loc 0x5800 --data-loc 0 <CMAKE_C_LINK_FLAGS> <LINK_FLAGS> -o <TARGET> ${start}.rel <OBJECTS> <LINK_LIBRARIES>"
    "${CMAKE_COMMAND} -D OBJCOPY=${SDCC_OBJCOPY} -D IHX=<TARGET> -P ${sdk}/modules.cmake")
link_libraries(genie)
