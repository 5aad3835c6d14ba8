#pragma once

#include <string>
#include <string_view>

namespace Console {

/// Turns the texts of one DICOM data set into UTF-8.
///
/// Knows the single-byte sets, UTF-8, GB 18030, GBK, and the code extensions by which Japanese, Korean and
/// Chinese sets are switched on within a text. Conversion is the C library's, since the DICOM toolkit
/// refuses the code extensions when it was built on that. May be used by several threads at once.
class TextDecoder {
public:
    /// For texts under this value of Specific Character Set, with all its parts. A set that is not known
    /// counts as not stated.
    explicit TextDecoder(std::string_view specificCharacterSet);

    /// The text in UTF-8. Where no set is stated, or the bytes do not follow it, the text counts as UTF-8
    /// if it can be and as Latin-1 if not, so that nothing is lost.
    std::string Decode(std::string_view bytes) const;

private:
    std::string base;  ///< the C library's name of the set that is valid outside code extensions
};

}  // namespace Console
