# No benchmark of Google's kind: a peer that ./bench starts beside the program.
add_executable(BareWindow BareWindow.cpp)
set_target_properties(BareWindow PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin/peer)
target_link_libraries(BareWindow PRIVATE corvellanOptions Qt6::Quick)
