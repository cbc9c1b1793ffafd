# 32-bit x86 with this machine's own compiler.
set(foreign_architecture i386)
set(foreign_triplet i386-linux-gnu)
include(${CMAKE_CURRENT_LIST_DIR}/foreign.cmake)
set(CMAKE_SYSTEM_PROCESSOR i686)
foreach(language C CXX)
  set(CMAKE_${language}_FLAGS_INIT "-m32 -isystem ${foreign_root}/usr/include/${foreign_triplet}")
endforeach()
