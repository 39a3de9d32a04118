// The entry point of velmor_core.dll. The library keeps no per-thread state, so it asks not to
// be called at every thread start and end; it does nothing else when loaded or unloaded.
// Built into the DLL only: a program or DLL linking the static library keeps its own.
#include <windows.h>

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_ATTACH) {
        DisableThreadLibraryCalls(instance);
    }
    return TRUE;
}
