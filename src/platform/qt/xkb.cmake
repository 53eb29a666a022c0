# Keyboard layouts; nothing of Qt in it.
find_package(PkgConfig REQUIRED)
pkg_check_modules(XKB REQUIRED IMPORTED_TARGET xkbcommon xkbcommon-x11 xcb xcb-xkb
                  wayland-client)
add_library(tarvelin_xkb STATIC
  ${CMAKE_CURRENT_LIST_DIR}/wayland_keymap.cpp
  ${CMAKE_CURRENT_LIST_DIR}/xkb_layout.cpp
  ${CMAKE_CURRENT_LIST_DIR}/xkb_server.cpp)
target_link_libraries(tarvelin_xkb PUBLIC tarvelin_flags tarvelin_platform PkgConfig::XKB)
