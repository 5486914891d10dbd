# Language, warnings, sanitizers, and the faster tools where the machine has them.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_AUTOMOC ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/lib")

if(NOT CMAKE_BUILD_TYPE)
    set(CMAKE_BUILD_TYPE RelWithDebInfo CACHE STRING "" FORCE)
endif()

find_program(SPECTREE_CCACHE ccache)
if(SPECTREE_CCACHE)
    set(CMAKE_CXX_COMPILER_LAUNCHER "${SPECTREE_CCACHE}")
endif()
find_program(SPECTREE_MOLD mold)
if(SPECTREE_MOLD AND NOT SPECTREE_SANITIZE)
    add_link_options(-fuse-ld=mold)
endif()

add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Werror)
add_compile_definitions(QT_NO_KEYWORDS QT_NO_CAST_TO_ASCII QT_NO_FOREACH QT_DEPRECATED_WARNINGS)

if(SPECTREE_SANITIZE)
    add_compile_options(-fsanitize=${SPECTREE_SANITIZE} -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${SPECTREE_SANITIZE})
    if(SPECTREE_SANITIZE MATCHES undefined)
        add_compile_options(-fno-sanitize-recover=all)
    endif()
    if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND SPECTREE_SANITIZE MATCHES "thread")
        # g++ warns about fences that tsan does not model; only boost and Qt headers hold any.
        add_compile_options(-Wno-tsan)
    endif()
endif()

if(SPECTREE_BUILD_FUZZ)
    # Coverage of the library itself, not only of the target's own file, guides the fuzzer.
    add_compile_options(-fsanitize=fuzzer-no-link)
endif()
