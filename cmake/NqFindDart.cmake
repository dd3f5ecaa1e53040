# Sets NQ_DART_FOUND, NQ_DART_LIBRARIES and NQ_DART_INCLUDE_DIR. By library and header: DART's package file brings in what
# it was built with, down to its compile options.
find_library(DART_LIBRARY dart)
find_library(DART_URDF_LIBRARY dart-utils-urdf)
find_path(DART_INCLUDE_DIR dart/utils/urdf/DartLoader.hpp)
find_package(Eigen3 3.4 QUIET NO_MODULE)
set(NQ_DART_FOUND FALSE)
if(DART_LIBRARY AND DART_URDF_LIBRARY AND DART_INCLUDE_DIR AND TARGET Eigen3::Eigen)
    set(NQ_DART_FOUND TRUE)
endif()
set(NQ_DART_LIBRARIES ${DART_LIBRARY} ${DART_URDF_LIBRARY} Eigen3::Eigen)
set(NQ_DART_INCLUDE_DIR ${DART_INCLUDE_DIR})
