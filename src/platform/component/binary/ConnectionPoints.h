#pragma once

#include "platform/component/binary/ComponentModel.h"

/// The interfaces by which an object offers its events to clients (IConnectionPointContainer). On Windows they are the
/// system's own; on other systems this file declares the same names with the same form.
#ifdef _WIN32
#include <ocidl.h>
#else

#define CONNECT_E_NOCONNECTION ((HRESULT)0x80040200)
#define CONNECT_E_CANNOTCONNECT ((HRESULT)0x80040202)

struct IConnectionPoint;
struct IConnectionPointContainer;
struct IEnumConnections;

/// Iterates over the connection points of an object, as `IEnumVARIANT` does over members. The caller releases the
/// points.
struct IEnumConnectionPoints : IUnknown {
    virtual HRESULT Next(ULONG count, IConnectionPoint** points, ULONG* fetched) = 0;
    virtual HRESULT Skip(ULONG count) = 0;
    virtual HRESULT Reset() = 0;
    virtual HRESULT Clone(IEnumConnectionPoints** copy) = 0;
};

/// The events of an object. Each function is called on the object's thread, otherwise returns RPC_E_WRONG_THREAD.
struct IConnectionPoint : IUnknown {
    /// Stores the identifier of the interface by which the events are sent.
    virtual HRESULT GetConnectionInterface(IID* identifier) = 0;
    virtual HRESULT GetConnectionPointContainer(IConnectionPointContainer** container) = 0;
    /// Sends the events to `sink` from now on, which must have the interface or IDispatch; CONNECT_E_CANNOTCONNECT
    /// otherwise. Stores a number for `Unadvise`. The object holds a reference to the sink.
    virtual HRESULT Advise(IUnknown* sink, DWORD* cookie) = 0;
    /// Ends it. CONNECT_E_NOCONNECTION for a number that `Advise` has not stored.
    virtual HRESULT Unadvise(DWORD cookie) = 0;
    /// Returns E_NOTIMPL.
    virtual HRESULT EnumConnections(IEnumConnections** connections) = 0;
};

/// An object with events.
struct IConnectionPointContainer : IUnknown {
    virtual HRESULT EnumConnectionPoints(IEnumConnectionPoints** points) = 0;
    /// Stores the events of this interface; CONNECT_E_NOCONNECTION if the object has none.
    virtual HRESULT FindConnectionPoint(REFIID events, IConnectionPoint** point) = 0;
};

inline constexpr IID IID_IConnectionPointContainer = {
    0xB196B284, 0xBAB4, 0x101A, {0xB6, 0x9C, 0x00, 0xAA, 0x00, 0x34, 0x1D, 0x07}};
inline constexpr IID IID_IEnumConnectionPoints = {
    0xB196B285, 0xBAB4, 0x101A, {0xB6, 0x9C, 0x00, 0xAA, 0x00, 0x34, 0x1D, 0x07}};
inline constexpr IID IID_IConnectionPoint = {
    0xB196B286, 0xBAB4, 0x101A, {0xB6, 0x9C, 0x00, 0xAA, 0x00, 0x34, 0x1D, 0x07}};

#endif
