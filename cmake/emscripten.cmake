# Programs as WebAssembly for browsers and node, built with the distribution's Emscripten.
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../scripts/node.sh)
include(/usr/share/emscripten/cmake/Modules/Platform/Emscripten.cmake)
# The linker's scripts do not look where the distribution has their libraries.
set(CMAKE_C_LINKER_LAUNCHER ${CMAKE_COMMAND} -E env NODE_PATH=/usr/share/nodejs)
set(CMAKE_CXX_LINKER_LAUNCHER ${CMAKE_C_LINKER_LAUNCHER})
# What its standard library has not got yet.
include_directories(BEFORE SYSTEM ${CMAKE_CURRENT_LIST_DIR}/emscripten)
# What browsers have had since 2021: smaller and faster code for bytes, words and copies.
add_compile_options(-msign-ext -mnontrapping-fptoint -mbulk-memory $<$<COMPILE_LANGUAGE:CXX>:-fno-rtti>)
