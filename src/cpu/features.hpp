// Instruction-set extensions that the fast engines may use, asked of the processor at run time.
#pragma once

// Engines written with x86 intrinsics and per-function target attributes build where the
// compiler supports both; elsewhere only the portable engines exist.
#if (defined(__GNUC__) || defined(__clang__)) && (defined(__x86_64__) || defined(__i386__))
#define VELMOR_X86_ENGINES 1
#else
#define VELMOR_X86_ENGINES 0
#endif

namespace velmor2::_internal::cpu {

/// True when the processor and the system support AVX2.
inline bool has_avx2() {
#if VELMOR_X86_ENGINES
    return __builtin_cpu_supports("avx2");
#else
    return false;
#endif
}

/// True when the processor has carry-less multiplication and SSE4.1.
inline bool has_pclmul() {
#if VELMOR_X86_ENGINES
    return __builtin_cpu_supports("pclmul") && __builtin_cpu_supports("sse4.1");
#else
    return false;
#endif
}

} // namespace velmor2::_internal::cpu
