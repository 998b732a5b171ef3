#include <windows.h>

namespace {

HMODULE moduleHandle = nullptr;

}  // namespace

// The effect keeps nothing for each thread, so it need not hear of the host's threads.
extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID) {
    switch (reason) {
        case DLL_PROCESS_ATTACH:
            moduleHandle = instance;
            DisableThreadLibraryCalls(moduleHandle);
            break;
        case DLL_PROCESS_DETACH: moduleHandle = nullptr; break;
        default: break;
    }
    return TRUE;
}
