# SPDX-License-Identifier: MIT
# Release builds defend themselves: the flags of the OpenSSF guide for C and C++, each only where
# the compiler at hand knows it. None of them changes what the program computes.
include(CheckCXXCompilerFlag)
include(CheckLinkerFlag)
include(CheckPIESupported)

check_pie_supported(LANGUAGES CXX)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

function(harden_compiler flag)
  string(MAKE_C_IDENTIFIER "HAS${flag}" known)
  set(CMAKE_REQUIRED_FLAGS "-Werror -O2")
  check_cxx_compiler_flag("${flag}" ${known})
  if(${known})
    add_compile_options("$<$<CONFIG:Release>:${flag}>")
  endif()
endfunction()

function(harden_linker flag)
  string(MAKE_C_IDENTIFIER "HAS${flag}" known)
  check_linker_flag(CXX "${flag}" ${known})
  if(${known})
    add_link_options("$<$<CONFIG:Release>:${flag}>")
  endif()
endfunction()

add_compile_options("$<$<CONFIG:Release>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=3>")
add_compile_options("$<$<CONFIG:Release>:-D_GLIBCXX_ASSERTIONS>")
harden_compiler(-fstack-protector-strong)
harden_compiler(-fstack-clash-protection)
harden_compiler(-fcf-protection=full)
harden_compiler(-ftrivial-auto-var-init=zero)
harden_linker(-Wl,-z,relro)
harden_linker(-Wl,-z,now)
harden_linker(-Wl,-z,noexecstack)
harden_linker(-Wl,--as-needed)
