# Addresses of BASIC for the disk ROM: writes OUTPUT, an assembly source, from the symbols of the
# images in SYMBOLS. One disk ROM serves all images, so the addresses must be the same in each.
set(names
    assign capital check_room clear_variables close_gap detokenize direct_mode empty_program
    end_with_text error_fc error_id error_ls error_sn error_tm eval_string find_line find_variable
    get_byte get_column line_number list_number new_row open_gap parse_number print_entry
    print_line_number print_list print_new_row print_text put_character put_text raise_error ready
    relink relink_program reset_temporaries run_line set_integer set_word stmt_input stop_run
    test_break text_screen_row text_string to_integer tokenize_to)
set(source "; Made by the build: where BASIC has its routines.\n")
foreach(name IN LISTS names)
  set(known)
  foreach(file IN LISTS SYMBOLS)
    file(STRINGS ${file} line REGEX "^${name}[ \t]")
    string(REGEX MATCH "[0-9A-F]+H$" address "${line}")
    if(NOT address OR (known AND NOT address STREQUAL known))
      message(FATAL_ERROR "${name} is not at one address in all BASIC images: ${file}")
    endif()
    set(known ${address})
  endforeach()
  string(APPEND source "${name} EQU ${known}\n")
endforeach()
file(WRITE ${OUTPUT} "${source}")
