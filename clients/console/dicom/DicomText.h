#pragma once

#include <string>
#include <string_view>

namespace Console {

/// Turns the texts of one DICOM data set into UTF-8.
///
/// Supports the single-byte sets, UTF-8, GB 18030, GBK, and the code extensions that select Japanese, Korean and
/// Chinese sets within a text. Uses the C library for the conversion, because a DICOM toolkit that is built on the C
/// library rejects the code extensions. Any thread may call.
class TextDecoder {
public:
    /// For texts under this value of Specific Character Set, with all its parts. A set that is not known
    /// counts as not stated.
    explicit TextDecoder(std::string_view specificCharacterSet);

    /// Returns the text in UTF-8. If no set is stated, or if the bytes are not valid in it, the text is read as UTF-8
    /// if it is valid UTF-8, otherwise as Latin-1, so that no byte is lost.
    std::string Decode(std::string_view bytes) const;

private:
    std::string base;  ///< the C library's name of the set that is valid outside code extensions
};

}  // namespace Console
