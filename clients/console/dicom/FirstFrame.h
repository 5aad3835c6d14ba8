#pragma once

#include <string>
#include <vector>

class DcmDataset;

namespace Console {

/// Returns the reason why pixels of the transfer syntax with this identifier can't be decoded; empty if they can.
std::string WhyNotDecodable(const std::string& transferSyntax);

/// Number of Frames of a data set; 1 where it is absent or no positive number.
int NumberOfFrames(DcmDataset& set);

/// Returns true if the pixels of a data set, as it was read, are JPEG 2000.
bool IsJpeg2000(const DcmDataset& set);

/// Returns the samples of the first frame of a data set, uncompressed, in the byte order of this machine. Where the
/// pixels are JPEG 2000, the attributes that describe the samples (bits, sign, photometric interpretation)
/// become those of the decoded ones.
///
/// Throws `std::runtime_error` whose text is one clause about the reason: fewer bytes than rows and columns need, a
/// damaged or unknown encoding. `set` must have Rows, Columns and Pixel Data.
std::vector<unsigned char> FirstFrame(DcmDataset& set);

/// Replaces the pixels of a data set by those of its first frame, uncompressed. Throws as `FirstFrame`.
void ReplaceByFirstFrame(DcmDataset& set);

/// Raises like `FirstFrame` if uncompressed or run-length encoded pixels are fewer than the first frame
/// needs.
void CheckFirstFrameComplete(DcmDataset& set);

}  // namespace Console
