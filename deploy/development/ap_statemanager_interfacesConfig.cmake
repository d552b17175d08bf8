# ap_statemanager::interfaces: proxies and skeletons of the state manager's services and of the network manager's.
include(CMakeFindDependencyMacro)
find_dependency(Threads)
find_dependency(PkgConfig)
pkg_check_modules(CYCLONEDDS REQUIRED QUIET IMPORTED_TARGET CycloneDDS)
pkg_check_modules(DLT REQUIRED QUIET IMPORTED_TARGET automotive-dlt)
include(${CMAKE_CURRENT_LIST_DIR}/ap_statemanager_interfacesTargets.cmake)
