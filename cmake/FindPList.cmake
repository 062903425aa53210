# libplist, which brings no package of its own for CMake. Defines PList::PList.
find_path(PList_INCLUDE_DIR plist/plist.h)
find_library(PList_LIBRARY NAMES plist-2.0 plist)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(PList REQUIRED_VARS PList_LIBRARY PList_INCLUDE_DIR)
mark_as_advanced(PList_INCLUDE_DIR PList_LIBRARY)

if(PList_FOUND AND NOT TARGET PList::PList)
    add_library(PList::PList UNKNOWN IMPORTED)
    set_target_properties(PList::PList PROPERTIES
        IMPORTED_LOCATION "${PList_LIBRARY}"
        INTERFACE_INCLUDE_DIRECTORIES "${PList_INCLUDE_DIR}")
endif()
