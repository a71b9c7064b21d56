# SPDX-License-Identifier: MIT
# What a shared library of ours asks of the linker, where the linker knows it.
include(CheckLinkerFlag)

set(veltra_map "${CMAKE_CURRENT_LIST_DIR}/veltra.map")
check_linker_flag(CXX "LINKER:--version-script=${veltra_map}" VELTRA_HAS_VERSION_SCRIPT)
check_linker_flag(CXX "LINKER:-z,nodelete" VELTRA_HAS_NODELETE)

function(veltra_link_shared target)
    if(VELTRA_HAS_VERSION_SCRIPT)
        target_link_options(${target} PRIVATE "LINKER:--version-script=${veltra_map}")
        set_target_properties(${target} PROPERTIES LINK_DEPENDS "${veltra_map}")
    endif()
    if(VELTRA_HAS_NODELETE)
        # Threads and exit handlers may still be on their way through a library that is unloaded.
        target_link_options(${target} PRIVATE LINKER:-z,nodelete)
    endif()
endfunction()
