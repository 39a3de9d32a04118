// The run-time feature checks against the processor's own answer: a runtime that never filled
// in the compiler's feature table would quietly keep every fast engine off.
#include "cpu/features.hpp"

#include <gtest/gtest.h>

#if VELMOR_X86_ENGINES
#include <cpuid.h>
#endif

namespace {

namespace cpu = velmor2::_internal::cpu;

#if VELMOR_X86_ENGINES

struct cpuid_t {
    unsigned eax = 0, ebx = 0, ecx = 0, edx = 0;
};

cpuid_t query(unsigned leaf) {
    cpuid_t r;
    if (leaf > static_cast<unsigned>(__get_cpuid_max(0, nullptr))) {
        return r;
    }
    __cpuid_count(leaf, 0, r.eax, r.ebx, r.ecx, r.edx);
    return r;
}

// AVX2 also needs the system to save the YMM registers: OSXSAVE set and XCR0 bits 1 and 2.
bool system_saves_ymm() {
    if ((query(1).ecx & (1u << 27)) == 0) {
        return false;
    }
    unsigned low = 0, high = 0;
    __asm__("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
    return (low & 6u) == 6u;
}

TEST(cpu_features, agree_with_cpuid) {
    const bool avx2 = (query(7).ebx & (1u << 5)) != 0 && system_saves_ymm();
    const bool pclmul = (query(1).ecx & (1u << 1)) != 0 && (query(1).ecx & (1u << 19)) != 0;
    EXPECT_EQ(cpu::has_avx2(), avx2);
    EXPECT_EQ(cpu::has_pclmul(), pclmul);
}

#else

TEST(cpu_features, are_off_without_x86_engines) {
    EXPECT_FALSE(cpu::has_avx2());
    EXPECT_FALSE(cpu::has_pclmul());
}

#endif

} // namespace
