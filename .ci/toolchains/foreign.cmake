# The libraries that foreign_libraries.sh unpacked; included by the toolchain files, which set the names.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_LIBRARY_ARCHITECTURE ${foreign_triplet})
get_filename_component(foreign_root ${CMAKE_CURRENT_LIST_DIR}/../../build-foreign/${foreign_architecture} ABSOLUTE)
set(CMAKE_FIND_ROOT_PATH ${foreign_root})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(ENV{PKG_CONFIG_SYSROOT_DIR} ${foreign_root})
set(ENV{PKG_CONFIG_LIBDIR} ${foreign_root}/usr/lib/${foreign_triplet}/pkgconfig:${foreign_root}/usr/share/pkgconfig)
# Found by programs as they run, and by the linker for libraries that libraries need.
set(foreign_library_path ${foreign_root}/usr/lib/${foreign_triplet}:${foreign_root}/lib/${foreign_triplet})
foreach(kind EXE SHARED MODULE)
  set(CMAKE_${kind}_LINKER_FLAGS_INIT
      "-Wl,--disable-new-dtags,-rpath,${foreign_library_path},-rpath-link,${foreign_library_path}")
endforeach()
