# Installing, and what find_package(nqControlCore) finds afterwards: nq::foundation, nq::controlCore, nq::controlLoop and, as the
# component "urdf", nq::urdf.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(nqPackageFolder ${CMAKE_INSTALL_LIBDIR}/cmake/nqControlCore)

install(TARGETS nqFoundation nqControlCore nqControlLoop EXPORT nqControlCoreTargets)
install(EXPORT nqControlCoreTargets NAMESPACE nq:: DESTINATION ${nqPackageFolder})

# Headers keep the folders that they are included by. Those that only sources include stay here.
set(nqLeftOut PATTERN NqRowOperations.h EXCLUDE PATTERN NqXmlInputGuard.h EXCLUDE)
if(NQ_BUILD_URDF)
    # An export of its own, so that only those who ask for it need urdfdom.
    install(TARGETS nqUrdf EXPORT nqUrdfTargets)
    install(EXPORT nqUrdfTargets NAMESPACE nq:: DESTINATION ${nqPackageFolder})
else()
    list(APPEND nqLeftOut PATTERN NqUrdfReader.h EXCLUDE)
endif()
install(DIRECTORY ${PROJECT_SOURCE_DIR}/nqControlCore ${PROJECT_SOURCE_DIR}/nqControlLoop
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
        FILES_MATCHING PATTERN "*.h" ${nqLeftOut})

if(TARGET nqDrive)
    # The program finds its libraries beside it, wherever the tree is put.
    file(RELATIVE_PATH nqLibrariesFromBin /${CMAKE_INSTALL_BINDIR} /${CMAKE_INSTALL_LIBDIR})
    set_target_properties(nqDrive PROPERTIES INSTALL_RPATH "$ORIGIN/${nqLibrariesFromBin}")
    install(TARGETS nqDrive)
endif()

get_target_property(nqLibraryType nqFoundation TYPE)
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/nqControlCoreConfig.cmake.in
    ${PROJECT_BINARY_DIR}/nqControlCoreConfig.cmake
    INSTALL_DESTINATION ${nqPackageFolder} NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/nqControlCoreConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/nqControlCoreConfig.cmake
              ${PROJECT_BINARY_DIR}/nqControlCoreConfigVersion.cmake
        DESTINATION ${nqPackageFolder})

install(FILES ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR})

# Only on request: cmake --install <build> --component examples
install(DIRECTORY ${PROJECT_SOURCE_DIR}/models ${PROJECT_SOURCE_DIR}/examples
        DESTINATION ${CMAKE_INSTALL_DATADIR}/nqControlCore COMPONENT examples EXCLUDE_FROM_ALL)
