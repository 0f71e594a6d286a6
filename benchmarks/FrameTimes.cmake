# No benchmark of Google's kind: the whole window over stand-ins for services, which ./bench starts on a display.
set(support ${CMAKE_SOURCE_DIR}/tests/Support)
add_executable(FrameTimes FrameTimes.cpp ${support}/FakeServices.cpp ${support}/SessionFixture.cpp
    ${support}/SessionSurroundings.cpp ${support}/TestLoop.cpp)
set_target_properties(FrameTimes PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin/peer)
target_include_directories(FrameTimes PRIVATE ${CMAKE_SOURCE_DIR}/tests)
target_link_libraries(FrameTimes PRIVATE corvellanOptions Corvellan::Panel)
