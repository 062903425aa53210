# One library per room of the house. Its links are the only headers it may include:
# what is not listed under LINK does not resolve, so the linker reviews the layering.
#
#   tembra_library(TembraStore SOURCES a.cpp a.h ... LINK TembraFoundation SQLiteCpp)
function(tembra_library name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
    add_library(${name} STATIC ${ARG_SOURCES})
    target_include_directories(${name} PUBLIC "${CMAKE_SOURCE_DIR}/src")
    target_link_libraries(${name} PUBLIC ${ARG_LINK})
    tembra_use_precompiled(${name} ${ARG_LINK})
endfunction()

# What every test sees of its surroundings: the same locale everywhere, and folders of its own, so
# that no test reads or writes the journal or the settings of whoever runs it.
set(TEMBRA_TEST_ENVIRONMENT
    "LANG=en_US.UTF-8" "LC_CTYPE=C.UTF-8"
    "XDG_CACHE_HOME=${CMAKE_BINARY_DIR}/tests/home/cache"
    "XDG_CONFIG_HOME=${CMAKE_BINARY_DIR}/tests/home/config"
    "XDG_DATA_HOME=${CMAKE_BINARY_DIR}/tests/home/data"
    "XDG_STATE_HOME=${CMAKE_BINARY_DIR}/tests/home/state"
    "ASAN_OPTIONS=detect_leaks=1:strict_string_checks=1:intercept_strndup=0"
    "LSAN_OPTIONS=suppressions=\"${CMAKE_SOURCE_DIR}/tests/support/lsan.supp\":print_suppressions=0"
    "TSAN_OPTIONS=suppressions=\"${CMAKE_SOURCE_DIR}/tests/support/tsan.supp\":halt_on_error=1:history_size=7"
    "UBSAN_OPTIONS=print_stacktrace=1")

# A test program tests/<Folder>/tst_<Class>.cpp, registered with ctest under "<Folder>/<Class>".
# GUI tests run under their own virtual display with a window manager.
#
#   tembra_test(tst_Predicate LINK TembraStore)
#   tembra_test(tst_MainWindow GUI LINK TembraMainWindow TembraTestSupportGui)
function(tembra_test name)
    cmake_parse_arguments(ARG "GUI" "TIMEOUT" "SOURCES;LINK" ${ARGN})
    get_filename_component(folder "${CMAKE_CURRENT_SOURCE_DIR}" NAME)
    add_executable(${name} ${name}.cpp ${ARG_SOURCES})
    set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/tests")
    target_link_libraries(${name} PRIVATE ${ARG_LINK} Qt6::Test)
    tembra_use_precompiled(${name} ${ARG_LINK})
    # Nobody waits for a test's own code, but for its compilation.
    target_compile_options(${name} PRIVATE $<$<CONFIG:Release>:-O1>)
    string(REPLACE "tst_" "" title "${name}")
    if(ARG_GUI)
        add_test(NAME "${folder}/${title}"
            COMMAND "${CMAKE_SOURCE_DIR}/tests/support/with-display" $<TARGET_FILE:${name}>)
        set(platform xcb)
    else()
        add_test(NAME "${folder}/${title}" COMMAND ${name})
        set(platform offscreen)
    endif()
    if(NOT ARG_TIMEOUT)
        set(ARG_TIMEOUT 120)
    endif()
    set_tests_properties("${folder}/${title}" PROPERTIES
        TIMEOUT ${ARG_TIMEOUT}
        ENVIRONMENT "${TEMBRA_TEST_ENVIRONMENT};QT_QPA_PLATFORM=${platform}"
        ENVIRONMENT_MODIFICATION "LC_ALL=unset:;LANGUAGE=unset:")
endfunction()
