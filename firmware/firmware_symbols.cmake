# Writes OUTPUT, an array of the firmware's names, from the symbol files in SYMBOLS, which stand in
# the order of the bits of firmware_symbols.h.
#
# Labels are in small letters; local ones have no names. Of the names in capitals, which are numbers
# as well, those count that are cells of BASIC or the disk ROM, or one of the areas below.
cmake_minimum_required(VERSION 3.25)
set(areas GRAPHICS_SCREEN DISK_ROM DISK_START DISK_PROBE COLOUR_RAM CHARACTER_RAM KEYBOARD
          DRIVE_SELECT FDC_STATUS FDC_TRACK FDC_SECTOR FDC_DATA)
# Numbers that look like cells, and what only another name's place is.
set(no_cells FKEY_END LAST_ROW SCREEN_END START_STACK TAPE_ROOM)
# Entries for programs that are a jump in the assembly, without a label.
set(entries 0000 power_on 0008 rst_syntax 0010 rst_next_character 0018 rst_compare 0020 rst_type
            0028 rst_28 0030 rst_30 0038 rst_interrupt 003B printer_entry 0040 line_entry
            0049 key_wait_entry 0066 reset_entry 01C9 clear_screen_entry 1A19 ready_entry
            28A7 text_entry 3852 fill_graphics_entry 38A9 graphics_entry)
# The cells that programs know are told first, and go before others at the same address.
file(STRINGS ${CELLS} lines REGEX "^[A-Z][A-Z0-9_]+[ \t]+EQU")
set(known)
foreach(line IN LISTS lines)
  string(REGEX MATCH "^[A-Z0-9_]+" name "${line}")
  set(known_${name} 1)
endforeach()

set(all)
while(entries)
  list(POP_FRONT entries address name)
  list(APPEND all "${address} 0 ${name}")
  set("images_${address} 0 ${name}" 7)
endwhile()
set(bit 1)
foreach(file IN LISTS SYMBOLS)
  file(STRINGS ${file} lines REGEX "^[A-Za-z]")
  foreach(line IN LISTS lines)
    string(REGEX MATCH "^([A-Za-z0-9_]+)[ \t]+EQU 0([0-9A-F]+)H$" whole "${line}")
    set(name "${CMAKE_MATCH_1}")
    set(address "${CMAKE_MATCH_2}")
    if(name MATCHES "^[A-Z0-9_]+$")
      if(NOT name IN_LIST areas AND NOT address MATCHES "^4[0-7]" OR name IN_LIST no_cells)
        continue()
      endif()
      set(rank 2)
      if(known_${name})
        set(rank 0)
      endif()
    elseif(name MATCHES "_end$")
      set(rank 3)
    else()
      set(rank 1)
    endif()
    # The disk ROM is assembled with BASIC's addresses, which BASIC's own file has.
    if(bit EQUAL 8 AND address MATCHES "^[0-3]")
      continue()
    endif()
    set(key "${address} ${rank} ${name}")
    if(NOT DEFINED "images_${key}")
      set("images_${key}" 0)
      list(APPEND all "${key}")
    endif()
    math(EXPR "images_${key}" "${images_${key}} | ${bit}")
  endforeach()
  math(EXPR bit "${bit} * 2")
endforeach()
list(SORT all)

set(source "// Made by the build from the firmware's symbols.\n#include \"firmware/firmware_symbols.h\"\n\n")
string(APPEND source "static constexpr firmware_symbol symbols[] = {\n")
foreach(key IN LISTS all)
  string(REGEX MATCH "^([0-9A-F]+) [0-9] (.*)$" whole "${key}")
  string(APPEND source "    {0x${CMAKE_MATCH_1}, ${images_${key}}, \"${CMAKE_MATCH_2}\"},\n")
endforeach()
string(APPEND source "};\nconst std::span<const firmware_symbol> firmware_symbols = symbols;\n")
file(WRITE ${OUTPUT} "${source}")
