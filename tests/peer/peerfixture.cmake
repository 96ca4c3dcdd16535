# A real Modbus RTU slave we did not write (pymodbus on a socat pty pair), started and
# stopped by whoever drives it: the peer tests and the bench talk to the same one.
add_library(telvane_peer_fixture STATIC
  ${CMAKE_CURRENT_LIST_DIR}/peerslave.h ${CMAKE_CURRENT_LIST_DIR}/peerslave.cpp)
target_link_libraries(telvane_peer_fixture PUBLIC telvane_platform)
target_include_directories(telvane_peer_fixture PUBLIC ${CMAKE_CURRENT_LIST_DIR}/..)
target_compile_definitions(telvane_peer_fixture PRIVATE
  TELVANE_PEER_SLAVE_SCRIPT="${CMAKE_CURRENT_LIST_DIR}/modbus_slave.py")
