# Helpers that keep each folder's CMakeLists.txt to a list of names.

# spectree_sources(a.h a.cpp ...): adds files of the current folder, or of its sub-folders, to the
# library. Headers that do not end in _p.h are installed as include/spectree/<folder>/<file>.
function(spectree_sources)
    foreach(file IN LISTS ARGN)
        target_sources(spectree PRIVATE "${CMAKE_CURRENT_SOURCE_DIR}/${file}")
        if(file MATCHES "\\.h$" AND NOT file MATCHES "_p\\.h$")
            get_filename_component(folder "${CMAKE_CURRENT_SOURCE_DIR}/${file}" DIRECTORY)
            file(RELATIVE_PATH folder "${PROJECT_SOURCE_DIR}" "${folder}")
            install(FILES "${file}" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/spectree/${folder}"
                    COMPONENT dev)
        endif()
    endforeach()
endfunction()

function(spectree_finish_library target)
    target_include_directories(${target} PUBLIC
        "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>"
        "$<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/spectree>")
    target_compile_features(${target} PUBLIC cxx_std_20)
    # A sample of type char is a signed number on every processor.
    target_compile_options(${target} PUBLIC -fsigned-char)
    target_compile_definitions(${target} PRIVATE SPECTREE_BUILDING_LIBRARY)
    target_link_libraries(${target}
        PUBLIC Qt5::Core Qt5::Gui Qt5::Xml Boost::headers PkgConfig::ZMQ
        PRIVATE PkgConfig::ZSTD Threads::Threads)
    if(NOT SPECTREE_SANITIZE)
        # The library calls its own functions directly, not through a table that could be changed.
        target_link_options(${target} PRIVATE -Wl,-Bsymbolic-functions)
    endif()
    set_target_properties(${target} PROPERTIES
        VERSION ${PROJECT_VERSION} EXPORT_NAME spectree
        SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}) # until 1.0 each minor has its ABI
endfunction()

# What every test runs with.
set(SPECTREE_TEST_ENVIRONMENT "QT_QPA_PLATFORM=offscreen"
    "XDG_CONFIG_HOME=${PROJECT_BINARY_DIR}/test-config" # not the user's
    "TSAN_OPTIONS=ignore_noninstrumented_modules=1:halt_on_error=1:second_deadlock_stack=1"
    "ASAN_OPTIONS=detect_leaks=1:strict_string_checks=1"
    "LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/cmake/lsan.supp:print_suppressions=0"
    "UBSAN_OPTIONS=print_stacktrace=1")

# spectree_test(name [THREADS] [GUI] [TIMEOUT s] [LIBRARIES lib...] SOURCES file...): one GoogleTest
# program. THREADS labels it for the run under the thread sanitizer, GUI gives it a QGuiApplication
# (for what paints text) in place of a QCoreApplication. No test has signals of its own: without moc
# each saves two build steps.
function(spectree_test name)
    cmake_parse_arguments(arg "THREADS;GUI" "TIMEOUT" "SOURCES;LIBRARIES" ${ARGN})
    set(main spectree_test_main)
    if(arg_GUI)
        set(main spectree_gui_test_main)
    endif()
    add_executable(${name} ${arg_SOURCES} $<TARGET_OBJECTS:${main}>)
    target_link_libraries(${name} PRIVATE spectree GTest::gmock ${arg_LIBRARIES})
    target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}/tests")
    add_test(NAME ${name} COMMAND ${name})
    if(NOT arg_TIMEOUT)
        set(arg_TIMEOUT 120)
    endif()
    set_tests_properties(${name} PROPERTIES TIMEOUT ${arg_TIMEOUT} ENVIRONMENT "${SPECTREE_TEST_ENVIRONMENT}")
    if(arg_THREADS)
        set_tests_properties(${name} PROPERTIES LABELS threads)
        add_dependencies(threaded_tests ${name})
    endif()
endfunction()

# spectree_bench(name SOURCES file... [LIBRARIES lib...]): one Google Benchmark program.
function(spectree_bench name)
    cmake_parse_arguments(arg "" "" "SOURCES;LIBRARIES" ${ARGN})
    add_executable(${name} ${arg_SOURCES})
    target_link_libraries(${name} PRIVATE spectree benchmark::benchmark ${arg_LIBRARIES})
    target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}/bench")
endfunction()

# spectree_fuzz(name SOURCES file... [LIBRARIES lib...]): one libFuzzer program with its seeds in
# fuzz/corpus/<name>; the test of the same name runs it for a few seconds.
function(spectree_fuzz name)
    cmake_parse_arguments(arg "" "" "SOURCES;LIBRARIES" ${ARGN})
    add_executable(${name} ${arg_SOURCES})
    target_link_libraries(${name} PRIVATE spectree ${arg_LIBRARIES})
    target_compile_options(${name} PRIVATE -fsanitize=fuzzer)
    target_link_options(${name} PRIVATE -fsanitize=fuzzer)
    # In a fresh build folder the same inputs each time, as far as the machine gets.
    add_test(NAME ${name} COMMAND ${name} -seed=1 -max_total_time=5 -rss_limit_mb=1024 -timeout=10
        "${CMAKE_CURRENT_BINARY_DIR}/work/${name}" "${PROJECT_SOURCE_DIR}/fuzz/corpus/${name}")
    # New inputs go to a scratch folder of the build, never into the seeds.
    file(MAKE_DIRECTORY "${CMAKE_CURRENT_BINARY_DIR}/work/${name}")
    set_tests_properties(${name} PROPERTIES TIMEOUT 60 LABELS fuzz
        WORKING_DIRECTORY "${CMAKE_CURRENT_BINARY_DIR}/work/${name}"
        ENVIRONMENT "QT_QPA_PLATFORM=offscreen")
endfunction()
