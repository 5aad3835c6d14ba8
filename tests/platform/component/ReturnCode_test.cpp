#include "platform/component/binary/ReturnCode.h"

#include "kit/Database.h"
#include "platform/component/binary/Bstr.h"
#include "platform/component/binary/ErrorRecord.h"
#include "platform/component/dispatch/InterfaceTable.h"
#include "platform/component/dispatch/Marshal.h"

#include <new>
#include <stdexcept>

namespace {

using namespace Platform;

HRESULT Code(std::uint32_t code) { return static_cast<HRESULT>(code); }

/// Returns the text that a getter of a record stores.
String TextOf(IErrorInfo* record, HRESULT (IErrorInfo::*get)(BSTR*)) {
    BSTR text = nullptr;
    EXPECT_EQ((record->*get)(&text), S_OK);
    const OwnedBstr owned(text);
    return FromBstr(text);
}

/// Returns the thread's record as "source: description" and removes it; empty if the thread has none.
String Record() {
    IErrorInfo* record = nullptr;
    if (GetErrorInfo(0, &record) != S_OK) return "";
    const String text = TextOf(record, &IErrorInfo::GetSource) + ": " + TextOf(record, &IErrorInfo::GetDescription);
    EXPECT_EQ(record->Release(), 0U) << "the thread was its only holder";
    return text;
}

/// Returns the result of `Guarded` for a failure, on a thread that has the record of an earlier one.
template <class Failure>
HRESULT CodeOfThrown(const Failure& failure) {
    SetErrorRecord(Error(5, "Earlier", "failure"));
    return Guarded([&]() -> HRESULT { throw failure; });
}

TEST(ReturnCode, OfARuntimeNumberIsInItsRange) {
    EXPECT_EQ(CodeOf(Error(13, "", "")), Code(0x800A000D));
    EXPECT_EQ(CodeOf(Error(3021, "", "")), Code(0x800A0BCD));
    EXPECT_EQ(CodeOf(Error(1, "", "")), Code(0x800A0001));
    EXPECT_EQ(CodeOf(Error(0xFFFF, "", "")), Code(0x800AFFFF));
}

TEST(ReturnCode, OfAnEnginesNumberIsTheNumber) {
    EXPECT_EQ(CodeOf(Error(-2147217865, "", "")), -2147217865);
    EXPECT_EQ(CodeOf(Error(-1, "", "")), -1);
    EXPECT_EQ(CodeOf(Error(DISP_E_BADVARTYPE, "", "")), DISP_E_BADVARTYPE);
}

TEST(ReturnCode, OfAnyOtherNumberFailsToo) {
    EXPECT_EQ(CodeOf(Error(0, "", "")), E_FAIL);
    EXPECT_EQ(CodeOf(Error(0x10000, "", "")), E_FAIL);
    EXPECT_EQ(CodeOf(Error(2147483647, "", "")), E_FAIL);
}

TEST(ReturnCode, OfASuccessIsTheBodysOwnAndLeavesTheRecord) {
    SetErrorRecord(Error(5, "Earlier", "failure"));
    EXPECT_EQ(Guarded([] { return S_OK; }), S_OK);
    EXPECT_EQ(Guarded([] { return S_FALSE; }), S_FALSE);
    EXPECT_EQ(Guarded([] { return E_POINTER; }), E_POINTER);
    EXPECT_EQ(Record(), "Earlier: failure");
}

TEST(ReturnCode, AFailureLeavesItsSourceAndText) {
    EXPECT_EQ(CodeOfThrown(Error(75, "cImage.Save", "Kein Zugriff: Ö")), Code(0x800A004B));
    EXPECT_EQ(Record(), "cImage.Save: Kein Zugriff: Ö");
    EXPECT_EQ(Record(), "");
}

TEST(ReturnCode, AnArgumentsFailureHasTheCodesOfACall) {
    const auto code = [](Long number) { return CodeOfThrown(ArgumentError(Error(number, "Runtime", "text"), 0)); };
    EXPECT_EQ(code(err::TypeMismatch), DISP_E_TYPEMISMATCH);
    EXPECT_EQ(Record(), "Runtime: text");
    EXPECT_EQ(code(err::ObjectRequired), DISP_E_TYPEMISMATCH);
    EXPECT_EQ(code(err::Overflow), DISP_E_OVERFLOW);
    EXPECT_EQ(code(err::InvalidNull), Code(0x800A005E));
    EXPECT_EQ(code(DISP_E_BADVARTYPE), DISP_E_BADVARTYPE);
    EXPECT_EQ(code(E_POINTER), E_POINTER);
    EXPECT_EQ(CodeOfThrown(Error(err::TypeMismatch, "Runtime", "")), Code(0x800A000D))
        << "a number that is not an argument's is unchanged";
}

TEST(ReturnCode, AFailedAllocationRemovesTheOldRecord) {
    EXPECT_EQ(CodeOfThrown(std::bad_alloc()), E_OUTOFMEMORY);
    EXPECT_EQ(Record(), "");
}

TEST(ReturnCode, ForeignExceptionsAreUnexpected) {
    EXPECT_EQ(CodeOfThrown(std::runtime_error("it broke")), E_UNEXPECTED);
    EXPECT_EQ(Record(), "Runtime: it broke");
    EXPECT_EQ(CodeOfThrown(42), E_UNEXPECTED);
    EXPECT_EQ(Record(), "Runtime: Unexpected failure");
}

TEST(ReturnCode, AFailureSetsARecordAndReturnsTheCode) {
    EXPECT_EQ(FailWith(E_NOTIMPL, "Not here"), E_NOTIMPL);
    EXPECT_EQ(Record(), "Runtime: Not here");
}

TEST(ReturnCode, ARecordHoldsAnyText) {
    SetErrorRecord(Error(5, "", ""));
    EXPECT_EQ(Record(), ": ");
    SetErrorRecord(Error(5, String("a\0b", 3), "\xFF"));
    EXPECT_EQ(Record(), String("a\0b", 3) + ": \xEF\xBF\xBD");
}

TEST(ReturnCode, ANewRecordHasOneReference) {
    ICreateErrorInfo* record = nullptr;
    ASSERT_EQ(CreateErrorInfo(&record), S_OK);
    EXPECT_EQ(record->Release(), 0U);
    EXPECT_EQ(CreateErrorInfo(nullptr), E_POINTER);
}

}  // namespace
