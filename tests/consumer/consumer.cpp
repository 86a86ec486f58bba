// A program outside the library's tree: creates an object and uses it.
#include <pixmorph/pixmorph.h>

#include <cstdio>

int main() {
    KorvaneSoftware::ComPtr<ICopyMemory> copier;
    const HRESULT created = KorvaneSoftware::CreateInstance(CLSID_CopyMemory, copier);
    if (FAILED(created)) {
        std::printf("creation failed: %08X\n", static_cast<unsigned>(created));
        return 1;
    }
    std::uint8_t source[] = {1, 2, 3};
    std::uint8_t target[] = {9, 9, 9};
    if (copier->CopyMemoryFast(target, source, 2) != S_OK) return 2;
    if (target[0] != 1 || target[1] != 2 || target[2] != 9) return 3;
    copier.Reset();
    if (DllCanUnloadNow() != S_OK) return 4;
    std::puts("copied");
    return 0;
}
