#include "platform/component/binary/ReturnCode.h"

#include "platform/component/binary/ErrorRecord.h"

#include <new>

namespace Platform {
HRESULT CodeOf(const Error& failure) {
    constexpr std::uint32_t ofTheRuntime = 0x800A0000;
    if (failure.Number < 0) return failure.Number;
    if (failure.Number == 0 || failure.Number > 0xFFFF) return E_FAIL;
    return static_cast<HRESULT>(ofTheRuntime | static_cast<std::uint32_t>(failure.Number));
}

Long NumberOf(HRESULT code) {
    if ((static_cast<std::uint32_t>(code) & 0xFFFF0000) == 0x800A0000) return code & 0xFFFF;
    switch (code) {
        case DISP_E_MEMBERNOTFOUND:
        case DISP_E_UNKNOWNNAME: return err::NoSuchMember;
        case DISP_E_BADPARAMCOUNT:
        case DISP_E_NONAMEDARGS: return err::WrongArguments;
        case DISP_E_PARAMNOTOPTIONAL: return err::ArgumentNotOptional;
        case DISP_E_TYPEMISMATCH: return err::TypeMismatch;
        case DISP_E_OVERFLOW: return err::Overflow;
        case DISP_E_BADINDEX: return err::OutOfBounds;
        case E_OUTOFMEMORY: return err::OutOfMemory;
        default: return code;
    }
}

namespace {

/// Returns the return code for an argument that can't be taken, with its record; a null's is the runtime's own.
HRESULT CodeOfArgument(const ArgumentError& failure) {
    SetErrorRecord(failure);
    if (failure.Number < 0 || failure.Number == err::InvalidNull) return CodeOf(failure);
    if (failure.Number == err::Overflow) return DISP_E_OVERFLOW;
    if (failure.Number != err::TypeMismatch)
        SetErrorRecord(Error(err::TypeMismatch, failure.Source, DescriptionOf(err::TypeMismatch)));
    return DISP_E_TYPEMISMATCH;
}

}  // namespace

HRESULT FailWith(HRESULT code, const String& description) noexcept {
    SetErrorRecord(Error(code, "Runtime", description));
    return code;
}

HRESULT CodeOfCaught() noexcept {
    try {
        throw;
    } catch (const ArgumentError& failure) {
        return CodeOfArgument(failure);
    } catch (const Error& failure) {
        SetErrorRecord(failure);
        return CodeOf(failure);
    } catch (const std::bad_alloc&) {
        SetErrorInfo(0, nullptr);
        return E_OUTOFMEMORY;
    } catch (const std::exception& failure) {
        return FailWith(E_UNEXPECTED, failure.what());
    } catch (...) {
        return FailWith(E_UNEXPECTED, "Unexpected failure");
    }
}

}  // namespace Platform
