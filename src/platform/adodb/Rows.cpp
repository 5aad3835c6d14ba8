#include "platform/adodb/Rows.h"

#include "platform/runtime/Convert.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <memory>

namespace ADODB {

using namespace Platform;

namespace {

bool IsAscii(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
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
            MultipleStepFailed, RecordsetSource,
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

Columns::Columns(std::vector<Column> columns)
    : columns_(std::move(columns)), slots_(std::bit_ceil(2 * columns_.size() + 1)), mask_(slots_.size() - 1) {
    for (Long i = 0; i < Count(); ++i) {
        const String& name = At(i).Name;
        ascii_ = ascii_ && IsAscii(name);
        const std::uint64_t hash = ColumnName::HashOf(name);
        const Slot& slot = SlotOf(hash);
        if (slot.ordinal == Missing)
            slots_[static_cast<std::size_t>(&slot - slots_.data())] = {hash, IsAscii(name) ? i : Search(name)};
    }
}

Long Columns::Find(std::string_view name) const {
    const Slot& slot = SlotOf(ColumnName::HashOf(name));
    if (slot.ordinal != Missing && EqualsIgnoringCase(At(slot.ordinal).Name, name)) return slot.ordinal;
    return ascii_ && IsAscii(name) && slot.ordinal == Missing ? Missing : Search(name);
}

Long Columns::Search(std::string_view name) const {
    const auto found = std::find_if(columns_.begin(), columns_.end(),
                                    [&](const Column& column) { return EqualsIgnoringCase(column.Name, name); });
    return found == columns_.end() ? Missing : static_cast<Long>(found - columns_.begin());
}

Row RowStore::Add(std::span<const Cell> cells) {
    std::size_t bytes = cells.size_bytes();
    for (const Cell& cell : cells)
        if (cell.kind == Cell::Kind::Text) bytes += cell.length;
    if (!memory_) memory_ = std::make_unique<std::pmr::monotonic_buffer_resource>(bytes);
    auto* const to = static_cast<Cell*>(memory_->allocate(bytes, alignof(Cell)));
    char* texts = reinterpret_cast<char*>(to + cells.size());
    std::uninitialized_copy(cells.begin(), cells.end(), to);
    for (std::size_t i = 0; i < cells.size(); ++i) {
        if (to[i].kind != Cell::Kind::Text || to[i].length == 0) continue;
        std::memcpy(texts, to[i].text, to[i].length);
        to[i].text = texts;
        texts += to[i].length;
    }
    return Row(to);
}

void Rows::Append(const RowReader& reader, Long columns) {
    constexpr std::size_t usual = 64;
    std::array<Cell, usual> few;
    std::vector<Cell> many;
    const auto count = static_cast<std::size_t>(columns);
    if (count > usual) many.resize(count);
    const std::span<Cell> cells(count > usual ? many.data() : few.data(), count);
    for (Long i = 0; i < columns; ++i) cells[static_cast<std::size_t>(i)] = reader.At(i);
    all.push_back(store.Add(cells));
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
        RaiseAdo(number, RecordsetSource,
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
