# What `cmake --install` and `cpack` install, and where. An installation can be moved as a whole.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/qova)

install(TARGETS qova qova_companion EXPORT qovaTargets)
install(EXPORT qovaTargets NAMESPACE qova:: DESTINATION ${package_dir})
set_target_properties(qova_companion PROPERTIES EXPORT_NAME companion)
set_target_properties(qova PROPERTIES INSTALL_RPATH "$ORIGIN")
install(DIRECTORY include/qova TYPE INCLUDE)

set(libdir ${CMAKE_INSTALL_FULL_LIBDIR})
set(includedir ${CMAKE_INSTALL_FULL_INCLUDEDIR})
set(prefix_from_pc ${CMAKE_INSTALL_PREFIX})
cmake_path(RELATIVE_PATH prefix_from_pc BASE_DIRECTORY ${libdir}/pkgconfig)
cmake_path(RELATIVE_PATH libdir BASE_DIRECTORY ${CMAKE_INSTALL_PREFIX})
cmake_path(RELATIVE_PATH includedir BASE_DIRECTORY ${CMAKE_INSTALL_PREFIX})

# Another companion has its own headers. Projects that use libqova find it themselves.
if(QOVA_COMPANION_TARGET STREQUAL "")
    install(DIRECTORY companion/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/qova-companion
        FILES_MATCHING PATTERN *.h)
    set(companion_cflags " -I\${includedir}/qova-companion")
    set(companion_libs " -lqova_companion")
endif()

# The component "tools". Its users link with sofia-sip but do not include its headers.
if(TARGET qova_sdp)
    foreach(room sdp move answer)
        set_target_properties(qova_${room} PROPERTIES
            EXPORT_NAME ${room} POSITION_INDEPENDENT_CODE ON)
        target_include_directories(qova_${room} PUBLIC
            $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/qova-tools>)
        install(TARGETS qova_${room} EXPORT qovaToolsTargets)
    endforeach()
    install(FILES tools/sdp/diagnostics.h tools/sdp/message.h tools/sdp/plan.h tools/sdp/reader.h
        tools/sdp/strings.h tools/sdp/text.h tools/sdp/writer.h
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/qova-tools/sdp)
    install(FILES tools/move/mover.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/qova-tools/move)
    install(FILES tools/answer/answerer.h tools/answer/call_side.h tools/answer/changes.h
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/qova-tools/answer)
    install(EXPORT qovaToolsTargets NAMESPACE qova:: DESTINATION ${package_dir})
endif()

configure_package_config_file(cmake/qovaConfig.cmake.in qovaConfig.cmake
    INSTALL_DESTINATION ${package_dir}
    NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/qovaConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
configure_file(cmake/qova.pc.in qova.pc @ONLY)
install(FILES
    ${CMAKE_CURRENT_BINARY_DIR}/qovaConfig.cmake
    ${CMAKE_CURRENT_BINARY_DIR}/qovaConfigVersion.cmake
    DESTINATION ${package_dir})
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/qova.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

if(NOT PROJECT_IS_TOP_LEVEL)
    return()
endif()

if(TARGET qova-sdp)
    set(libraries_from_bin ${CMAKE_INSTALL_FULL_LIBDIR})
    cmake_path(RELATIVE_PATH libraries_from_bin BASE_DIRECTORY ${CMAKE_INSTALL_FULL_BINDIR})
    set_target_properties(qova-sdp qova-answer PROPERTIES
        INSTALL_RPATH "$ORIGIN/${libraries_from_bin}")
    install(TARGETS qova-sdp qova-answer)
    install(FILES tools/qova-sdp.1 tools/qova-answer.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
endif()

# The pages keep their relative places, so that the links between them work.
install(FILES README.md CHANGELOG.md TYPE DOC OPTIONAL)
install(DIRECTORY tools TYPE DOC PATTERN .clang-tidy EXCLUDE PATTERN *.1 EXCLUDE)
install(DIRECTORY docs TYPE DOC
    FILES_MATCHING REGEX "\\.(md|svg)$" REGEX "/guides/.*\\.(cpp|txt)$")

# An archive for each target, to unpack with `tar -C SYSROOT -xf`; a Debian package with `-G DEB`.
set(CPACK_GENERATOR TGZ)
set(CPACK_PACKAGE_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/packages)
set(CPACK_PACKAGE_VENDOR qova)
set(CPACK_PACKAGE_CONTACT "libqova's maintainers <root@localhost>")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SUGGESTS libsofia-sip-ua-dev)  # to link the component "tools"
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_CURRENT_BINARY_DIR})
set(CPACK_PACKAGE_FILE_NAME qova-${PROJECT_VERSION}-${CMAKE_LIBRARY_ARCHITECTURE})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_INCLUDE_TOPLEVEL_DIRECTORY OFF)
set(CPACK_VERBATIM_VARIABLES ON)
include(CPack)
