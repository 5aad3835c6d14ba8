#include "platform/component/dispatch/EventSource.h"

#include "platform/component/binary/ConnectionPoints.h"
#include "platform/component/binary/Counted.h"
#include "platform/component/binary/Identifier.h"
#include "platform/component/binary/ReturnCode.h"
#include "platform/component/dispatch/Boundary.h"
#include "platform/component/dispatch/Interface.h"

#include <new>
#include <utility>
#include <vector>

namespace Platform {
namespace {

std::vector<const EventSource*>& Sources() {
    static auto& sources = *new std::vector<const EventSource*>;  // for the whole process
    return sources;
}

const EventSource* SourceOf(const Object& object) {
    for (const EventSource* source : Sources())
        if (object.Describe().ClassName() == source->ClassName) return source;
    return nullptr;
}

/// An interface of an object with events. It holds a reference to the object.
template <class Derived, class Interface>
class OfOwner : public Counted<Derived, Interface> {
public:
    OfOwner(InterfacePointer& owner, const EventSource& source) : owner_(owner), source_(source) {
        Boundary::AddRef(owner_);
    }

protected:
    ~OfOwner() { Boundary::Release(owner_); }

    /// Stores this interface if `riid` is `own`.
    HRESULT Query(REFIID riid, const IID& own, void** object) {
        if (!object) return E_POINTER;
        const bool known = Same(riid, own) || Same(riid, IID_IUnknown);
        *object = known ? static_cast<Derived*>(this) : nullptr;
        if (known) this->AddRef();
        return known ? S_OK : E_NOINTERFACE;
    }
    /// Stores a new object of this class for the same owner.
    template <class T, class Place>
    HRESULT Make(Place** place) {
        if (!place) return E_POINTER;
        *place = new (std::nothrow) T(owner_, source_);
        return *place ? S_OK : E_OUTOFMEMORY;
    }

    InterfacePointer& owner_;
    const EventSource& source_;
};

class Container;

class Point final : public OfOwner<Point, IConnectionPoint> {
public:
    using OfOwner::OfOwner;
    ~Point() = default;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override {
        return Query(riid, IID_IConnectionPoint, object);
    }
    HRESULT STDMETHODCALLTYPE GetConnectionInterface(IID* identifier) override {
        if (!identifier) return E_POINTER;
        *identifier = source_.Events;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetConnectionPointContainer(IConnectionPointContainer** container) override;
    HRESULT STDMETHODCALLTYPE Advise(IUnknown* sink, DWORD* cookie) override;
    HRESULT STDMETHODCALLTYPE Unadvise(DWORD cookie) override {
        return OnThread(
            [&] { return source_.Unadvise(Boundary::ObjectOf(owner_), cookie) ? S_OK : CONNECT_E_NOCONNECTION; });
    }
    HRESULT STDMETHODCALLTYPE EnumConnections(IEnumConnections**) override { return E_NOTIMPL; }

private:
    template <class Body>
    HRESULT OnThread(Body body) noexcept {
        return Guarded([&]() -> HRESULT { return Boundary::IsOnItsThread(owner_) ? body() : RPC_E_WRONG_THREAD; });
    }
};

/// The enumerator of the one connection point of an object.
class Points final : public OfOwner<Points, IEnumConnectionPoints> {
public:
    using OfOwner::OfOwner;
    ~Points() = default;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override {
        return Query(riid, IID_IEnumConnectionPoints, object);
    }
    HRESULT STDMETHODCALLTYPE Next(ULONG count, IConnectionPoint** points, ULONG* fetched) override {
        if (fetched) *fetched = 0;
        if (!points || (!fetched && count != 1)) return E_POINTER;
        if (count == 0) return S_OK;
        if (atEnd_) return S_FALSE;
        if (const HRESULT made = Make<Point>(points); FAILED(made)) return made;
        atEnd_ = true;
        if (fetched) *fetched = 1;
        return count == 1 ? S_OK : S_FALSE;
    }
    HRESULT STDMETHODCALLTYPE Skip(ULONG count) override {
        if (count == 0) return S_OK;
        const bool was = std::exchange(atEnd_, true);
        return was || count > 1 ? S_FALSE : S_OK;
    }
    HRESULT STDMETHODCALLTYPE Reset() override {
        atEnd_ = false;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Clone(IEnumConnectionPoints** copy) override {
        const HRESULT made = Make<Points>(copy);
        if (SUCCEEDED(made)) static_cast<Points*>(*copy)->atEnd_ = atEnd_;
        return made;
    }

private:
    bool atEnd_ = false;
};

class Container final : public OfOwner<Container, IConnectionPointContainer> {
public:
    using OfOwner::OfOwner;
    ~Container() = default;

    /// Every other interface is one of the object itself.
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override {
        if (!object || !Same(riid, IID_IConnectionPointContainer))
            return reinterpret_cast<IUnknown*>(&owner_)->QueryInterface(riid, object);
        AddRef();
        *object = this;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE EnumConnectionPoints(IEnumConnectionPoints** points) override {
        return Make<Points>(points);
    }
    HRESULT STDMETHODCALLTYPE FindConnectionPoint(REFIID events, IConnectionPoint** point) override {
        if (!point) return E_POINTER;
        *point = nullptr;
        return Same(events, source_.Events) ? Make<Point>(point) : CONNECT_E_NOCONNECTION;
    }
};

HRESULT Point::GetConnectionPointContainer(IConnectionPointContainer** container) { return Make<Container>(container); }

HRESULT Point::Advise(IUnknown* sink, DWORD* cookie) {
    if (!sink || !cookie) return E_POINTER;
    *cookie = 0;
    return OnThread([&] {
        // The events have an interface of their own, which a sink need not name: it is one of names.
        void* events = nullptr;
        HRESULT code = sink->QueryInterface(source_.Events, &events);
        if (FAILED(code) || !events) code = sink->QueryInterface(IID_IDispatch, &events);
        if (FAILED(code) || !events) return CONNECT_E_CANNOTCONNECT;
        auto* const named = static_cast<IDispatch*>(events);
        const Ref<Object> held = Boundary::FromPointer(named);
        named->Release();
        *cookie = source_.Advise(Boundary::ObjectOf(owner_), held);
        return S_OK;
    });
}

}  // namespace

void RegisterEventSource(const EventSource& source) { Sources().push_back(&source); }

HRESULT QueryEventSource(InterfacePointer& object, REFIID riid, void** found) noexcept {
    *found = nullptr;
    if (!Same(riid, IID_IConnectionPointContainer)) return E_NOINTERFACE;
    const EventSource* source = SourceOf(Boundary::ObjectOf(object));
    if (!source) return E_NOINTERFACE;
    *found = new (std::nothrow) Container(object, *source);
    return *found ? S_OK : E_OUTOFMEMORY;
}

}  // namespace Platform
