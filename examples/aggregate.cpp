// Aggregation: an object of the application that carries the library's conversion as if it were its own. Whoever holds
// one of its interfaces can ask for any other, and one count keeps the whole alive.
#include <pixmorph/pixmorph.h>

#include <atomic>
#include <cstdio>

using KorvaneSoftware::ComPtr;

namespace {

class Channel final : public IUnknown {
public:
    /// Makes a channel with a converter inside.
    static HRESULT Create(ComPtr<IUnknown>& result) {
        auto* const channel = new Channel;
        result.Attach(channel);
        ComPtr<IClassFactory> factory;
        const HRESULT status = DllGetClassObject(CLSID_Pixmorph, IID_IClassFactory, factory.Put());
        if (FAILED(status)) return status;
        // The inner object sends its reference counting and its queries to the outer one given here. Only the interface
        // that this call returns is the inner object's own; the outer object keeps it to itself.
        return factory->CreateInstance(channel, IID_IUnknown, channel->inner_.Put());
    }

    HRESULT PIXMORPH_CALL QueryInterface(const GUID& iid, void** object) override {
        if (object == nullptr) return E_POINTER;
        if (iid == IID_IUnknown) {
            *object = static_cast<IUnknown*>(this);
            AddRef();
            return S_OK;
        }
        *object = nullptr;
        return inner_ ? inner_->QueryInterface(iid, object) : E_NOINTERFACE;
    }
    ULONG PIXMORPH_CALL AddRef() override { return ++count_; }
    ULONG PIXMORPH_CALL Release() override {
        const std::uint32_t left = --count_;
        if (left == 0) {
            count_ = 1;  // while the inner object goes, a reference that it takes and drops must not end this one again
            delete this;
        }
        return left;
    }

private:
    ~Channel() = default;

    std::atomic<std::uint32_t> count_{1};
    ComPtr<IUnknown> inner_;
};

}  // namespace

int main() {
    {
        ComPtr<IUnknown> channel;
        if (FAILED(Channel::Create(channel))) return 1;

        // The channel answers for the converter's interfaces, and they answer for the channel.
        ComPtr<IColorConversion> conversion;
        ComPtr<IUnknown> identity;
        if (FAILED(channel.As(conversion)) || FAILED(conversion.As(identity))) return 1;
        if (identity.Get() != channel.Get()) return 1;

        // The converter's interface alone keeps the whole object alive.
        identity.Reset();
        channel.Reset();
        std::printf("UYVY to BGRA: %s\n",
                    conversion->CheckConversion(PIXMORPH_BGRA, PIXMORPH_UYVY) == S_OK ? "yes" : "no");
        if (conversion->CheckConversion(PIXMORPH_BGRA, PIXMORPH_UYVY) != S_OK) return 1;
    }
    // With the last reference gone nothing of the library is in use.
    return DllCanUnloadNow() == S_OK ? 0 : 1;
}
