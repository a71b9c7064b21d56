# SPDX-License-Identifier: MIT
# What a host gets: headers, library, CMake package, pkg-config file.
include(CMakePackageConfigHelpers)
install(FILES LICENSE DESTINATION "${CMAKE_INSTALL_DOCDIR}")
add_custom_target(uninstall COMMAND "${CMAKE_COMMAND}" "-DBUILD_FOLDER=${PROJECT_BINARY_DIR}"
    -P "${CMAKE_CURRENT_LIST_DIR}/VeltraUninstall.cmake" VERBATIM)

get_property(public_headers GLOBAL PROPERTY VELTRA_PUBLIC_HEADERS)
foreach(header IN LISTS public_headers)
    file(RELATIVE_PATH path "${PROJECT_SOURCE_DIR}" "${header}")
    get_filename_component(folder "${path}" DIRECTORY)
    install(FILES "${header}" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/${folder}" COMPONENT headers)
endforeach()

install(TARGETS veltra EXPORT VeltraTargets
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
    ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}")

set(static_dependencies "")
if(VELTRA_ICU AND NOT VELTRA_SHARED)
    set(static_dependencies "find_dependency(ICU COMPONENTS i18n uc)\n")
endif()
set(package_folder "${CMAKE_INSTALL_LIBDIR}/cmake/Veltra")
install(EXPORT VeltraTargets NAMESPACE Veltra:: DESTINATION "${package_folder}")
configure_package_config_file(cmake/VeltraConfig.cmake.in VeltraConfig.cmake
    INSTALL_DESTINATION "${package_folder}" NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(VeltraConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES "${PROJECT_BINARY_DIR}/VeltraConfig.cmake" "${PROJECT_BINARY_DIR}/VeltraConfigVersion.cmake"
    DESTINATION "${package_folder}")

# The prefix is found from the file's own place, so that an installed tree can be moved.
if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
    message(FATAL_ERROR "CMAKE_INSTALL_LIBDIR must be below the prefix, not '${CMAKE_INSTALL_LIBDIR}'")
endif()
file(RELATIVE_PATH prefix_from_pc "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
string(REGEX REPLACE "/$" "" prefix_from_pc "${prefix_from_pc}")
list(JOIN VELTRA_LINK_NAMES " " pc_libraries)
set(pc_libraries "${pc_libraries} -lstdc++ -lm -pthread -ldl")
set(pc_static_only "")
set(pc_private "")
if(VELTRA_SHARED)
    set(pc_private "Libs.private: ${pc_libraries}")
else()
    # An archive needs the C++ runtime from whoever links it, a C program too.
    set(pc_static_only " ${pc_libraries}")
endif()
configure_file(cmake/veltra.pc.in veltra.pc @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/veltra.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")

if(VELTRA_QT)
    install(TARGETS veltra-qt EXPORT VeltraQtTargets
        LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
        ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}")
    install(EXPORT VeltraQtTargets NAMESPACE Veltra:: DESTINATION "${package_folder}")
    configure_file(cmake/veltra-qt.pc.in veltra-qt.pc @ONLY)
    install(FILES "${PROJECT_BINARY_DIR}/veltra-qt.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
endif()
