# What makes a fault in the programs harder to use against their user. Bytes from a camera are hostile, and the tool reads
# them with all rights of its user. tests/install/hardening_test.py looks for it in what was built.
#
# kelva_harden(TARGET): each flag that this compiler and linker take. Apple's compiler has its own set, on by itself;
# a sanitizer finds the same faults and more.
option(KELVA_HARDENING "Build with stack protector, FORTIFY, checked containers, full RELRO and control-flow protection" ON)
include(CheckCXXCompilerFlag)
include(CheckLinkerFlag)
include(CheckPIESupported)

check_pie_supported(LANGUAGES CXX)
set(kelva_hardening_options "")
set(kelva_hardening_links "")
if(KELVA_HARDENING AND NOT APPLE AND NOT KELVA_SANITIZER)
  # Control-flow protection is the processor's: CET on x86-64, BTI and pointer authentication on arm64.
  foreach(flag IN ITEMS -fstack-protector-strong -fstack-clash-protection -fcf-protection -mbranch-protection=standard)
    string(MAKE_C_IDENTIFIER "KELVA_TAKES${flag}" taken)
    check_cxx_compiler_flag(${flag} ${taken})
    if(${taken})
      list(APPEND kelva_hardening_options ${flag})
    endif()
  endforeach()
  check_linker_flag(CXX "-Wl,-z,relro,-z,now" KELVA_TAKES_Z_NOW)
  if(KELVA_TAKES_Z_NOW)
    list(APPEND kelva_hardening_links "-Wl,-z,relro,-z,now")
  endif()
endif()

function(kelva_harden target)
  if(APPLE OR KELVA_SANITIZER OR NOT KELVA_HARDENING)
    return()
  endif()
  target_compile_options(${target} PRIVATE ${kelva_hardening_options}
    # FORTIFY needs an optimising build. Undefined first: some compilers define it themselves.
    $<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>)
  target_compile_definitions(${target} PRIVATE _GLIBCXX_ASSERTIONS)
  target_link_options(${target} PRIVATE ${kelva_hardening_links})
endfunction()
