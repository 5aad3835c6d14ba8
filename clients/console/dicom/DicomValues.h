#pragma once

#include "console/dicom/DicomText.h"

#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dctk.h>

#include <string>
#include <vector>

/// Values of DICOM data sets as plain texts and numbers. Any thread may call anything here.
namespace Console {

/// Returns the text without the padding of DICOM values, blanks and NULs, at both ends.
std::string Trimmed(std::string_view text);

/// Returns the parts between the separators, each trimmed.
std::vector<std::string> Split(std::string_view text, char separator);

/// Returns "YYYY-MM-DD" for "YYYYMMDD" and the older "YYYY.MM.DD"; an empty text for anything but a calendar day.
std::string DayText(std::string_view value);

/// "hh:mm:ss" for "hhmmss.ffffff", "hhmm", "hh" and the older "hh:mm:ss"; midnight for anything else. A
/// leap second counts as the second before it.
std::string TimeText(std::string_view value);

/// Returns the first value of an element as it is stored; empty if it is missing.
std::string FirstText(DcmItem& set, const DcmTagKey& tag);

/// Reads the values of one data set, in its character set.
class Values {
public:
    explicit Values(DcmItem& dataset);

    /// Returns the whole value with all its parts, in UTF-8, trimmed; empty if it is absent.
    std::string Text(DcmItem& item, const DcmTagKey& tag) const;

    /// Returns the parts of the value that aren't empty.
    std::vector<std::string> Texts(DcmItem& item, const DcmTagKey& tag) const;

    /// Returns the patient's other identifiers, of the older attribute and of the sequence, in this order.
    std::vector<std::string> OtherPatientIDs(DcmItem& dataset) const;

    /// Returns the number at `position` of the value, 0 if there is none.
    double Number(DcmItem& item, const DcmTagKey& tag, std::size_t position = 0) const;

    /// Returns the value as a whole number; 0 also for a number outside the range of `int`.
    int Whole(DcmItem& item, const DcmTagKey& tag) const;

private:
    TextDecoder decoder_;
};

/// The deepest nesting of sequences that is accepted. No radiograph needs more, and each level takes stack in every
/// reader of the data.
constexpr int DeepestNesting = 64;

/// Throws `std::runtime_error` for a data set whose sequences are nested deeper than `DeepestNesting`.
void RequireShallow(DcmItem& dataset);

/// Calls `visit` with each item of the sequence `tag`; does nothing if it is absent.
template <class Visitor>
void EachItem(DcmItem& parent, const DcmTagKey& tag, const Visitor& visit) {
    DcmSequenceOfItems* sequence = nullptr;
    if (parent.findAndGetSequence(tag, sequence).bad() || sequence == nullptr) return;
    for (unsigned long i = 0; i < sequence->card(); ++i) visit(*sequence->getItem(i));
}

}  // namespace Console
