# Installing, in components, and what find_package(nqControlCore) and pkg-config find afterwards: nq::foundation,
# nq::controlCore, nq::controlLoop, nq::wholeCacheLines and, as the component "urdf", nq::urdf. cpack makes a Debian package of each component.
#   runtime      the program nqDrive, and the libraries if they are shared ones
#   development  headers, static libraries, and what other builds find them by
#   examples     models and examples; only on request
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(nqPackageFolder ${CMAKE_INSTALL_LIBDIR}/cmake/nqControlCore)

# Libraries, under an export name of their own.
function(nqInstallLibraries export)
    install(TARGETS ${ARGN} EXPORT ${export}
        RUNTIME COMPONENT runtime
        LIBRARY COMPONENT runtime NAMELINK_COMPONENT development
        ARCHIVE COMPONENT development)
    install(EXPORT ${export} NAMESPACE nq:: DESTINATION ${nqPackageFolder} COMPONENT development)
endfunction()
nqInstallLibraries(nqControlCoreTargets nqFoundation nqControlCore nqControlLoop nqWholeCacheLines)

# Headers keep the folders that they are included by. Those that only sources include stay here.
set(nqLeftOut "")
foreach(header NqCholesky NqRowMask NqRowOperations NqSmallSystem NqSparseSystem NqXmlInputGuard)
    list(APPEND nqLeftOut PATTERN ${header}.h EXCLUDE)
endforeach()
if(NQ_BUILD_URDF)
    # An export of its own, so that only those who ask for it need urdfdom.
    nqInstallLibraries(nqUrdfTargets nqUrdf)
else()
    list(APPEND nqLeftOut PATTERN NqUrdfReader.h EXCLUDE)
endif()
install(DIRECTORY ${PROJECT_SOURCE_DIR}/nqControlCore ${PROJECT_SOURCE_DIR}/nqControlLoop
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development
        FILES_MATCHING PATTERN "*.h" ${nqLeftOut})

if(TARGET nqDrive)
    # The program finds its libraries beside it, wherever the tree is put.
    file(RELATIVE_PATH nqLibrariesFromBin /${CMAKE_INSTALL_BINDIR} /${CMAKE_INSTALL_LIBDIR})
    set_target_properties(nqDrive PROPERTIES INSTALL_RPATH "$ORIGIN/${nqLibrariesFromBin}")
    install(TARGETS nqDrive RUNTIME COMPONENT runtime)
endif()

get_target_property(nqLibraryType nqFoundation TYPE)
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/nqControlCoreConfig.cmake.in
    ${PROJECT_BINARY_DIR}/nqControlCoreConfig.cmake
    INSTALL_DESTINATION ${nqPackageFolder} NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/nqControlCoreConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/nqControlCoreConfig.cmake
              ${PROJECT_BINARY_DIR}/nqControlCoreConfigVersion.cmake
        DESTINATION ${nqPackageFolder} COMPONENT development)

# For pkg-config: a file for each library that is asked for by name. A static library brings along what it needs itself.
file(RELATIVE_PATH nqPrefixFromPkgConfig /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
set(nqNeedsXml "")
set(nqNeedsUrdfdom "")
if(nqLibraryType STREQUAL "STATIC_LIBRARY")
    set(nqNeedsXml "libxml-2.0")
    set(nqNeedsUrdfdom ", urdfdom")
endif()
function(nqWritePkgConfig name description requires libraries)
    configure_file(${CMAKE_CURRENT_FUNCTION_LIST_DIR}/nqLibrary.pc.in ${PROJECT_BINARY_DIR}/${name}.pc @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/${name}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
endfunction()
nqWritePkgConfig(nqControlCore "${PROJECT_DESCRIPTION}" "${nqNeedsXml}" "-lnqControlCore -lnqFoundation")
nqWritePkgConfig(nqControlLoop "Control loop on nqControlCore" nqControlCore -lnqControlLoop)
if(NQ_BUILD_URDF)
    nqWritePkgConfig(nqUrdf "Robots from URDF for nqControlCore" "nqControlCore${nqNeedsUrdfdom}" -lnqUrdf)
endif()

install(FILES ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT runtime)
install(FILES ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR}-dev COMPONENT development)

# Only on request: cmake --install <build> --component examples
install(DIRECTORY ${PROJECT_SOURCE_DIR}/models ${PROJECT_SOURCE_DIR}/examples
        DESTINATION ${CMAKE_INSTALL_DATADIR}/nqControlCore COMPONENT examples EXCLUDE_FROM_ALL)

if(NOT PROJECT_IS_TOP_LEVEL)
    return()
endif()
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME nqcontrolcore)
set(CPACK_PACKAGE_CONTACT "the nqControlCore team <nq@nq.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_COMPONENTS_ALL runtime development)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME nqcontrolcore)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME nqcontrolcore-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "libxml2-dev")
if(NQ_BUILD_URDF)
    string(APPEND CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS ", liburdfdom-dev")
endif()
if(nqLibraryType STREQUAL "SHARED_LIBRARY")
    # The programs of the package find the libraries in it, which have no packages of their own.
    set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/nqControlCore ${PROJECT_BINARY_DIR}/nqControlLoop)
    set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
    string(APPEND CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS ", nqcontrolcore (= ${PROJECT_VERSION})")
endif()
include(CPack)
