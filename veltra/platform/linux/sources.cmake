# SPDX-License-Identifier: MIT
# The files of this port.
set(PORT_SOURCES
    alert_helper.cpp
    alert_helper_search.cpp
    alert_terminal.cpp
    allocation_zone.cpp
    c_locale.cpp
    child_program.cpp
    clock.cpp
    deadline.cpp
    exception_type.cpp
    file_system.cpp
    fork_generation.cpp
    fork_handlers.cpp
    journal_log.cpp
    json_preferences.cpp
    kernel_drives.cpp
    local_time.cpp
    machine_lines.cpp
    memory_facts.cpp
    memory_system.cpp
    mount_table.cpp
    no_cancellation.cpp
    optical_drives.cpp
    os_release.cpp
    platform_alert.cpp
    poll_run_loop.cpp
    preferences_file.cpp
    process.cpp
    processor_features.cpp
    processor_identity.cpp
    program_files.cpp
    stack_walk.cpp
    standard_error.cpp
    symbol_names.cpp
    symboliser.cpp
    system_files.cpp
    system_queries.cpp
    table_walk.cpp
    terminal_text.cpp
    thread_end.cpp
    unwind_rules.cpp
    unwind_table.cpp
    volumes.cpp
    work_memory.cpp)
set(PORT_TESTS
    alert_helper_test.cpp
    alert_ways_test.cpp
    fork_handlers_test.cpp
    journal_log_test.cpp
    json_preferences_test.cpp
    local_time_test.cpp
    machine_lines_test.cpp
    memory_facts_test.cpp
    no_descriptors_test.cpp
    optical_drives_test.cpp
    os_release_test.cpp
    poll_run_loop_test.cpp
    process_test.cpp
    stack_walk_test.cpp
    standard_error_test.cpp
    symbol_names_test.cpp
    symboliser_test.cpp
    system_queries_test.cpp
    unwind_table_test.cpp
    volumes_test.cpp
    x86_answers_test.cpp)
if(VELTRA_BACKTRACE)
    list(APPEND PORT_SOURCES backtrace_tables.cpp)
else()
    list(APPEND PORT_SOURCES no_symbol_tables.cpp)
endif()
if(VELTRA_UDEV)
    list(APPEND PORT_SOURCES udev_drives.cpp)
else()
    list(APPEND PORT_SOURCES no_udev_drives.cpp)
endif()
if(VELTRA_XKB)
    list(APPEND PORT_SOURCES xkb_configured.cpp xkb_keyboard_layout.cpp xkb_session.cpp)
else()
    list(APPEND PORT_SOURCES ../none/keyboard_layout.cpp)
endif()
if(VELTRA_XKB_X11)
    set(PORT_DEFINITIONS VELTRA_XKB_X11)
endif()
if(CMAKE_LIBRARY_ARCHITECTURE)
    list(APPEND PORT_DEFINITIONS VELTRA_LIBRARY_ARCHITECTURE="${CMAKE_LIBRARY_ARCHITECTURE}")
endif()
