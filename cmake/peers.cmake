# Peer libraries from Debian used by tests and benchmarks as oracles and
# for speed comparisons (never by the library itself).  Each one found
# becomes an imported target vprpeer::<name> that also defines
# VPR_HAVE_<NAME>=1; a missing one simply leaves its tests/benchmarks out.
find_package(PkgConfig QUIET)
function(vpr_peer name module)
  if(PKG_CONFIG_FOUND)
    pkg_check_modules(VPRPEER_${name} QUIET IMPORTED_TARGET GLOBAL ${module})
  endif()
  if(VPRPEER_${name}_FOUND)
    string(TOUPPER ${name} up)
    add_library(vprpeer::${name} INTERFACE IMPORTED GLOBAL)
    target_link_libraries(vprpeer::${name} INTERFACE PkgConfig::VPRPEER_${name})
    target_compile_definitions(vprpeer::${name} INTERFACE VPR_HAVE_${up}=1)
    message(STATUS "peer ${name}: found")
  else()
    message(STATUS "peer ${name}: not found (its tests and benchmarks are left out)")
  endif()
endfunction()
vpr_peer(turbojpeg libturbojpeg)   # TurboJPEG API <turbojpeg.h>
vpr_peer(jpeg libjpeg)             # libjpeg API <jpeglib.h> (libjpeg-turbo)
vpr_peer(jxr libjxr)               # jxrlib (its .pc adds -I.../jxrlib)
# libsquish's Debian .pc file has an empty prefix: find it directly.
find_library(VPRPEER_SQUISH_LIB squish)
find_path(VPRPEER_SQUISH_INC squish.h)
if(VPRPEER_SQUISH_LIB AND VPRPEER_SQUISH_INC)
  add_library(vprpeer::squish INTERFACE IMPORTED GLOBAL)
  target_link_libraries(vprpeer::squish INTERFACE ${VPRPEER_SQUISH_LIB})
  target_include_directories(vprpeer::squish INTERFACE ${VPRPEER_SQUISH_INC})
  target_compile_definitions(vprpeer::squish INTERFACE VPR_HAVE_SQUISH=1)
  message(STATUS "peer squish: found")
endif()
vpr_peer(stb stb)                  # <stb/stb_dxt.h>
set(VPR_PEERS)
foreach(p turbojpeg jpeg jxr squish stb)
  if(TARGET vprpeer::${p})
    list(APPEND VPR_PEERS vprpeer::${p})
  endif()
endforeach()
