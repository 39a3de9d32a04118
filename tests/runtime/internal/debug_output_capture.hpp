// Collects what the library writes to the debugger output: the standard error stream on POSIX;
// on Windows the texts of OutputDebugStringW, caught as the exception through which the system
// offers each one to a debugger.
#pragma once

#include <gtest/gtest.h>

#include <string>

#if defined(_WIN32)
#include "os/ansi.hpp"
#include "unicode/convert.hpp"

#include <windows.h>

#ifndef DBG_PRINTEXCEPTION_WIDE_C
#define DBG_PRINTEXCEPTION_WIDE_C 0x4001000AL
#endif
#endif

namespace velmor_test {

/// Captures from construction to destruction; one capture at a time.
class debug_output_capture_t {
  public:
#if defined(_WIN32)
    debug_output_capture_t() {
        active_ = this;
        handler_ = AddVectoredExceptionHandler(1, &on_exception);
    }
    ~debug_output_capture_t() {
        RemoveVectoredExceptionHandler(handler_);
        active_ = nullptr;
    }

    /// The UTF-8 text written since the last call, or since construction.
    std::string take() {
        std::string text = velmor2::_internal::to_utf8(text_);
        text_.clear();
        return text;
    }
    /// How many OutputDebugStringW calls the capture has seen.
    int calls() const {
        return calls_;
    }
#else
    debug_output_capture_t() {
        testing::internal::CaptureStderr();
    }
    ~debug_output_capture_t() {
        testing::internal::GetCapturedStderr();
    }

    /// The UTF-8 text written since the last call, or since construction.
    std::string take() {
        std::string text = testing::internal::GetCapturedStderr();
        testing::internal::CaptureStderr();
        return text;
    }
#endif

    debug_output_capture_t(const debug_output_capture_t&) = delete;
    debug_output_capture_t& operator=(const debug_output_capture_t&) = delete;

  private:
#if defined(_WIN32)
    // Takes the text and tells the system that a debugger has seen it. Newer systems raise the
    // wide exception first and fall back to the narrow one when nobody takes it.
    static LONG CALLBACK on_exception(EXCEPTION_POINTERS* info) {
        const EXCEPTION_RECORD& record = *info->ExceptionRecord;
        debug_output_capture_t* capture = active_;
        if (capture == nullptr || record.NumberParameters < 2) {
            return EXCEPTION_CONTINUE_SEARCH;
        }
        if (record.ExceptionCode == DBG_PRINTEXCEPTION_WIDE_C) {
            capture->text_ += reinterpret_cast<const wchar_t*>(record.ExceptionInformation[1]);
        } else if (record.ExceptionCode == DBG_PRINTEXCEPTION_C) {
            capture->text_ += velmor2::_internal::os::from_ansi(
                reinterpret_cast<const char*>(record.ExceptionInformation[1]));
        } else {
            return EXCEPTION_CONTINUE_SEARCH;
        }
        ++capture->calls_;
        return EXCEPTION_CONTINUE_EXECUTION;
    }

    static inline debug_output_capture_t* active_ = nullptr;
    void* handler_ = nullptr;
    std::wstring text_;
    int calls_ = 0;
#endif
};

} // namespace velmor_test
