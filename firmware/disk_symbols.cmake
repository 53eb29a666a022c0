# Addresses of BASIC for the disk ROM: writes OUTPUT, an assembly source, from the symbols of the
# images in SYMBOLS. One disk ROM serves all images, so the addresses must be the same in each.
set(names
    acc_from_hl acc_to_hl assign call_function capital check_room check_stack clear_variables
    close_gap convert_type copy_string detokenize direct_mode empty_program
    end_with_text error_fc error_id error_ls error_ov error_sn error_tm eval eval_string
    find_line find_variable get_address get_byte get_column get_integer line_number list_number
    make_simple make_string new_row new_statement open_gap parse_number print_entry
    print_line_number print_list print_new_row print_text push_string put_character put_text
    raise_error ready relink relink_program reset_temporaries run_line search_simple set_integer
    set_word skip_statement stmt_input stop_run take_string test_break text_screen_row
    text_string to_integer tokenize_to variable_name whole_literal)
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
