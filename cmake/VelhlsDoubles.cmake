# Doubles have the same bits on every processor: what is computed with them is rounded after each step, and is not wider in
# between. x86-64 does so by itself, unless it is allowed to fuse a multiplication with an addition.
include(CheckCXXSourceCompiles)
if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
    check_cxx_source_compiles("
        #if defined(__x86_64__) && !defined(__FMA__)
        #error no instruction does both
        #endif
        int main() {}" VELHLS_MAY_FUSE)
    if(VELHLS_MAY_FUSE)
        add_compile_options(-ffp-contract=off)
    endif()
    check_cxx_source_compiles("
        #if !defined(__i386__) || defined(__SSE2_MATH__)
        #error computes with doubles
        #endif
        int main() {}" VELHLS_COMPUTES_WIDER)
    if(VELHLS_COMPUTES_WIDER)
        add_compile_options(-msse2 -mfpmath=sse)
    endif()
endif()
