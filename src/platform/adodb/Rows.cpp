#include "platform/adodb/Rows.h"

#include "platform/runtime/Convert.h"

#include <algorithm>
#include <cstring>
#include <memory>

namespace ADODB {

using namespace Platform;

namespace {

/// Where the memory of names begins to look for a name, by the place of its text.
std::size_t PlaceOf(std::string_view name) {
    return (reinterpret_cast<std::uintptr_t>(name.data()) * 0x9E3779B97F4A7C15U) >> 56;
}

Variant WholeNumber(std::int64_t value) {
    if (std::in_range<Long>(value)) return static_cast<Long>(value);
    return value;
}

Variant ValueOfWhole(std::int64_t value, DataTypeEnum type) {
    switch (type) {
        case adBoolean: return value != 0;
        case adSmallInt:
            if (std::in_range<Integer>(value)) return static_cast<Integer>(value);
            return WholeNumber(value);
        case adSingle: return static_cast<float>(value);
        case adDouble: return static_cast<double>(value);
        case adDate: return Date{static_cast<double>(value)};
        case adVarWChar:
        case adLongVarWChar: return CStr(value);
        default: return WholeNumber(value);
    }
}

Variant ValueOfReal(double value, DataTypeEnum type) {
    switch (type) {
        case adSingle: return static_cast<float>(value);
        case adDate: return Date{value};
        case adVarWChar:
        case adLongVarWChar: return CStr(value);
        default: return value;
    }
}

Variant ValueOfText(std::string_view text, DataTypeEnum type) {
    if (type == adDate)
        if (const auto date = ParseDate(text)) return *date;
    return String(text);
}

Variant StoredText(const Variant& value, const Column& column) {
    String text = To<String>(value);
    if (column.DefinedSize > 0 && Len(text) > column.DefinedSize)
        RaiseAdo(
            MultipleStepFailed, "ADODB.Recordset",
            "The text for column " + column.Name + " is longer than its " + CStr(column.DefinedSize) + " characters.");
    return text;
}

Variant StoredByType(const Variant& value, const Column& column) {
    switch (column.Type) {
        case adSmallInt: return static_cast<Long>(CInt(value));
        case adInteger: return CLng(value);
        case adBoolean: return static_cast<Long>(CBool(value) ? -1 : 0);
        case adSingle: return static_cast<double>(CSng(value));
        case adDouble: return CDbl(value);
        case adDate: return FormatDate(CDate(value), "yyyy-mm-dd hh:nn:ss");
        case adVarWChar:
        case adLongVarWChar: return StoredText(value, column);
        default: break;
    }
    if (value.Is<bool>()) return CLng(value);
    if (value.Is<Date>()) return FormatDate(value.As<Date>(), "yyyy-mm-dd hh:nn:ss");
    if (value.Is<float>()) return CDbl(value);
    if (value.Is<Ref<Object>>() || value.Is<std::vector<String>>()) Raise(err::TypeMismatch);
    return value;
}

}  // namespace

Columns::Columns(std::vector<Column> columns) : columns_(std::move(columns)) {
    for (Long i = 0; i < Count(); ++i) byName_.try_emplace(LCase(At(i).Name), i);
}

Long Columns::Find(std::string_view name) const {
    constexpr std::size_t looks = 4;
    const std::size_t first = PlaceOf(name);
    std::size_t at = first;
    for (std::size_t look = 0; look < looks; ++look, at = (at + 1) % remembered_.size()) {
        const Remembered& memory = remembered_[at];
        if (memory.name.empty()) break;
        if (memory.name == name) return memory.ordinal;
    }
    const Long found = Search(name);
    Remembered& memory = remembered_[remembered_[at].name.empty() ? at : first];
    memory = {String(name), found};
    return found;
}

Long Columns::Search(std::string_view name) const {
    const auto found = byName_.find(LCase(name));
    return found == byName_.end() ? Missing : found->second;
}

std::byte* RowStore::Allocate(std::size_t bytes) {
    constexpr std::size_t alignment = alignof(Cell), largestBlock = 1 << 20;
    bytes = (bytes + alignment - 1) / alignment * alignment;
    if (bytes > left_) {
        left_ = std::max(nextBlock_, bytes);
        blocks_.push_back(std::make_unique_for_overwrite<std::byte[]>(left_));
        free_ = blocks_.back().get();
        nextBlock_ = std::min(nextBlock_ * 2, largestBlock);
    }
    left_ -= bytes;
    return std::exchange(free_, free_ + bytes);
}

Row RowStore::Add(std::span<const Cell> cells) {
    std::size_t bytes = cells.size_bytes();
    for (const Cell& cell : cells)
        if (cell.kind == Cell::Kind::Text) bytes += cell.length;
    std::byte* const block = Allocate(bytes);
    auto* const to = reinterpret_cast<Cell*>(block);
    auto* texts = reinterpret_cast<char*>(block + cells.size_bytes());
    std::uninitialized_copy(cells.begin(), cells.end(), to);
    for (std::size_t i = 0; i < cells.size(); ++i) {
        if (to[i].kind != Cell::Kind::Text || to[i].length == 0) continue;
        std::memcpy(texts, to[i].text, to[i].length);
        to[i].text = texts;
        texts += to[i].length;
    }
    return Row(to);
}

Variant ValueOf(const Cell& cell, const Column& column) {
    switch (cell.kind) {
        case Cell::Kind::Null: return Null{};
        case Cell::Kind::Whole: return ValueOfWhole(cell.whole, column.Type);
        case Cell::Kind::Real: return ValueOfReal(cell.real, column.Type);
        case Cell::Kind::Text: return ValueOfText(cell.Text(), column.Type);
    }
    return Null{};
}

Variant StoredForm(const Variant& value, const Column& column) {
    if (value.Is<Null>()) return Null{};
    try {
        return StoredByType(value, column);
    } catch (const Error& failure) {
        if (failure.Number == MultipleStepFailed) throw;
        const Long number = failure.Number == err::Overflow ? MultipleStepFailed : adErrDataConversion;
        RaiseAdo(number, "ADODB.Recordset",
                 "The value doesn't fit column " + column.Name + ": " + failure.Description + ".");
    }
}

Cell CellOf(const Variant& stored) {
    if (stored.Is<Long>()) return Cell::Of(static_cast<std::int64_t>(stored.As<Long>()));
    if (stored.Is<Integer>()) return Cell::Of(static_cast<std::int64_t>(stored.As<Integer>()));
    if (stored.Is<std::int64_t>()) return Cell::Of(stored.As<std::int64_t>());
    if (stored.Is<double>()) return Cell::Of(stored.As<double>());
    if (stored.Is<String>()) return Cell::Of(std::string_view(stored.As<String>()));
    return {};
}

}  // namespace ADODB
