// A library for the shared-library tests: two exported functions and some state that shows
// whether the library stayed loaded.
#if defined(_WIN32)
#define PLUGIN_EXPORT extern "C" __declspec(dllexport)
#else
#define PLUGIN_EXPORT extern "C" __attribute__((visibility("default")))
#endif

namespace {
int calls = 0;
}

PLUGIN_EXPORT int velmor_plugin_answer() {
    return 42;
}

PLUGIN_EXPORT int velmor_plugin_count_calls() {
    return ++calls;
}
