# No benchmark of Google's kind: a peer that ./bench starts beside the program.
pkg_check_modules(pulseSimple REQUIRED IMPORTED_TARGET libpulse-simple)
add_executable(BareAudioPipe BareAudioPipe.cpp)
set_target_properties(BareAudioPipe PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin/peer)
target_link_libraries(BareAudioPipe PRIVATE corvellanOptions PkgConfig::pulseSimple Qt6::WebSockets)
