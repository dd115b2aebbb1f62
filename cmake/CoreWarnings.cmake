# Warning and sanitizer flags shared by every target of the project.
add_library(core_build_flags INTERFACE)
target_compile_options(core_build_flags INTERFACE
    $<$<COMPILE_LANGUAGE:CXX>:-Wall -Wextra -Wpedantic -Wcast-qual -Wnon-virtual-dtor -Wold-style-cast>)
if(CORE_WERROR)
    target_compile_options(core_build_flags INTERFACE $<$<COMPILE_LANGUAGE:CXX>:-Werror>)
endif()
if(CORE_SANITIZE)
    target_compile_options(core_build_flags INTERFACE
        -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(core_build_flags INTERFACE -fsanitize=address,undefined)
endif()
