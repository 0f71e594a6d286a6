# No benchmark of Google's kind: a voice that ./bench listens to.
add_executable(SpeechTimes SpeechTimes.cpp)
set_target_properties(SpeechTimes PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin/peer)
target_link_libraries(SpeechTimes PRIVATE corvellanOptions Corvellan::LinuxSpeech Corvellan::SpeechService)
