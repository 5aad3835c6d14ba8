#include "console/dicom/GrayTable.h"

#include "console/dicom/DicomValues.h"

#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dctk.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string>

namespace Console {
namespace {

Uint16 Number(DcmItem& set, const DcmTagKey& tag, Uint16 absent = 0) {
    Uint16 number = absent;
    set.findAndGetUint16(tag, number);
    return number;
}

std::optional<double> Decimal(DcmItem& set, const DcmTagKey& tag) {
    Float64 number = 0;
    if (set.findAndGetFloat64(tag, number).bad() || !std::isfinite(number)) return {};
    return number;
}

// ---- stored samples ---------------------------------------------------------------------------------

/// The position of the value's bits in a sample.
class SampleForm {
public:
    explicit SampleForm(DcmItem& set)
        : allocated_(Number(set, DCM_BitsAllocated)),
          stored_(Number(set, DCM_BitsStored)),
          shift_(Number(set, DCM_HighBit) + 1 - stored_),
          signed_(Number(set, DCM_PixelRepresentation) == 1) {
        const bool valid =
            (allocated_ == 8 || allocated_ == 16) && stored_ >= 1 && shift_ >= 0 && stored_ + shift_ <= allocated_;
        if (!valid) throw std::runtime_error("its samples have no form of 8 or 16 bits");
    }

    std::size_t Count() const { return std::size_t{1} << allocated_; }

    int Value(std::size_t sample) const {
        const int value = static_cast<int>(sample >> shift_) & ((1 << stored_) - 1);
        return signed_ && value >> (stored_ - 1) ? value - (1 << stored_) : value;
    }

    int Lowest() const { return signed_ ? -(1 << (stored_ - 1)) : 0; }

    /// Returns a padding value, which is stored in 16 bits.
    int PaddingValue(Uint16 bits) const { return signed_ ? static_cast<Sint16>(bits) : bits; }

private:
    int allocated_, stored_, shift_;
    bool signed_;
};

/// Returns the bits of an attribute of 16 bits, signed or unsigned.
std::optional<Uint16> SixteenBits(DcmItem& set, const DcmTagKey& tag) {
    Uint16 bits = 0;
    if (set.findAndGetUint16(tag, bits).good()) return bits;
    Sint16 number = 0;
    if (set.findAndGetSint16(tag, number).good()) return static_cast<Uint16>(number);
    return {};
}

/// The stored values that mark background instead of a pixel.
class Padding {
public:
    Padding(DcmItem& set, const SampleForm& form) {
        const auto value = SixteenBits(set, DCM_PixelPaddingValue);
        if (!value) return;
        const int one = form.PaddingValue(*value);
        const int other = form.PaddingValue(SixteenBits(set, DCM_PixelPaddingRangeLimit).value_or(*value));
        first_ = std::min(one, other);
        last_ = std::max(one, other);
    }
    bool Has(int value) const { return value >= first_ && value <= last_; }

private:
    int first_ = 1, last_ = 0;
};

// ---- lookup tables ----------------------------------------------------------------------------------

/// A Modality or VOI LUT.
class Lookup {
public:
    /// Returns the table of the first item of a sequence; nothing where it is absent or has no data. `lowest` is
    /// the least value that is looked up: below 0, the descriptor's first value is signed.
    static std::optional<Lookup> Of(DcmItem& set, const DcmTagKey& sequence, double lowest) {
        DcmItem* item = nullptr;
        if (set.findAndGetSequenceItem(sequence, item).bad() || !item) return {};
        Lookup lookup;
        if (!lookup.Describe(*item, lowest) || !lookup.Fill(*item)) return {};
        return lookup;
    }

    double At(double value) const {
        const double last = static_cast<double>(entries_.size() - 1);
        const double place = std::clamp(std::floor(value) - first_, 0.0, last);
        return entries_[static_cast<std::size_t>(place)];
    }

    double Highest() const { return std::exp2(bits_) - 1; }

private:
    bool Describe(DcmItem& item, double lowest) {
        Uint16 part = 0;
        const auto get = [&](unsigned long place) {
            Sint16 number = 0;
            if (item.findAndGetUint16(DCM_LUTDescriptor, part, place).good()) return true;
            if (item.findAndGetSint16(DCM_LUTDescriptor, number, place).bad()) return false;
            part = static_cast<Uint16>(number);
            return true;
        };
        if (!get(0)) return false;
        count_ = part == 0 ? 0x10000 : part;
        if (!get(1)) return false;
        first_ = lowest < 0 ? static_cast<Sint16>(part) : part;
        if (!get(2)) return false;
        bits_ = part;
        return bits_ >= 1 && bits_ <= 16;
    }

    /// Reads the entries: a word each, or of 8 bits two a word.
    bool Fill(DcmItem& item) {
        const Uint16* words = nullptr;
        unsigned long count = 0;
        if (item.findAndGetUint16Array(DCM_LUTData, words, &count).bad() || !words || count == 0) return false;
        const bool packed = bits_ <= 8 && count < count_;
        for (std::size_t i = 0; i < count_ && i < (packed ? count * 2 : count); ++i)
            entries_.push_back(packed ? static_cast<Uint16>(words[i / 2] >> (i % 2 * 8) & 0xFF) : words[i]);
        return true;
    }

    std::size_t count_ = 0;
    double first_ = 0;
    int bits_ = 0;
    std::vector<Uint16> entries_;
};

// ---- conversion of stored values to gray ------------------------------------------------------------

using Function = std::function<double(double)>;

/// From stored values to those of the modality.
Function Modality(DcmItem& set, const SampleForm& form) {
    if (const auto lookup = Lookup::Of(set, DCM_ModalityLUTSequence, form.Lowest()))
        return [table = *lookup](double value) { return table.At(value); };
    const double slope = Decimal(set, DCM_RescaleSlope).value_or(1);
    const double intercept = Decimal(set, DCM_RescaleIntercept).value_or(0);
    return [=](double value) { return value * slope + intercept; };
}

/// Returns the window of a data set as a function from 0 to 1; nothing where it has none that is valid.
std::optional<Function> Window(DcmItem& set) {
    const auto center = Decimal(set, DCM_WindowCenter), width = Decimal(set, DCM_WindowWidth);
    if (!center || !width) return {};
    const double c = *center, w = *width;
    const std::string form = FirstText(set, DCM_VOILUTFunction);
    const bool exact = form == "LINEAR_EXACT", sigmoid = form == "SIGMOID";
    if (w <= 0 || (w < 1 && !exact && !sigmoid)) return {};
    if (sigmoid) return [=](double value) { return 1 / (1 + std::exp(-4 * (value - c) / w)); };
    const double middle = exact ? c : c - 0.5, range = exact ? w : w - 1;
    return [=](double value) {
        if (value <= middle - range / 2) return 0.0;
        return value > middle + range / 2 ? 1.0 : (value - middle) / range + 0.5;
    };
}

/// Returns a window from the least to the greatest value.
Function FullRange(double least, double greatest) {
    const double range = greatest - least;
    return [=](double value) { return range > 0 ? (value - least) / range : 0; };
}

bool Inverted(DcmItem& set) {
    const std::string shape = FirstText(set, DCM_PresentationLUTShape);
    if (shape == "INVERSE" || shape == "IDENTITY") return shape == "INVERSE";
    return FirstText(set, DCM_PhotometricInterpretation) == "MONOCHROME1";
}

/// The modality values of all samples, and whether each of them is a pixel and not padding.
struct SampleValues {
    std::vector<double> of;
    std::vector<bool> padding;
};

SampleValues ValuesOf(DcmItem& set, const SampleForm& form) {
    const Function modality = Modality(set, form);
    const Padding padding(set, form);
    SampleValues values;
    for (std::size_t sample = 0; sample < form.Count(); ++sample) {
        const int stored = form.Value(sample);
        values.of.push_back(modality(stored));
        values.padding.push_back(padding.Has(stored));
    }
    return values;
}

Function AutomaticWindow(const SampleValues& values, const std::vector<bool>& occurs) {
    double least = std::numeric_limits<double>::infinity(), greatest = -least;
    for (std::size_t sample = 0; sample < values.of.size(); ++sample) {
        if (!occurs[sample] || values.padding[sample]) continue;
        least = std::min(least, values.of[sample]);
        greatest = std::max(greatest, values.of[sample]);
    }
    return FullRange(least, greatest);
}

Function Shown(DcmItem& set, const SampleValues& values, const std::vector<bool>& occurs) {
    const double lowest = *std::ranges::min_element(values.of);
    if (const auto lookup = Lookup::Of(set, DCM_VOILUTSequence, lowest))
        return [table = *lookup](double value) { return table.At(value) / table.Highest(); };
    if (const auto window = Window(set)) return *window;
    return AutomaticWindow(values, occurs);
}

}  // namespace

void RequireGrayForm(DcmItem& set) { static_cast<void>(SampleForm(set)); }

std::vector<unsigned char> GrayTable(DcmItem& set, const std::vector<bool>& occurs) {
    const SampleForm form(set);
    const SampleValues values = ValuesOf(set, form);
    const Function shown = Shown(set, values, occurs);
    const bool inverted = Inverted(set);
    std::vector<unsigned char> grays;
    for (std::size_t sample = 0; sample < values.of.size(); ++sample) {
        const double light = std::clamp(shown(values.of[sample]), 0.0, 1.0);
        const double gray = values.padding[sample] ? 0 : inverted ? 1 - light : light;
        grays.push_back(static_cast<unsigned char>(std::lround(gray * 255)));
    }
    return grays;
}

}  // namespace Console
