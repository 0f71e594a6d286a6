# One target a folder: the linker then enforces who may know whom.

add_library(corvellanOptions INTERFACE)
target_compile_options(corvellanOptions INTERFACE -Wall -Wextra -Wpedantic -Werror=switch -Werror=return-type
    -Wno-unknown-warning-option -Wno-missing-designated-field-initializers)
target_compile_definitions(corvellanOptions INTERFACE QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII
   )
if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    target_link_options(corvellanOptions INTERFACE -fuse-ld=lld-19)
endif()
if(CORVELLAN_SANITIZE)
    target_compile_options(corvellanOptions INTERFACE -fsanitize=${CORVELLAN_SANITIZE} -fno-omit-frame-pointer -g1)
    target_link_options(corvellanOptions INTERFACE -fsanitize=${CORVELLAN_SANITIZE})
    if(CORVELLAN_SANITIZE MATCHES "undefined")
        target_compile_options(corvellanOptions INTERFACE -fno-sanitize-recover=undefined)
    endif()
endif()

# What nearly every source includes is parsed once a build, which halves the processor time of a build. Sources
# still include what they use: the release is built without.
option(CORVELLAN_PRECOMPILED "Parse the common headers of Qt and of the standard library once" ON)
set(CORVELLAN_COMMON_HEADERS
    <algorithm> <array> <atomic> <chrono> <deque> <expected> <functional> <map> <memory> <mutex> <optional> <span>
    <stop_token> <string> <string_view> <thread> <utility> <variant> <vector>
    <QByteArray> <QCoreApplication> <QCoroTask> <QDateTime> <QDir> <QFile> <QFileInfo> <QHash> <QJsonArray>
    <QJsonDocument> <QJsonObject> <QObject> <QPointer> <QString> <QStringList> <QTimer> <QUrl> <QUuid> <QVariant>)

# corvellan_precompiled_headers(NAME headers... LINK libraries... [OPTIONS flags...])
function(corvellan_precompiled_headers name)
    cmake_parse_arguments(ARG "" "" "LINK;OPTIONS" ${ARGN})
    if(CORVELLAN_PRECOMPILED)
        file(CONFIGURE OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/${name}.cpp CONTENT "")
        add_library(${name} OBJECT ${CMAKE_CURRENT_BINARY_DIR}/${name}.cpp)
        set_target_properties(${name} PROPERTIES POSITION_INDEPENDENT_CODE ON)
        target_link_libraries(${name} PRIVATE corvellanOptions ${ARG_LINK})
        # Without a time in it, the compiler's cache finds it again.
        target_compile_options(${name} PRIVATE ${ARG_OPTIONS} "SHELL:-Xclang -fno-pch-timestamp")
        target_precompile_headers(${name} PRIVATE ${CORVELLAN_COMMON_HEADERS} ${ARG_UNPARSED_ARGUMENTS})
    endif()
endfunction()

# corvellan_precompiled(target name)
function(corvellan_precompiled target name)
    if(CORVELLAN_PRECOMPILED)
        target_precompile_headers(${target} REUSE_FROM ${name})
    endif()
endfunction()

corvellan_precompiled_headers(corvellanHeaders LINK Qt6::Core QCoro6::Core)

# corvellan_library(Base SOURCES a.cpp ... PUBLIC ... PRIVATE ...)
# A static library corvellan<Name> with the alias Corvellan::<Name>. PUBLIC is what its headers mention.
function(corvellan_library name)
    cmake_parse_arguments(ARG "" "" "SOURCES;PUBLIC;PRIVATE" ${ARGN})
    add_library(corvellan${name} STATIC ${ARG_SOURCES})
    add_library(Corvellan::${name} ALIAS corvellan${name})
    set_target_properties(corvellan${name} PROPERTIES AUTOMOC ON)
    target_include_directories(corvellan${name} PUBLIC ${CMAKE_SOURCE_DIR}/src)
    target_link_libraries(corvellan${name} PUBLIC ${ARG_PUBLIC} PRIVATE corvellanOptions ${ARG_PRIVATE})
    corvellan_precompiled(corvellan${name} corvellanHeaders)
endfunction()

# corvellan_interface(Platform PUBLIC ...): a folder of headers only.
function(corvellan_interface name)
    cmake_parse_arguments(ARG "" "" "PUBLIC" ${ARGN})
    add_library(corvellan${name} INTERFACE)
    add_library(Corvellan::${name} ALIAS corvellan${name})
    target_include_directories(corvellan${name} INTERFACE ${CMAKE_SOURCE_DIR}/src)
    target_link_libraries(corvellan${name} INTERFACE ${ARG_PUBLIC})
endfunction()

# What no user gets and what mostly waits is not worth the optimiser's time, the longest part of a test's build.
set(CORVELLAN_TEST_FLAGS $<$<CONFIG:Debug>:-O0>)

# corvellan_test_code(target): a test, or what only tests run.
function(corvellan_test_code target)
    target_link_libraries(${target} PRIVATE corvellanOptions)
    target_compile_options(${target} PRIVATE ${CORVELLAN_TEST_FLAGS})
    corvellan_precompiled(${target} corvellanTestHeaders)
endfunction()

# corvellan_test(BaseTest SOURCES ... LINK ... [LABELS ...] [LOCKS ...] [TIMEOUT seconds] [WITH_DISPLAY] [WITH_BUS]
#                [WITH_ACCESSIBILITY])
# A GoogleTest program that is one CTest test; its cases are run in one process, off-screen or on an X display, and
# with a D-Bus session of its own if it wants one, or with such a session and an accessibility bus.
function(corvellan_test name)
    cmake_parse_arguments(ARG "WITH_DISPLAY;WITH_BUS;WITH_ACCESSIBILITY" "TIMEOUT" "SOURCES;LINK;LABELS;LOCKS" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    set_target_properties(${name} PROPERTIES AUTOMOC ON RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
    corvellan_test_code(${name})
    target_link_libraries(${name} PRIVATE Corvellan::TestSupport ${ARG_LINK})
    set(platform offscreen)
    set(around "")
    if(ARG_WITH_DISPLAY)
        set(platform xcb)
        list(APPEND around ${CMAKE_SOURCE_DIR}/tests/Support/with-display)
    endif()
    if(ARG_WITH_BUS OR ARG_WITH_ACCESSIBILITY)
        list(APPEND around ${CMAKE_SOURCE_DIR}/tests/Support/with-bus)
    endif()
    if(ARG_WITH_ACCESSIBILITY)
        list(APPEND around ${CMAKE_SOURCE_DIR}/tests/Support/with-accessibility)
    endif()
    add_test(NAME ${name} COMMAND ${around} $<TARGET_FILE:${name}>)
    if(NOT ARG_TIMEOUT)
        set(ARG_TIMEOUT 120)
    endif()
    set_tests_properties(${name} PROPERTIES TIMEOUT ${ARG_TIMEOUT} LABELS "${ARG_LABELS}" RESOURCE_LOCK "${ARG_LOCKS}"
        ENVIRONMENT "QT_QPA_PLATFORM=${platform};TSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/cmake/tsan.supp")
endfunction()
